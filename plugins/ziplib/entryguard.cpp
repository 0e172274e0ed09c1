// SPDX-License-Identifier: MIT
#include "entryguard.h"

#include "archivehandle.h"
#include "centraldirectory.h"
#include "fsutil.h"

#include <sys/stat.h>

namespace {

QString entryText(const QByteArray &name)
{
    return QStringLiteral("entry ") + FsUtil::nameText(name);
}

} // namespace

EntryGuard::EntryGuard(const LXArchiveLimits &limits, quint64 storedTotal)
    : m_limits(limits)
    , m_allowedTotal(CentralDirectory::allowedBytes(storedTotal, limits))
{
}

bool EntryGuard::admit(archive_entry *entry, const QByteArray &name, QByteArray *path)
{
    if (!checkKind(entry, name) || !cleanName(name, path))
        return false;
    return checkUnique(*path, archive_entry_filetype(entry) == AE_IFDIR);
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

bool EntryGuard::admitData(const QByteArray &path, qint64 entryBytes, quint64 entryStored, qint64 chunk)
{
    m_expanded += chunk;
    if (entryBytes > CentralDirectory::allowedBytes(entryStored, m_limits))
        return fail(entryText(path) + QStringLiteral(" expands more than %1 times (limit of the compression ratio)")
                                          .arg(m_limits.maxRatio));
    if (m_expanded > m_allowedTotal)
        return fail(QStringLiteral("the archive expands more than %1 times its size (limit of the unpacked size)")
                        .arg(m_limits.maxRatio));
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
