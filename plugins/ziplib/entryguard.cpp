#include "entryguard.h"

#include "archivehandle.h"
#include "fsutil.h"

#include <sys/stat.h>

namespace {

QString entryText(const QByteArray &name)
{
    return QStringLiteral("entry ") + FsUtil::nameText(name);
}

QString bombText(const QByteArray &name)
{
    return entryText(name) + QStringLiteral(" would expand to more than %1 times the archive's size"
                                            " (a decompression bomb?)").arg(EntryGuard::MaxRatio);
}

} // namespace

EntryGuard::EntryGuard(qint64 archiveSize)
    : m_archiveSize(qMax<qint64>(archiveSize, 1))
{
}

bool EntryGuard::admit(archive_entry *entry, QByteArray *path)
{
    if (++m_entries > MaxEntries)
        return fail(QStringLiteral("the archive holds more than %1 entries").arg(MaxEntries));
    const char *utf8 = archive_entry_pathname_utf8(entry);
    if (!utf8 || !FsUtil::isValidUtf8(QByteArray(utf8)))
        return fail(QStringLiteral("an entry name is not valid UTF-8: ")
                    + FsUtil::nameText(QByteArray(archive_entry_pathname(entry))));
    const QByteArray name(utf8);
    if (!checkKind(entry, name) || !cleanName(name, path))
        return false;
    const bool isDir = archive_entry_filetype(entry) == AE_IFDIR;
    const qint64 size = isDir || !archive_entry_size_is_set(entry) ? 0 : archive_entry_size(entry);
    return checkUnique(*path, isDir) && checkSize(*path, size);
}

bool EntryGuard::checkKind(archive_entry *entry, const QByteArray &name)
{
    if (archive_entry_is_data_encrypted(entry) || archive_entry_is_metadata_encrypted(entry))
        return fail(entryText(name) + QStringLiteral(" is encrypted"));
    if (archive_entry_hardlink(entry))
        return fail(entryText(name) + QStringLiteral(" is a hard link"));
    const auto type = archive_entry_filetype(entry);
    if (type == AE_IFLNK || archive_entry_symlink(entry))
        return fail(entryText(name) + QStringLiteral(" is a symbolic link"));
    if (type != AE_IFREG && type != AE_IFDIR)
        return fail(entryText(name) + QStringLiteral(" is a device, pipe or socket"));
    return true;
}

bool EntryGuard::cleanName(const QByteArray &name, QByteArray *path)
{
    if (name.startsWith('/'))
        return fail(entryText(name) + QStringLiteral(" has an absolute path"));
    path->clear();
    const QList<QByteArray> parts = name.split('/');
    for (const QByteArray &part : parts) {
        if (part == "..")
            return fail(entryText(name) + QStringLiteral(" points outside the folder"));
        if (part.isEmpty() || part == ".")
            continue;
        if (!path->isEmpty())
            path->append('/');
        path->append(part);
    }
    if (path->isEmpty())
        return fail(entryText(name) + QStringLiteral(" has no name"));
    return true;
}

bool EntryGuard::checkUnique(const QByteArray &path, bool isDir)
{
    if (m_files.contains(path) || (isDir && m_namedFolders.contains(path)))
        return fail(QStringLiteral("duplicate ") + entryText(path));
    if (!isDir && m_folders.contains(path))
        return fail(entryText(path) + QStringLiteral(" clashes with a folder of the same name"));
    for (int slash = path.indexOf('/'); slash >= 0; slash = path.indexOf('/', slash + 1)) {
        const QByteArray parent = path.left(slash);
        if (m_files.contains(parent))
            return fail(entryText(path) + QStringLiteral(" lies below the file ") + FsUtil::nameText(parent));
        m_folders.insert(parent);
    }
    if (isDir) {
        m_folders.insert(path);
        m_namedFolders.insert(path);
    } else {
        m_files.insert(path);
    }
    return true;
}

bool EntryGuard::checkSize(const QByteArray &path, qint64 size)
{
    if (size > RatioCheckedFrom && size / MaxRatio > m_archiveSize)
        return fail(bombText(path));
    m_declared += size;
    if (size > MaxExpandedTotal || m_declared > MaxExpandedTotal)
        return fail(QStringLiteral("the archive would expand to more than 4 GiB (a decompression bomb?)"));
    return true;
}

bool EntryGuard::admitData(const QByteArray &path, qint64 entryBytes, qint64 chunk)
{
    m_expanded += chunk;
    if (m_expanded > MaxExpandedTotal)
        return fail(QStringLiteral("the archive expands to more than 4 GiB (a decompression bomb?)"));
    if (entryBytes > RatioCheckedFrom && entryBytes / MaxRatio > m_archiveSize)
        return fail(bombText(path));
    return true;
}

QString EntryGuard::errorString() const
{
    return m_error;
}

bool EntryGuard::fail(const QString &what)
{
    m_error = what;
    return false;
}
