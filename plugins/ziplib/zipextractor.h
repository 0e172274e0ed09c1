// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ZIPEXTRACTOR_H
#define ZIPLIB_ZIPEXTRACTOR_H

#include "archivehandle.h"
#include "centraldirectory.h"
#include "uniquefd.h"

#include <QByteArray>
#include <QString>

#include <sys/stat.h>
#include <vector>

class EntryGuard;

// Reads a ZIP archive through its central directory, which is first read
// and checked on its own (CentralDirectory). scan() checks every header
// without writing anything; extractInto() checks them again (the file
// may have changed in between) while it writes the entries below a folder.
class ZipExtractor {
public:
    using FileTime = decltype(stat::st_mtim);

    ZipExtractor(const QString &archive, const LXArchiveLimits &limits);

    bool scan();
    bool extractInto(int rootFd);
    // Folder times go last: writing into a folder changes its time.
    void restoreFolderTimes(int rootFd) const;
    QString errorString() const;

private:
    struct FolderTime {
        QByteArray path;
        FileTime time;
    };

    bool run(int rootFd);
    bool openArchive(UniqueFd *file, ArchiveReader *reader);
    bool admitEntry(archive_entry *entry, size_t index, EntryGuard &guard, QByteArray *path);
    bool extractEntry(archive_entry *entry, const QByteArray &path, int rootFd, EntryGuard &guard);
    bool makeFolder(archive_entry *entry, const QByteArray &path, int rootFd);
    bool writeFile(archive_entry *entry, const QByteArray &path, int rootFd, EntryGuard &guard);
    bool copyData(int fd, archive_entry *entry, const QByteArray &path, EntryGuard &guard);
    int parentFolder(int rootFd, const QByteArray &path);
    bool fail(const QString &what);
    bool failArchive(const QString &what);

    const QByteArray m_archivePath;
    const LXArchiveLimits m_limits;
    CentralDirectory m_directory;
    quint64 m_stored = 0;
    quint64 m_entryStored = 0;
    archive *m_archive = nullptr;
    QByteArray m_parentPath;
    UniqueFd m_parentFd;
    std::vector<FolderTime> m_folderTimes;
    QString m_error;
};

#endif
