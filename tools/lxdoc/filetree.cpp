#include "filetree.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

// The new archive's data must be on disk before its name replaces the old one.
bool syncToDisk(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
}

const QDir::Filters kEntries = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::NoSymLinks | QDir::Hidden;

// Below a folder this deep the system can no longer reach a file by its
// path, and the copy would quietly stop short of the whole lesson.
bool isTooDeep(const QString &folder)
{
    return QFile::encodeName(folder).size() + NAME_MAX + 1 >= PATH_MAX;
}

bool copyEntry(const QFileInfo &entry, const QDir &source, const QDir &target, QString *error)
{
    const QString relative = source.relativeFilePath(entry.filePath());
    const QString destination = target.filePath(relative);
    if (entry.isDir() && (isTooDeep(entry.filePath()) || isTooDeep(destination))) {
        *error = QStringLiteral("the path '%1' is too long for this system").arg(relative);
        return false;
    }
    if (entry.isDir()) {
        if (target.mkpath(relative))
            return true;
        *error = QStringLiteral("cannot make the folder '%1'").arg(destination);
        return false;
    }
    if (QFile::exists(destination))
        QFile::remove(destination);
    if (QFile::copy(entry.filePath(), destination))
        return true;
    *error = entry.isReadable() ? QStringLiteral("cannot write '%1'").arg(destination)
                                : QStringLiteral("cannot read '%1'").arg(entry.filePath());
    return false;
}

// Reserved by creating it; QFile::copy will not write over a file, so the
// reservation is removed just before the copy takes the name.
QString uniquePartialName(const QString &target)
{
    const QFileInfo info(target);
    QTemporaryFile reserve(info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".XXXXXX.part"));
    if (!reserve.open())
        return QString();
    reserve.setAutoRemove(false);
    const QString name = reserve.fileName();
    reserve.close();
    QFile::remove(name);
    return name;
}

} // namespace

bool FileTree::copy(const QString &source, const QString &target, QString *error)
{
    const QDir from(source);
    QDir to(target);
    if (!to.mkpath(QStringLiteral("."))) {
        *error = QStringLiteral("cannot make the folder '%1'").arg(target);
        return false;
    }
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

bool FileTree::publish(const QString &source, const QString &target, QString *error)
{
    // A name of its own for every run: two packs onto one target must not
    // write into each other's partial file.
    const QString partial = uniquePartialName(target);
    if (partial.isEmpty() || !QFile::copy(source, partial) || !syncToDisk(partial)) {
        if (!partial.isEmpty())
            QFile::remove(partial);
        *error = QStringLiteral("cannot write '%1'").arg(target);
        return false;
    }
    // rename(2) swaps the old archive for the new one in a single step, so a
    // kill or crash at any moment leaves one of them whole; removing the old
    // one first would leave nothing between the two calls.
    if (::rename(QFile::encodeName(partial).constData(), QFile::encodeName(target).constData()) == 0)
        return true;
    QFile::remove(partial);
    *error = QStringLiteral("cannot replace '%1'").arg(target);
    return false;
}
