// SPDX-License-Identifier: MIT
#include "zipextractor.h"

#include "entryguard.h"
#include "fsutil.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const size_t ReadBlockSize = size_t(1) << 20;

bool hasTime(archive_entry *entry)
{
    return archive_entry_mtime_is_set(entry) != 0;
}

using FileTime = ZipExtractor::FileTime;

FileTime timeOf(archive_entry *entry)
{
    FileTime time;
    time.tv_sec = archive_entry_mtime(entry);
    time.tv_nsec = archive_entry_mtime_nsec(entry);
    return time;
}

bool setTime(int fd, const FileTime &modified)
{
    FileTime times[2];
    times[0].tv_sec = 0;
    times[0].tv_nsec = UTIME_OMIT;
    times[1] = modified;
    return ::futimens(fd, times) == 0;
}

} // namespace

ZipExtractor::ZipExtractor(const QString &archive, const LXArchiveLimits &limits)
    : m_archivePath(QFile::encodeName(archive))
    , m_limits(limits)
{
}

bool ZipExtractor::scan()
{
    return run(-1);
}

bool ZipExtractor::extractInto(int rootFd)
{
    return run(rootFd);
}

bool ZipExtractor::run(int rootFd)
{
    UniqueFd file;
    ArchiveReader reader;
    if (!openArchive(&file, &reader)) {
        m_archive = nullptr;
        return false;
    }
    m_folderTimes.clear();
    m_parentPath.clear();
    m_parentFd = UniqueFd();
    EntryGuard guard(m_limits, m_stored);
    bool ok = true;
    size_t index = 0;
    for (; ok; ++index) {
        archive_entry *entry = nullptr;
        const int status = archive_read_next_header(m_archive, &entry);
        if (status == ARCHIVE_EOF)
            break;
        // A warning (such as a name that cannot be converted) still refuses the
        // archive, but the guard's reason is the clearer one when it has one.
        QByteArray path;
        if (status != ARCHIVE_OK && status != ARCHIVE_WARN)
            ok = failArchive(QStringLiteral("damaged archive"));
        else if (!admitEntry(entry, index, guard, &path))
            ok = false;
        else if (status != ARCHIVE_OK)
            ok = failArchive(QStringLiteral("damaged archive"));
        else if (rootFd >= 0)
            ok = extractEntry(entry, path, rootFd, guard);
    }
    // Entries the reader skips or merges would be lost without a word.
    if (ok && index != m_directory.records().size())
        ok = fail(QStringLiteral("the archive declares %1 entries but %2 can be read")
                      .arg(m_directory.records().size()).arg(index));
    m_parentFd = UniqueFd();
    m_archive = nullptr;
    return ok;
}

bool ZipExtractor::openArchive(UniqueFd *file, ArchiveReader *reader)
{
    *file = UniqueFd(::open(m_archivePath.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat info;
    if (!file->isValid() || ::fstat(file->get(), &info) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot open the archive"), errno));
    if (!S_ISREG(info.st_mode))
        return fail(QStringLiteral("the archive is not a regular file"));
    if (!m_directory.read(file->get(), info.st_size, m_limits))
        return fail(m_directory.errorString());
    m_stored = 0;
    for (const CentralDirectory::Record &record : m_directory.records())
        m_stored += record.compressed;
    reader->reset(archive_read_new());
    if (!*reader)
        return fail(QStringLiteral("out of memory"));
    m_archive = reader->get();
    // The seekable reader trusts the central directory, as other ZIP tools do,
    // and so sees exactly the entries they see; a truncated file has none.
    if (archive_read_support_format_zip_seekable(m_archive) != ARCHIVE_OK
        || archive_read_open_fd(m_archive, file->get(), ReadBlockSize) != ARCHIVE_OK)
        return failArchive(QStringLiteral("not a readable ZIP archive"));
    return true;
}

// The reader walks the entries in the order of their bytes, the order the
// directory's records are sorted in.
bool ZipExtractor::admitEntry(archive_entry *entry, size_t index, EntryGuard &guard, QByteArray *path)
{
    const std::vector<CentralDirectory::Record> &records = m_directory.records();
    if (index >= records.size())
        return fail(QStringLiteral("the archive holds more entries than it declares (%1)").arg(records.size()));
    const CentralDirectory::Record &record = records[index];
    if (!guard.admit(entry, record.name, path))
        return fail(guard.errorString());
    if (archive_entry_size_is_set(entry) && quint64(archive_entry_size(entry)) != record.size)
        return fail(QStringLiteral("the archive's entries do not match its directory at ")
                    + FsUtil::nameText(record.name));
    m_entryStored = record.compressed;
    return true;
}

bool ZipExtractor::extractEntry(archive_entry *entry, const QByteArray &path, int rootFd, EntryGuard &guard)
{
    if (archive_entry_filetype(entry) == AE_IFDIR)
        return makeFolder(entry, path, rootFd);
    return writeFile(entry, path, rootFd, guard);
}

bool ZipExtractor::makeFolder(archive_entry *entry, const QByteArray &path, int rootFd)
{
    if (!FsUtil::openDirPath(rootFd, path, true).isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot make folder ") + FsUtil::nameText(path), errno));
    if (hasTime(entry))
        m_folderTimes.push_back({path, timeOf(entry)});
    return true;
}

bool ZipExtractor::writeFile(archive_entry *entry, const QByteArray &path, int rootFd, EntryGuard &guard)
{
    const int parent = parentFolder(rootFd, path);
    const QByteArray leaf = path.mid(path.lastIndexOf('/') + 1);
    UniqueFd out(parent < 0 ? -1
                            : ::openat(parent, leaf.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                       0666));
    if (!out.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot create ") + FsUtil::nameText(path), errno));
    if (!copyData(out.get(), entry, path, guard))
        return false;
    if ((hasTime(entry) && !setTime(out.get(), timeOf(entry))) || !out.close())
        return fail(FsUtil::errnoText(QStringLiteral("cannot finish ") + FsUtil::nameText(path), errno));
    return true;
}

bool ZipExtractor::copyData(int fd, archive_entry *entry, const QByteArray &path, EntryGuard &guard)
{
    const qint64 declared = archive_entry_size_is_set(entry) ? archive_entry_size(entry) : -1;
    qint64 written = 0;
    for (;;) {
        const void *block = nullptr;
        size_t size = 0;
        la_int64_t offset = 0;
        const int status = archive_read_data_block(m_archive, &block, &size, &offset);
        if (status == ARCHIVE_EOF)
            break;
        // A checksum mismatch comes as a mere warning; for a lesson it is damage.
        if (status != ARCHIVE_OK)
            return failArchive(QStringLiteral("damaged data in ") + FsUtil::nameText(path));
        if (offset != written)
            return fail(QStringLiteral("unexpected gap in ") + FsUtil::nameText(path));
        written += qint64(size);
        if (declared >= 0 && written > declared)
            return fail(FsUtil::nameText(path) + QStringLiteral(" holds more data than its header says"));
        if (!guard.admitData(path, written, m_entryStored, qint64(size)))
            return fail(guard.errorString());
        if (!FsUtil::writeAll(fd, static_cast<const char *>(block), size))
            return fail(FsUtil::errnoText(QStringLiteral("cannot write ") + FsUtil::nameText(path), errno));
    }
    if (declared >= 0 && written != declared)
        return fail(FsUtil::nameText(path) + QStringLiteral(" holds less data than its header says"));
    return true;
}

int ZipExtractor::parentFolder(int rootFd, const QByteArray &path)
{
    // Entries of one folder usually follow each other: keep its descriptor.
    const int slash = path.lastIndexOf('/');
    const QByteArray parent = slash < 0 ? QByteArray() : path.left(slash);
    if (!m_parentFd.isValid() || parent != m_parentPath) {
        m_parentPath = parent;
        m_parentFd = FsUtil::openDirPath(rootFd, parent, true);
    }
    return m_parentFd.get();
}

void ZipExtractor::restoreFolderTimes(int rootFd) const
{
    // A time that cannot be set loses no content, so it fails nothing.
    for (const FolderTime &folder : m_folderTimes) {
        const UniqueFd fd = FsUtil::openDirPath(rootFd, folder.path, false);
        if (fd.isValid())
            setTime(fd.get(), folder.time);
    }
}

QString ZipExtractor::errorString() const
{
    return m_error;
}

bool ZipExtractor::fail(const QString &what)
{
    m_error = what;
    return false;
}

bool ZipExtractor::failArchive(const QString &what)
{
    const char *detail = m_archive ? archive_error_string(m_archive) : nullptr;
    return fail(detail ? what + QLatin1String(": ") + QString::fromLocal8Bit(detail) : what);
}
