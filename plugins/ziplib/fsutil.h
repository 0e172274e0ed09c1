// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_FSUTIL_H
#define ZIPLIB_FSUTIL_H

#include "uniquefd.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstddef>

// File-system steps shared by packing and unpacking. Everything below a root
// descriptor is reached with O_NOFOLLOW, one path component at a time, so a
// symbolic link planted in a folder never leads outside it.
namespace FsUtil {

QString errnoText(const QString &what, int error);
QString nameText(const QByteArray &name);
bool isValidUtf8(const QByteArray &text);

bool writeAll(int fd, const char *data, size_t size);
UniqueFd openDir(int dirFd, const QByteArray &name);
// Opens the folder relPath ('/'-separated, already checked) below rootFd,
// making missing components when create is set.
UniqueFd openDirPath(int rootFd, const QByteArray &relPath, bool create);
// The entries of a folder except "." and "..", in byte order so that archives
// come out the same for the same folder.
bool listDir(int dirFd, QList<QByteArray> *names);
bool removeTree(int dirFd, const QByteArray &name);
// Removes what a killed pack or unpack left in a folder: entries named
// prefix + <pid> + ... + suffix whose process no longer runs. Names of live
// processes, and any other names, stay.
void removeStale(int dirFd, const QByteArray &prefix, const QByteArray &suffix);
bool syncDir(const QByteArray &path);

} // namespace FsUtil

#endif
