// SPDX-License-Identifier: MIT
#include "document/temproot.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const char *const kPrivateName = "/lxdoc";

bool writableFolder(const QString &path)
{
    return ::access(QFile::encodeName(path).constData(), W_OK | X_OK) == 0;
}

// The folder beside the executable is shared by whoever runs it, as it always
// was; it only has to be a folder this process may write into, now or once made.
bool usableBesideExecutable(const QString &folder)
{
    const QFileInfo info(folder);
    if (info.isSymLink() && !info.exists())
        return false;
    if (info.exists())
        return info.isDir() && writableFolder(folder);
    return writableFolder(info.path());
}

// A private root must be the user's own real folder: a link, or a folder of
// someone else, would let another user see or swap the working folders.
bool ownPrivateFolder(const QString &folder)
{
    const QByteArray name = QFile::encodeName(folder);
    struct stat status;
    if (::lstat(name.constData(), &status) != 0)
        return false;
    if (!S_ISDIR(status.st_mode) || status.st_uid != ::geteuid())
        return false;
    return (status.st_mode & 077) == 0 || ::chmod(name.constData(), 0700) == 0;
}

bool makePrivateFolder(const QString &folder)
{
    QDir().mkpath(QFileInfo(folder).path());
    ::mkdir(QFile::encodeName(folder).constData(), 0700);
    return ownPrivateFolder(folder);
}

// Relative names would follow the working directory, and "/" or the shared
// temporary folder itself would put working folders where every user writes.
bool acceptableRoot(const QString &folder)
{
    return QDir::isAbsolutePath(folder) && folder != QLatin1String("/")
        && folder != QDir::cleanPath(QDir::tempPath());
}

QString withSlash(const QString &folder)
{
    return folder + QLatin1Char('/');
}

} // namespace

QString TempRoot::path()
{
    return choose(besideExecutable());
}

QString TempRoot::choose(const QString &beside)
{
    if (!beside.isEmpty() && usableBesideExecutable(beside))
        return withSlash(beside);
    const QStringList candidates = privateCandidates();
    for (const QString &candidate : candidates) {
        if (makePrivateFolder(candidate))
            return withSlash(candidate);
    }
    return QString();
}

QStringList TempRoot::places()
{
    QStringList result = privateCandidates();
    const QString beside = besideExecutable();
    if (!beside.isEmpty())
        result.prepend(beside);
    return result;
}

QString TempRoot::executableFolder()
{
    return QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QString();
}

QString TempRoot::besideExecutable()
{
    const QString folder = executableFolder();
    return folder.isEmpty() ? QString() : folder + QLatin1String("/Temp");
}

QStringList TempRoot::privateCandidates()
{
    QStringList result;
    const auto add = [&result](const QString &folder) {
        if (acceptableRoot(folder))
            result << folder;
    };
    const QString chosen = qEnvironmentVariable("LXDOC_TEMP_ROOT");
    if (!chosen.isEmpty())
        add(QDir::cleanPath(chosen));
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty())
        add(QDir::cleanPath(runtime) + QLatin1String(kPrivateName));
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (!cache.isEmpty())
        add(QDir::cleanPath(cache) + QLatin1String(kPrivateName));
    return result;
}
