// SPDX-License-Identifier: MIT
#include "document/savelock.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const int kPollMs = 20;
}

SaveLock::SaveLock(const QString &archive)
{
    // A save without a file name fails on its own; it gets no lock file
    // in the current folder.
    if (!QFileInfo(archive).fileName().isEmpty())
        m_path = QFile::encodeName(lockFileName(archive));
}

SaveLock::~SaveLock()
{
    if (m_fd < 0)
        return;
    // Unlinked before it is unlocked, so a waiter never takes a lock on a
    // file that is already gone from the folder.
    ::unlink(m_path.constData());
    ::close(m_fd);
}

QString SaveLock::lockFileName(const QString &archive)
{
    const QFileInfo info(archive);
    return info.path() + QLatin1String("/.") + info.fileName() + QLatin1String(".lock");
}

bool SaveLock::acquire(int waitMs)
{
    if (m_path.isEmpty())
        return true;
    QElapsedTimer timer;
    timer.start();
    for (;;) {
        if (tryOnce() != Busy)
            return true;
        if (timer.elapsed() >= waitMs)
            return false;
        QThread::msleep(kPollMs);
    }
}

SaveLock::Attempt SaveLock::tryOnce()
{
    const int fd = ::open(m_path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0)
        return Unavailable;
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const bool busy = errno == EWOULDBLOCK;
        ::close(fd);
        return busy ? Busy : Unavailable;
    }
    struct stat held;
    struct stat named;
    if (::fstat(fd, &held) == 0 && ::stat(m_path.constData(), &named) == 0 && held.st_dev == named.st_dev
        && held.st_ino == named.st_ino) {
        m_fd = fd;
        return Held;
    }
    // The holder removed the file between our open and our lock.
    ::close(fd);
    return Busy;
}
