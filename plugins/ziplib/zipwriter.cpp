// SPDX-License-Identifier: MIT
#include "zipwriter.h"

#include "fsutil.h"
#include "packedtree.h"

#include <QSet>

#include <cerrno>
#include <fcntl.h>
#include <new>
#include <unistd.h>
#include <utility>

namespace {

const size_t CopyBufferSize = size_t(1) << 20;
const int ArchiveBlockSize = 1 << 20;
const size_t HeapAnchorSize = size_t(64) << 10;
const off_t WritebackStep = off_t(2) << 20;

QByteArray suffixOf(const QByteArray &name)
{
    const int dot = name.lastIndexOf('.');
    return dot < 0 ? QByteArray() : name.mid(dot + 1).toLower();
}

} // namespace

ZipWriter::ZipWriter(qint64 storeFrom)
    : m_storeFrom(storeFrom)
    , m_buffer(CopyBufferSize)
{
}

bool ZipWriter::isCompressedMedia(const QByteArray &name)
{
    // Deflating these costs time and gains nothing: their own formats are
    // compressed already (lessons are mostly such media).
    static const QSet<QByteArray> suffixes = {
        "png", "jpg", "jpeg", "gif", "webp", "heic", "avif", "jp2",
        "mp3", "m4a", "aac", "ogg", "oga", "opus", "wma", "flac",
        "mp4", "m4v", "webm", "avi", "mov", "wmv", "flv", "f4v", "mkv", "mpg", "mpeg", "3gp", "ogv", "swf",
        "zip", "lzn", "resitem", "7z", "rar", "gz", "tgz", "bz2", "xz", "zst",
        "pdf", "docx", "xlsx", "pptx", "odt", "ods", "odp", "epub"};
    return suffixes.contains(suffixOf(name));
}

bool ZipWriter::open(int fd)
{
    m_archive.reset(archive_write_new());
    if (!m_archive)
        return fail(QStringLiteral("out of memory"));
    archive *const a = m_archive.get();
    m_fd = fd;
    if (archive_write_set_format_zip(a) != ARCHIVE_OK
        || archive_write_set_options(a, "zip:hdrcharset=UTF-8") != ARCHIVE_OK
        // Page files are long runs of number text: zlib's default level 6
        // deflates them at a fifth of the speed of level 2 for an archive
        // only 8% smaller, and a teacher waits for every save.
        || archive_write_set_options(a, "zip:compression-level=2") != ARCHIVE_OK
        || archive_write_set_bytes_per_block(a, ArchiveBlockSize) != ARCHIVE_OK
        // A ZIP ends with its directory; padding after it would be junk to readers.
        || archive_write_set_bytes_in_last_block(a, 1) != ARCHIVE_OK
        || archive_write_open2(a, this, nullptr, &ZipWriter::writeOut, nullptr, nullptr) != ARCHIVE_OK)
        return failArchive(QStringLiteral("cannot start the archive"));
    return true;
}

// The archive is synced before it replaces the old one. Handing what is
// written to the disk as packing goes on leaves that sync only the tail to
// wait for, instead of the whole archive after the last entry: on a slow
// stick, seconds of a large lesson's save.
la_ssize_t ZipWriter::writeOut(archive *a, void *self, const void *buffer, size_t length)
{
    ZipWriter *const writer = static_cast<ZipWriter *>(self);
    ssize_t written;
    do
        written = ::write(writer->m_fd, buffer, length);
    while (written < 0 && errno == EINTR);
    if (written <= 0) {
        archive_set_error(a, written < 0 ? errno : EIO, "Write error");
        return -1;
    }
    writer->m_written += written;
    if (writer->m_written - writer->m_writebackFrom >= WritebackStep) {
        ::sync_file_range(writer->m_fd, writer->m_writebackFrom, writer->m_written - writer->m_writebackFrom,
                          SYNC_FILE_RANGE_WRITE);
        writer->m_writebackFrom = writer->m_written;
    }
    return written;
}

bool ZipWriter::addTree(int rootFd, const SkipTest &skip)
{
    PackedTree tree(
        skip, [this](const QByteArray &path, const struct stat &info) { return writeHeader(path, info); },
        [this](int dirFd, const QByteArray &name, const QByteArray &path) { return addFile(dirFd, name, path); });
    if (tree.walk(rootFd))
        return true;
    return m_error.isEmpty() ? fail(tree.errorString()) : false;
}

bool ZipWriter::addFile(int dirFd, const QByteArray &name, const QByteArray &path)
{
    const UniqueFd file(::openat(dirFd, name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat info;
    if (!file.isValid() || ::fstat(file.get(), &info) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot read ") + FsUtil::nameText(path), errno));
    if (!S_ISREG(info.st_mode))
        return fail(QStringLiteral("file changed while packing: ") + FsUtil::nameText(path));
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    return writeHeader(path, info) && copyData(file.get(), path, info.st_size);
}

bool ZipWriter::writeHeader(const QByteArray &path, const struct stat &info)
{
    const ArchiveEntry entry(archive_entry_new());
    if (!entry)
        return fail(QStringLiteral("out of memory"));
    archive_entry_set_pathname_utf8(entry.get(), path.constData());
    archive_entry_set_filetype(entry.get(), S_ISDIR(info.st_mode) ? AE_IFDIR : AE_IFREG);
    // No execute, set-id or sticky bits on files: a lesson holds no programs.
    archive_entry_set_perm(entry.get(), info.st_mode & (S_ISDIR(info.st_mode) ? 0777 : 0666));
    archive_entry_set_size(entry.get(), S_ISDIR(info.st_mode) ? 0 : info.st_size);
    archive_entry_set_mtime(entry.get(), info.st_mtim.tv_sec, info.st_mtim.tv_nsec);
    archive *const a = m_archive.get();
    // The unpacker checks the ratio only beyond storeFrom bytes, so storing
    // what is larger keeps every lesson written here acceptable to it.
    const bool store = isCompressedMedia(path) || info.st_size > m_storeFrom;
    const int chosen = store ? archive_write_zip_set_compression_store(a)
                                               : archive_write_zip_set_compression_deflate(a);
    if (chosen != ARCHIVE_OK || archive_write_header(a, entry.get()) != ARCHIVE_OK)
        return failArchive(QStringLiteral("cannot add ") + FsUtil::nameText(path));
    anchorCompressorMemory(!store && S_ISREG(info.st_mode) && info.st_size > 0);
    return true;
}

// The archive library sets up a fresh deflate state (about 256 KiB) for every
// entry and frees it at the entry's end. Freed at the top of the heap, the
// allocator gives it back to the system and the next entry faults it in again
// page by page: in a small process such as the command-line host that took
// several times as long as the deflating itself, for every page. A block taken
// just above the first state and held until the writer goes leaves each freed
// state below it, where the next entry finds it. Without the block (no memory
// for it) packing only runs slower.
void ZipWriter::anchorCompressorMemory(bool deflated)
{
    if (deflated && !m_heapAnchor)
        m_heapAnchor.reset(new (std::nothrow) char[HeapAnchorSize]);
}

bool ZipWriter::copyData(int fd, const QByteArray &path, off_t size)
{
    while (size > 0) {
        const size_t wanted = size_t(qMin<off_t>(size, off_t(m_buffer.size())));
        const ssize_t got = ::read(fd, m_buffer.data(), wanted);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return fail(FsUtil::errnoText(QStringLiteral("cannot read ") + FsUtil::nameText(path), errno));
        if (got == 0)
            return fail(QStringLiteral("file shrank while packing: ") + FsUtil::nameText(path));
        if (archive_write_data(m_archive.get(), m_buffer.data(), size_t(got)) != got)
            return failArchive(QStringLiteral("cannot write ") + FsUtil::nameText(path));
        size -= got;
    }
    if (archive_write_finish_entry(m_archive.get()) != ARCHIVE_OK)
        return failArchive(QStringLiteral("cannot write ") + FsUtil::nameText(path));
    return true;
}

bool ZipWriter::close()
{
    if (!m_archive)
        return fail(QStringLiteral("the archive was not opened"));
    if (archive_write_close(m_archive.get()) != ARCHIVE_OK)
        return failArchive(QStringLiteral("cannot finish the archive"));
    m_archive.reset();
    return true;
}

QString ZipWriter::errorString() const
{
    return m_error;
}

bool ZipWriter::fail(const QString &what)
{
    m_error = what;
    return false;
}

bool ZipWriter::failArchive(const QString &what)
{
    const char *detail = m_archive ? archive_error_string(m_archive.get()) : nullptr;
    const QString text = detail ? what + QLatin1String(": ") + QString::fromLocal8Bit(detail) : what;
    // libarchive says only "Write error"; the system's reason (a full disk,
    // a file size limit) is what the user can act on.
    const int error = m_archive ? archive_errno(m_archive.get()) : 0;
    return fail(error > 0 ? text + QLatin1String(" (") + qt_error_string(error) + QLatin1Char(')') : text);
}
