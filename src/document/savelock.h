// SPDX-License-Identifier: MIT
#ifndef LXDOC_SAVELOCK_H
#define LXDOC_SAVELOCK_H

#include <QByteArray>
#include <QString>

// Keeps two saves of one archive (two hosts, or a host and the tool) from
// running at once: an advisory lock on a hidden file beside the archive,
// held for the length of the save. The file is removed when the lock goes,
// so a finished save leaves nothing beside the archive; a waiter that finds
// the file replaced under it starts over on the new one.
class SaveLock {
public:
    // Long enough for another process to pack a large lesson.
    static const int WaitMs = 10000;

    explicit SaveLock(const QString &archive);
    ~SaveLock();
    SaveLock(const SaveLock &) = delete;
    SaveLock &operator=(const SaveLock &) = delete;

    // False only when another save still holds the lock after waitMs. A
    // folder that cannot take the lock file cannot take the archive either:
    // the save goes on and reports that failure itself.
    bool acquire(int waitMs);
    static QString lockFileName(const QString &archive);

private:
    enum Attempt { Held, Busy, Unavailable };
    Attempt tryOnce();

    QByteArray m_path;
    int m_fd = -1;
};

#endif
