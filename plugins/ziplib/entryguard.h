// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ENTRYGUARD_H
#define ZIPLIB_ENTRYGUARD_H

#include <QByteArray>
#include <QSet>
#include <QString>

#include <QtGlobal>

#include "lxarchivelimits.h"

struct archive_entry;

// Decides which archive entries may be unpacked. A lesson archive holds only
// files and folders below its top level; anything else (links, devices,
// escaping or clashing names, encrypted data, data that inflates far beyond
// what it takes in the archive) refuses the whole archive, and what was
// written of it is removed.
class EntryGuard {
public:
    // storedTotal: the compressed bytes of all entries, from the directory.
    EntryGuard(const LXArchiveLimits &limits, quint64 storedTotal);

    // name is the entry's name as the directory gives it, in UTF-8. On
    // success *path is its clean relative path, no trailing '/'.
    bool admit(archive_entry *entry, const QByteArray &name, QByteArray *path);
    // Counts the bytes actually unpacked: sizes in headers are only claims.
    bool admitData(const QByteArray &path, qint64 entryBytes, quint64 entryStored, qint64 chunk);
    QString errorString() const;

private:
    bool checkKind(archive_entry *entry, const QByteArray &name);
    bool cleanName(const QByteArray &name, QByteArray *path);
    bool checkUnique(const QByteArray &path, bool isDir);
    bool fail(const QString &what);

    const LXArchiveLimits m_limits;
    const qint64 m_allowedTotal;
    qint64 m_expanded = 0;
    QSet<QByteArray> m_files;
    QSet<QByteArray> m_folders;
    QSet<QByteArray> m_namedFolders;
    QString m_error;
};

#endif
