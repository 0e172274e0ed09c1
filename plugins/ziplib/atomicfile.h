// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ATOMICFILE_H
#define ZIPLIB_ATOMICFILE_H

#include "uniquefd.h"

#include <QByteArray>
#include <QString>

#include <sys/types.h>

// A new version of a file, written under a unique temporary name beside it
// (".NAME.<pid>.<tag>.tmp") and renamed over it only when complete and on
// disk; temporaries that killed writers left there go first. Until commit() succeeds
// the previous file stays byte for byte as it was; a discarded or failed
// attempt leaves no temporary file behind.
class AtomicFile {
public:
    explicit AtomicFile(const QString &target);
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    bool open();
    int fd() const;
    // True for the temporary file and the file it will replace, which must
    // not end up inside the archive when it lies in the packed folder.
    bool isOwnFile(dev_t device, ino_t inode) const;
    bool commit();
    QString errorString() const;

private:
    bool createTemporary();
    bool fail(const QString &what);
    void discard();

    QByteArray m_target;
    QByteArray m_temporary;
    UniqueFd m_fd;
    dev_t m_device = 0;
    ino_t m_inode = 0;
    dev_t m_targetDevice = 0;
    ino_t m_targetInode = 0;
    bool m_hasTarget = false;
    QString m_error;
};

#endif
