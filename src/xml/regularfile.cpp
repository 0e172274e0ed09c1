// SPDX-License-Identifier: MIT
#include "xml/regularfile.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int RegularFile::openAt(int dirFd, const QByteArray &name, bool writable)
{
    const int access = writable ? O_RDWR : O_RDONLY;
    const int fd = ::openat(dirFd, name.constData(), access | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return -1;
    struct stat info {};
    int error = 0;
    if (::fstat(fd, &info) != 0)
        error = errno;
    else if (!S_ISREG(info.st_mode))
        error = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
    else {
        const int flags = ::fcntl(fd, F_GETFL);
        if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0)
            error = errno;
    }
    if (error == 0)
        return fd;
    ::close(fd);
    errno = error;
    return -1;
}

bool RegularFile::open(QFile *file, const QString &path, bool writable)
{
    const int fd = openAt(AT_FDCWD, QFile::encodeName(path), writable);
    if (fd < 0)
        return false;
    struct stat checked {};
    const bool known = ::fstat(fd, &checked) == 0;
    // Opened again by name, so that the file keeps it for later saves; the
    // same file must come back, or the name was swapped in between.
    file->setFileName(path);
    const bool opened = known && file->open(writable ? QIODevice::ReadWrite : QIODevice::ReadOnly);
    ::close(fd);
    struct stat reached {};
    if (opened && ::fstat(file->handle(), &reached) == 0 && reached.st_dev == checked.st_dev
        && reached.st_ino == checked.st_ino)
        return true;
    file->close();
    errno = ELOOP;
    return false;
}
