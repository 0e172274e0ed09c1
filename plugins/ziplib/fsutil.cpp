// SPDX-License-Identifier: MIT
#include "fsutil.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace FsUtil {

QString errnoText(const QString &what, int error)
{
    return what + QLatin1String(": ") + qt_error_string(error);
}

QString nameText(const QByteArray &name)
{
    return QLatin1Char('"') + QString::fromUtf8(name) + QLatin1Char('"');
}

bool isValidUtf8(const QByteArray &text)
{
    // A lossy decode replaces bad sequences, so only valid text survives the
    // round trip unchanged.
    return QString::fromUtf8(text).toUtf8() == text;
}

bool writeAll(int fd, const char *data, size_t size)
{
    while (size > 0) {
        const ssize_t done = ::write(fd, data, size);
        if (done < 0 && errno == EINTR)
            continue;
        if (done <= 0)
            return false;
        data += done;
        size -= size_t(done);
    }
    return true;
}

UniqueFd openDir(int dirFd, const QByteArray &name)
{
    return UniqueFd(::openat(dirFd, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

UniqueFd openDirPath(int rootFd, const QByteArray &relPath, bool create)
{
    UniqueFd current(::fcntl(rootFd, F_DUPFD_CLOEXEC, 0));
    const QList<QByteArray> parts = relPath.split('/');
    for (const QByteArray &part : parts) {
        if (!current.isValid())
            break;
        if (part.isEmpty())
            continue;
        if (create && ::mkdirat(current.get(), part.constData(), 0777) != 0 && errno != EEXIST)
            return UniqueFd();
        current = openDir(current.get(), part);
    }
    return current;
}

bool listDir(int dirFd, QList<QByteArray> *names)
{
    const int fd = ::fcntl(dirFd, F_DUPFD_CLOEXEC, 0);
    DIR *dir = fd >= 0 ? ::fdopendir(fd) : nullptr;
    if (!dir) {
        if (fd >= 0)
            ::close(fd);
        return false;
    }
    ::rewinddir(dir);
    names->clear();
    errno = 0;
    while (const dirent *item = ::readdir(dir)) {
        const QByteArray name(item->d_name);
        if (name != "." && name != "..")
            names->append(name);
    }
    const bool ok = errno == 0;
    ::closedir(dir);
    std::sort(names->begin(), names->end());
    return ok;
}

bool removeTree(int dirFd, const QByteArray &name)
{
    struct stat info;
    if (::fstatat(dirFd, name.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    if (!S_ISDIR(info.st_mode))
        return ::unlinkat(dirFd, name.constData(), 0) == 0;
    const UniqueFd sub = openDir(dirFd, name);
    QList<QByteArray> children;
    if (!sub.isValid() || !listDir(sub.get(), &children))
        return false;
    bool ok = true;
    for (const QByteArray &child : children)
        ok = removeTree(sub.get(), child) && ok;
    return ::unlinkat(dirFd, name.constData(), AT_REMOVEDIR) == 0 && ok;
}

void removeStale(int dirFd, const QByteArray &prefix, const QByteArray &suffix)
{
    QList<QByteArray> names;
    if (!listDir(dirFd, &names))
        return;
    for (const QByteArray &name : std::as_const(names)) {
        if (!name.startsWith(prefix) || !name.endsWith(suffix) || name.size() <= prefix.size() + suffix.size())
            continue;
        int end = int(prefix.size());
        while (end < name.size() && name.at(end) >= '0' && name.at(end) <= '9')
            ++end;
        bool ok = false;
        const pid_t pid = pid_t(name.mid(prefix.size(), end - prefix.size()).toInt(&ok));
        if (ok && pid > 0 && ::kill(pid, 0) != 0 && errno == ESRCH)
            removeTree(dirFd, name);
    }
}

bool syncDir(const QByteArray &path)
{
    const UniqueFd dir(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!dir.isValid())
        return false;
    // Some file systems cannot sync a folder at all; nothing more can be done there.
    return ::fsync(dir.get()) == 0 || errno == EINVAL;
}

} // namespace FsUtil
