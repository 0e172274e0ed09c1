// SPDX-License-Identifier: MIT
#include "filetree.h"

#include "console.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <climits>

namespace {

const QDir::Filters kEntries = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::NoSymLinks | QDir::Hidden;

// Below a folder this deep the system can no longer reach a file by its
// path, and the copy would quietly stop short of the whole lesson.
bool isTooDeep(const QString &folder)
{
    return QFile::encodeName(folder).size() + NAME_MAX + 1 >= PATH_MAX;
}

bool makeFolder(const QDir &parent, const QString &name, QString *error)
{
    errno = 0;
    if (parent.mkpath(name))
        return true;
    *error = QStringLiteral("cannot make the folder '%1': %2").arg(QDir::cleanPath(parent.filePath(name)), Console::systemReason(errno ? errno : EIO));
    return false;
}

bool copyEntry(const QFileInfo &entry, const QDir &source, const QDir &target, QString *error)
{
    const QString relative = source.relativeFilePath(entry.filePath());
    const QString destination = target.filePath(relative);
    if (entry.isDir() && (isTooDeep(entry.filePath()) || isTooDeep(destination))) {
        *error = QStringLiteral("the path '%1' is too long for this system").arg(relative);
        return false;
    }
    if (entry.isDir())
        return makeFolder(target, relative, error);
    if (QFile::exists(destination))
        QFile::remove(destination);
    if (QFile::copy(entry.filePath(), destination))
        return true;
    *error = entry.isReadable() ? QStringLiteral("cannot write '%1'").arg(destination)
                                : QStringLiteral("cannot read '%1'").arg(entry.filePath());
    return false;
}

} // namespace

bool FileTree::copy(const QString &given, const QString &target, QString *error)
{
    // Relative entry names come from an absolute root: from a relative one,
    // QDir::relativeFilePath hands the source's own relative path back.
    const QString source = QFileInfo(given).absoluteFilePath();
    const QDir from(source);
    const QDir to(target);
    if (!makeFolder(to, QStringLiteral("."), error))
        return false;
    // Parents come before their children in the iteration, so folders exist
    // before their files are copied.
    QDirIterator it(source, kEntries, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        if (!copyEntry(it.fileInfo(), from, to, error))
            return false;
    }
    return true;
}

QStringList FileTree::files(const QString &folder)
{
    const QDir root(folder);
    QStringList result;
    QDirIterator it(folder, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (it.hasNext())
        result << root.relativeFilePath(it.next());
    result.sort();
    return result;
}

bool FileTree::isEmptyOrMissing(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.exists())
        return true;
    return info.isDir() && QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System).isEmpty();
}

bool FileTree::isLessonFolder(const QString &folder)
{
    return QFileInfo(QDir(folder).filePath(QStringLiteral("manifest.xml"))).isFile();
}
