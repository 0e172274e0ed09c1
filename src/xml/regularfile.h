// SPDX-License-Identifier: MIT
#ifndef LXDOC_REGULARFILE_H
#define LXDOC_REGULARFILE_H

#include <QByteArray>

class QFile;

// Opens a file only when it is a regular file reached without following a
// link at its last step, and without waiting on a FIFO or a device: a
// lesson can name a pipe or swap a file for a link, and a reader must then
// fail at once instead of hanging or leaving its folder.
class RegularFile {
public:
    // A descriptor for name relative to dirFd (AT_FDCWD for a plain path),
    // back in blocking mode, or -1 with errno set (EISDIR for a folder,
    // EINVAL for anything else that is not a regular file, ELOOP for a link).
    static int openAt(int dirFd, const QByteArray &name, bool writable);
    // As openAt on a full path, then file opened on it under that name.
    static bool open(QFile *file, const QString &path, bool writable);
};

#endif
