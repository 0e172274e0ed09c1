// SPDX-License-Identifier: MIT
#include "salvagereader.h"

#include "console.h"

#include "document/lessonpath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <archive.h>
#include <archive_entry.h>

#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

const QByteArray kLocalHeader("PK\x03\x04", 4);
const QByteArray kDirectoryEnd("PK\x05\x06", 4);
constexpr qint64 MaxExpandedTotal = qint64(4) << 30;
constexpr qint64 RatioCheckedFrom = qint64(16) << 20;
constexpr qint64 MaxRatio = 1000;
constexpr int MaxEntries = 100000;
constexpr qint64 MaxArchive = qint64(1) << 30;
constexpr int kTailPadding = 64;

// The end record sits in the last 22 bytes plus a comment of at most 64 KiB.
const qint64 kDirectoryEndReach = 22 + 65535;

struct ReaderFree {
    void operator()(archive *reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, ReaderFree>;

qint64 findFrom(const uchar *data, qint64 size, qint64 from, const QByteArray &what)
{
    if (from >= size)
        return -1;
    const void *found = memmem(data + from, size_t(size - from), what.constData(), size_t(what.size()));
    return found ? qint64(static_cast<const uchar *>(found) - data) : -1;
}

QString readerError(archive *reader, const QString &fallback)
{
    const char *text = archive_error_string(reader);
    return text ? QString::fromUtf8(text) : fallback;
}

} // namespace

SalvageReader::SalvageReader(const QString &archive)
    : m_archive(archive)
{
}

bool SalvageReader::readInto(const QString &folder)
{
    m_folder = folder;
    QFile file(m_archive);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    m_archiveSize = file.size();
    if (m_archiveSize > MaxArchive)
        return fail(QStringLiteral("larger than 1 GiB"));
    // The reader looks up to 24 bytes past an entry's data for the largest
    // form of its trailing sizes record; zeros after the end let an entry
    // that ends just before a cut be read, its CRC checked all the same.
    QByteArray bytes = file.read(m_archiveSize);
    if (bytes.size() != m_archiveSize || bytes.isEmpty())
        return fail(QStringLiteral("the file is empty or cannot be read"));
    bytes.append(QByteArray(kTailPadding, '\0'));
    const uchar *data = reinterpret_cast<const uchar *>(bytes.constData());
    const qint64 tail = qMax<qint64>(0, m_archiveSize - kDirectoryEndReach);
    m_endsEarly = findFrom(data, m_archiveSize, tail, kDirectoryEnd) < 0;
    qint64 start = findFrom(data, m_archiveSize, 0, kLocalHeader);
    if (start < 0)
        return fail(QStringLiteral("no ZIP entry found: not a lesson archive"));
    while (start >= 0) {
        qint64 resumeAt = -1;
        if (!readFrom(data, bytes.size(), start, &resumeAt))
            return false;
        start = resumeAt < 0 ? -1 : findFrom(data, m_archiveSize, resumeAt, kLocalHeader);
    }
    return !m_kept.isEmpty() || fail(QStringLiteral("no entry could be read"));
}

// One pass of the streaming reader from the local header at start. A damaged
// entry ends the pass; *resumeAt then says where to look for the next header.
bool SalvageReader::readFrom(const uchar *data, qint64 size, qint64 start, qint64 *resumeAt)
{
    Reader reader(archive_read_new());
    if (!reader || archive_read_support_format_zip_streamable(reader.get()) != ARCHIVE_OK
        || archive_read_open_memory(reader.get(), data + start, size_t(size - start)) != ARCHIVE_OK)
        return fail(QStringLiteral("cannot start the ZIP reader"));
    for (;;) {
        archive_entry *entry = nullptr;
        const int status = archive_read_next_header(reader.get(), &entry);
        const qint64 header = start + archive_read_header_position(reader.get());
        if (status == ARCHIVE_EOF)
            return true;
        Console::progress(int(header >> 10), int(size >> 10), QStringLiteral("reading (KiB)"));
        if (status < ARCHIVE_WARN || !readEntry(reader.get(), entry)) {
            if (!m_error.isEmpty())
                return false;
            *resumeAt = qMax(start, header) + 1;
            return true;
        }
    }
}

// False when the stream cannot go on past this entry.
bool SalvageReader::readEntry(archive *reader, archive_entry *entry)
{
    if (++m_entries > MaxEntries)
        return fail(QStringLiteral("the archive holds more than %1 entries").arg(MaxEntries));
    QString name;
    if (!admit(entry, &name))
        return archive_read_data_skip(reader) == ARCHIVE_OK;
    if (archive_entry_filetype(entry) == AE_IFDIR)
        return QDir(m_folder).mkpath(name) || archive_read_data_skip(reader) == ARCHIVE_OK;
    return writeData(reader, name);
}

bool SalvageReader::admit(archive_entry *entry, QString *name)
{
    const char *utf8 = archive_entry_pathname_utf8(entry);
    const QString raw = utf8 ? QString::fromUtf8(utf8) : QString::fromLocal8Bit(archive_entry_pathname(entry));
    *name = LessonPath::clean(raw);
    const auto type = archive_entry_filetype(entry);
    if (!utf8)
        lose(raw, QStringLiteral("the name is not valid UTF-8"));
    else if (name->isEmpty())
        lose(raw, QStringLiteral("refused: the name points outside the lesson"));
    else if (archive_entry_is_encrypted(entry))
        lose(raw, QStringLiteral("refused: encrypted"));
    else if (type == AE_IFLNK || archive_entry_symlink(entry) || archive_entry_hardlink(entry))
        lose(raw, QStringLiteral("refused: a link"));
    else if (type != AE_IFREG && type != AE_IFDIR)
        lose(raw, QStringLiteral("refused: a device, pipe or socket"));
    else if (type == AE_IFREG && m_names.contains(*name))
        lose(raw, QStringLiteral("a second entry of that name, left out"));
    else
        return true;
    return false;
}

bool SalvageReader::writeData(archive *reader, const QString &name)
{
    m_names.insert(name);
    const QString path = QDir(m_folder).filePath(name);
    // The folder is new and only this reader writes into it, so no step of
    // the path can be a link; O_NOFOLLOW and O_EXCL keep it that way.
    const int fd = makeParent(name)
        ? ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644)
        : -1;
    if (fd < 0) {
        lose(name, QStringLiteral("clashes with another entry"));
        return archive_read_data_skip(reader) == ARCHIVE_OK;
    }
    const bool copied = copyData(reader, fd, name);
    const bool closed = ::close(fd) == 0;
    if (copied && closed) {
        m_kept << name;
        return true;
    }
    QFile::remove(path);
    m_names.remove(name);
    if (!copied && m_error.isEmpty())
        lose(name, readerError(reader, QStringLiteral("damaged data")));
    return false;
}

bool SalvageReader::copyData(archive *reader, int fd, const QString &name)
{
    char buffer[64 * 1024];
    qint64 written = 0;
    for (;;) {
        const la_ssize_t count = archive_read_data(reader, buffer, sizeof buffer);
        if (count == 0)
            return true;
        if (count < 0)
            return false;
        written += count;
        m_expanded += count;
        // Counted on the bytes that come out, not the sizes the headers claim.
        if (m_expanded > MaxExpandedTotal)
            return fail(QStringLiteral("the archive expands to more than 4 GiB (a decompression bomb?)"));
        if (written > RatioCheckedFrom && written / MaxRatio > m_archiveSize)
            return fail(QStringLiteral("entry '%1' expands to more than %2 times the archive's size"
                                       " (a decompression bomb?)").arg(name).arg(MaxRatio));
        for (la_ssize_t done = 0; done < count;) {
            const ssize_t chunk = ::write(fd, buffer + done, size_t(count - done));
            if (chunk <= 0)
                return fail(QStringLiteral("cannot write '%1'").arg(name));
            done += chunk;
        }
    }
}

bool SalvageReader::makeParent(const QString &name)
{
    const QString parent = QFileInfo(name).path();
    return parent == QLatin1String(".") || QDir(m_folder).mkpath(parent);
}

void SalvageReader::lose(const QString &name, const QString &why)
{
    const QString line = QStringLiteral("%1: %2").arg(name, why);
    if (!m_lost.contains(line))
        m_lost << line;
}

bool SalvageReader::fail(const QString &what)
{
    m_error = what;
    return false;
}

QStringList SalvageReader::kept() const
{
    return m_kept;
}

QStringList SalvageReader::lost() const
{
    return m_lost;
}

bool SalvageReader::endsEarly() const
{
    return m_endsEarly;
}

QString SalvageReader::errorString() const
{
    return m_error;
}
