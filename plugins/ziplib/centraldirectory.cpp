// SPDX-License-Identifier: MIT
#include "centraldirectory.h"

#include "fsutil.h"

#include <QtEndian>

#include <algorithm>
#include <climits>
#include <cerrno>
#include <unistd.h>

namespace {

const quint32 EndSignature = 0x06054b50;
const quint32 Zip64EndSignature = 0x06064b50;
const quint32 Zip64LocatorSignature = 0x07064b50;
const quint32 RecordSignature = 0x02014b50;
const quint32 LocalSignature = 0x04034b50;
const int EndSize = 22;
const int Zip64LocatorSize = 20;
const int Zip64EndSize = 56;
const int RecordSize = 46;
const int LocalSize = 30;
const int MaxComment = 0xffff;
const quint16 Utf8Flag = 0x0800;
const int UnixHost = 3;
const quint16 Zip64ExtraId = 0x0001;
const quint16 UnicodePathExtraId = 0x7075;

// Bytes 0x80 to 0xff of code page 437, the name encoding of entries without
// the UTF-8 flag.
const char16_t Cp437High[128] = {
    0x00c7, 0x00fc, 0x00e9, 0x00e2, 0x00e4, 0x00e0, 0x00e5, 0x00e7, 0x00ea, 0x00eb, 0x00e8, 0x00ef, 0x00ee, 0x00ec,
    0x00c4, 0x00c5, 0x00c9, 0x00e6, 0x00c6, 0x00f4, 0x00f6, 0x00f2, 0x00fb, 0x00f9, 0x00ff, 0x00d6, 0x00dc, 0x00a2,
    0x00a3, 0x00a5, 0x20a7, 0x0192, 0x00e1, 0x00ed, 0x00f3, 0x00fa, 0x00f1, 0x00d1, 0x00aa, 0x00ba, 0x00bf, 0x2310,
    0x00ac, 0x00bd, 0x00bc, 0x00a1, 0x00ab, 0x00bb, 0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556,
    0x2555, 0x2563, 0x2551, 0x2557, 0x255d, 0x255c, 0x255b, 0x2510, 0x2514, 0x2534, 0x252c, 0x251c, 0x2500, 0x253c,
    0x255e, 0x255f, 0x255a, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256c, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
    0x2558, 0x2552, 0x2553, 0x256b, 0x256a, 0x2518, 0x250c, 0x2588, 0x2584, 0x258c, 0x2590, 0x2580, 0x03b1, 0x00df,
    0x0393, 0x03c0, 0x03a3, 0x03c3, 0x00b5, 0x03c4, 0x03a6, 0x0398, 0x03a9, 0x03b4, 0x221e, 0x03c6, 0x03b5, 0x2229,
    0x2261, 0x00b1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00f7, 0x2248, 0x00b0, 0x2219, 0x00b7, 0x221a, 0x207f, 0x00b2,
    0x25a0, 0x00a0};

QByteArray fromCp437(const QByteArray &raw)
{
    QString text;
    text.reserve(raw.size());
    for (const char byte : raw) {
        const uchar code = uchar(byte);
        text += code < 0x80 ? QChar(code) : QChar(Cp437High[code - 0x80]);
    }
    return text.toUtf8();
}

quint16 u16(const QByteArray &data, int at)
{
    return qFromLittleEndian<quint16>(data.constData() + at);
}

quint32 u32(const QByteArray &data, int at)
{
    return qFromLittleEndian<quint32>(data.constData() + at);
}

quint64 u64(const QByteArray &data, int at)
{
    return qFromLittleEndian<quint64>(data.constData() + at);
}

bool readAt(int fd, quint64 offset, qint64 size, QByteArray *out)
{
    out->resize(int(size));
    qint64 done = 0;
    while (done < size) {
        const ssize_t got = ::pread(fd, out->data() + done, size_t(size - done), off_t(offset + quint64(done)));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        done += got;
    }
    return true;
}

QByteArray extraField(const QByteArray &extra, quint16 id)
{
    for (int at = 0; at + 4 <= extra.size();) {
        const int length = u16(extra, at + 2);
        if (at + 4 + length > extra.size())
            break;
        if (u16(extra, at) == id)
            return extra.mid(at + 4, length);
        at += 4 + length;
    }
    return QByteArray();
}

quint32 crc32(const QByteArray &data)
{
    quint32 crc = 0xffffffffu;
    for (const char byte : data) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

// The UTF-8 name some tools add beside a legacy one; it counts only while
// its checksum still matches the legacy name (a tool unaware of it may have
// renamed the entry since).
QByteArray unicodePath(const QByteArray &extra, const QByteArray &raw)
{
    const QByteArray field = extraField(extra, UnicodePathExtraId);
    if (field.size() < 6 || field.at(0) != 1 || u32(field, 1) != crc32(raw))
        return QByteArray();
    const QByteArray name = field.mid(5);
    return FsUtil::isValidUtf8(name) ? name : QByteArray();
}

// Names without the UTF-8 flag are code page 437, unless a UTF-8 form was
// added beside them, or the archive was made on Unix, where zip tools store
// the names' bytes as they are: those that are valid UTF-8 are taken so.
QByteArray legacyName(const QByteArray &raw, const QByteArray &extra, int madeBy)
{
    const QByteArray unicode = unicodePath(extra, raw);
    if (!unicode.isEmpty())
        return unicode;
    return madeBy == UnixHost && FsUtil::isValidUtf8(raw) ? raw : fromCp437(raw);
}

// A 32-bit field at its maximum means the real value is in the ZIP64 extra
// field, which holds only the values so marked, in this order.
bool widen(const QByteArray &zip64, int *at, quint64 *value)
{
    if (*value != 0xffffffffu)
        return true;
    if (*at + 8 > zip64.size())
        return false;
    *value = u64(zip64, *at);
    *at += 8;
    return true;
}

QString entryText(const QByteArray &name)
{
    return QStringLiteral("entry ") + FsUtil::nameText(name);
}

} // namespace

qint64 CentralDirectory::allowedBytes(quint64 stored, const LXArchiveLimits &limits)
{
    const quint64 ratio = quint64(limits.maxRatio);
    const quint64 byRatio = stored > quint64(LLONG_MAX) / ratio ? quint64(LLONG_MAX) : stored * ratio;
    return qint64(qMax(byRatio, quint64(limits.ratioCheckedFrom)));
}

bool CentralDirectory::read(int fd, qint64 fileSize, const LXArchiveLimits &limits)
{
    m_records.clear();
    return findEnd(fd, fileSize) && readRecords(fd, limits) && checkLayout(limits);
}

const std::vector<CentralDirectory::Record> &CentralDirectory::records() const
{
    return m_records;
}

QString CentralDirectory::errorString() const
{
    return m_error;
}

bool CentralDirectory::findEnd(int fd, qint64 fileSize)
{
    const qint64 tailSize = qMin<qint64>(fileSize, EndSize + MaxComment);
    QByteArray tail;
    if (tailSize < EndSize || !readAt(fd, quint64(fileSize - tailSize), tailSize, &tail))
        return fail(QStringLiteral("not a readable ZIP archive"));
    // The last signature whose comment ends exactly at the end of the file.
    for (int at = int(tailSize) - EndSize; at >= 0; --at) {
        if (u32(tail, at) != EndSignature || at + EndSize + u16(tail, at + 20) != tailSize)
            continue;
        const qint64 endAt = fileSize - tailSize + at;
        if (u16(tail, at + 4) != 0 || u16(tail, at + 6) != 0 || u16(tail, at + 8) != u16(tail, at + 10))
            return fail(QStringLiteral("archives split over several files are not read"));
        m_count = u16(tail, at + 10);
        m_directorySize = u32(tail, at + 12);
        m_directoryOffset = u32(tail, at + 16);
        m_directoryEnd = quint64(endAt);
        const bool wide = m_count == 0xffff || m_directorySize == 0xffffffffu || m_directoryOffset == 0xffffffffu;
        if (wide && endAt >= Zip64LocatorSize && !readZip64End(fd, endAt - Zip64LocatorSize))
            return false;
        if (m_directoryOffset > m_directoryEnd || m_directorySize > m_directoryEnd - m_directoryOffset)
            return fail(QStringLiteral("the archive's directory lies outside the file"));
        return true;
    }
    return fail(QStringLiteral("not a readable ZIP archive"));
}

bool CentralDirectory::readZip64End(int fd, qint64 locatorAt)
{
    QByteArray locator;
    if (!readAt(fd, quint64(locatorAt), Zip64LocatorSize, &locator) || u32(locator, 0) != Zip64LocatorSignature)
        return true;
    const quint64 endAt = u64(locator, 8);
    QByteArray end;
    if (endAt > quint64(locatorAt) || !readAt(fd, endAt, Zip64EndSize, &end) || u32(end, 0) != Zip64EndSignature)
        return fail(QStringLiteral("damaged ZIP64 directory"));
    m_count = u64(end, 32);
    m_directorySize = u64(end, 40);
    m_directoryOffset = u64(end, 48);
    m_directoryEnd = endAt;
    return true;
}

bool CentralDirectory::readRecords(int fd, const LXArchiveLimits &limits)
{
    // Counted before anything is read, so a huge count costs nothing.
    if (m_count > quint64(limits.maxEntries))
        return fail(QStringLiteral("the archive holds more than %1 entries (limit of entries)").arg(limits.maxEntries));
    // Each record is at most three 16-bit lengths beyond its fixed part.
    const quint64 largest = m_count * quint64(RecordSize + 3 * 0xffff);
    if (m_directorySize > largest || m_directorySize > quint64(INT_MAX))
        return fail(QStringLiteral("the archive's directory is larger than its entries need"));
    QByteArray directory;
    if (!readAt(fd, m_directoryOffset, qint64(m_directorySize), &directory))
        return fail(QStringLiteral("cannot read the archive's directory"));
    int at = 0;
    while (at + 4 <= directory.size() && u32(directory, at) == RecordSignature) {
        if (m_records.size() >= m_count)
            return fail(QStringLiteral("the archive's directory holds more entries than it declares (%1)")
                            .arg(m_count));
        Record record;
        if (!parseRecord(directory, &at, &record) || !locateData(fd, &record))
            return false;
        m_records.push_back(record);
    }
    if (m_records.size() != m_count)
        return fail(QStringLiteral("the archive declares %1 entries but its directory holds %2")
                        .arg(m_count).arg(m_records.size()));
    return true;
}

bool CentralDirectory::parseRecord(const QByteArray &directory, int *at, Record *record)
{
    const int start = *at;
    if (start + RecordSize > directory.size())
        return fail(QStringLiteral("damaged archive directory"));
    const quint16 flags = u16(directory, start + 8);
    const int nameLength = u16(directory, start + 28);
    const int extraLength = u16(directory, start + 30);
    const int commentLength = u16(directory, start + 32);
    const quint32 attributes = u32(directory, start + 38);
    if (start + RecordSize + nameLength + extraLength + commentLength > directory.size())
        return fail(QStringLiteral("damaged archive directory"));
    const QByteArray raw = directory.mid(start + RecordSize, nameLength);
    const QByteArray extra = directory.mid(start + RecordSize + nameLength, extraLength);
    *at = start + RecordSize + nameLength + extraLength + commentLength;

    if ((flags & Utf8Flag) && !FsUtil::isValidUtf8(raw))
        return fail(QStringLiteral("an entry name is not valid UTF-8: ") + FsUtil::nameText(raw));
    record->name = (flags & Utf8Flag) ? raw : legacyName(raw, extra, u16(directory, start + 4) >> 8);
    record->crc = u32(directory, start + 16);
    record->compressed = u32(directory, start + 20);
    record->size = u32(directory, start + 24);
    record->offset = u32(directory, start + 42);
    const QByteArray zip64 = extraField(extra, Zip64ExtraId);
    int wideAt = 0;
    if (!widen(zip64, &wideAt, &record->size) || !widen(zip64, &wideAt, &record->compressed)
        || !widen(zip64, &wideAt, &record->offset))
        return fail(entryText(record->name) + QStringLiteral(" has a damaged ZIP64 field"));
    // MS-DOS folder bit, or a Unix folder in the upper half.
    const bool folder = raw.endsWith('/') || (attributes & 0x10) || ((attributes >> 16) & 0170000) == 0040000;
    if (folder && (record->size != 0 || record->compressed > 2))
        return fail(entryText(record->name) + QStringLiteral(" is a folder that holds data"));
    return true;
}

bool CentralDirectory::locateData(int fd, Record *record)
{
    QByteArray local;
    if (record->offset >= m_directoryOffset || !readAt(fd, record->offset, LocalSize, &local)
        || u32(local, 0) != LocalSignature)
        return fail(entryText(record->name) + QStringLiteral(" has no header where the directory says"));
    const quint64 dataAt = record->offset + LocalSize + u16(local, 26) + u16(local, 28);
    record->dataEnd = dataAt + record->compressed;
    if (record->dataEnd < dataAt || record->dataEnd > m_directoryOffset)
        return fail(entryText(record->name) + QStringLiteral(" runs past the archive's data"));
    return true;
}

bool CentralDirectory::checkLayout(const LXArchiveLimits &limits)
{
    std::sort(m_records.begin(), m_records.end(),
              [](const Record &a, const Record &b) { return a.offset < b.offset; });
    quint64 declared = 0;
    quint64 stored = 0;
    for (size_t i = 0; i < m_records.size(); ++i) {
        const Record &record = m_records[i];
        // Two entries sharing bytes let one archive show different files to
        // different readers; ordinary tools refuse it too.
        if (i > 0 && m_records[i - 1].dataEnd > record.offset)
            return fail(entryText(m_records[i - 1].name) + QStringLiteral(" overlaps ") + entryText(record.name));
        if (qint64(qMin(record.size, quint64(LLONG_MAX))) > allowedBytes(record.compressed, limits))
            return fail(entryText(record.name)
                        + QStringLiteral(" would expand more than %1 times (limit of the compression ratio)")
                              .arg(limits.maxRatio));
        declared += qMin(record.size, quint64(LLONG_MAX) - declared);
        stored += record.compressed;
    }
    if (qint64(declared) > allowedBytes(stored, limits))
        return fail(QStringLiteral("the archive would expand more than %1 times its size (limit of the unpacked size)")
                        .arg(limits.maxRatio));
    return true;
}

bool CentralDirectory::fail(const QString &what)
{
    m_error = what;
    return false;
}
