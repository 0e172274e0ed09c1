// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_STAGINGFOLDER_H
#define ZIPLIB_STAGINGFOLDER_H

#include "uniquefd.h"

#include <QByteArray>
#include <QString>

// A hidden folder inside the unpack target that receives the entries first.
// Only a complete, undamaged archive is moved into the target, so a failed
// unpack leaves the target as it was. Whatever is left in the staging folder
// is removed with it.
class StagingFolder {
public:
    explicit StagingFolder(int targetFd);
    ~StagingFolder();
    StagingFolder(const StagingFolder &) = delete;
    StagingFolder &operator=(const StagingFolder &) = delete;

    // Also removes what unpacks killed on the way left in the target.
    bool create();
    // Staging folders of processes that are gone (".unpack-<pid>-...").
    static void removeStale(int folderFd);
    int fd() const;
    // Existing folders of the target are merged into; an existing file or
    // link is never replaced: such a clash refuses before anything moves.
    bool moveIntoTarget();
    QString errorString() const;

private:
    bool merge(int fromFd, int toFd, const QByteArray &prefix, bool move);
    bool mergeOne(int fromFd, int toFd, const QByteArray &name, const QByteArray &path, bool move);
    bool fail(const QString &what);

    const int m_targetFd;
    QByteArray m_name;
    UniqueFd m_fd;
    QString m_error;
};

#endif
