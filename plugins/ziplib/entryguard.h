#ifndef ZIPLIB_ENTRYGUARD_H
#define ZIPLIB_ENTRYGUARD_H

#include <QByteArray>
#include <QSet>
#include <QString>

#include <QtGlobal>

struct archive_entry;

// Decides which archive entries may be unpacked. A lesson archive holds only
// files and folders below its top level; anything else (links, devices,
// escaping or clashing names, encrypted data, data that inflates far beyond
// its archive) refuses the whole archive, so nothing of it is written.
class EntryGuard {
public:
    static constexpr qint64 MaxExpandedTotal = qint64(4) << 30;
    static constexpr qint64 RatioCheckedFrom = qint64(16) << 20;
    static constexpr qint64 MaxRatio = 1000;
    static constexpr int MaxEntries = 100000;

    explicit EntryGuard(qint64 archiveSize);

    // On success *path is the entry's clean relative path, no trailing '/'.
    bool admit(archive_entry *entry, QByteArray *path);
    // Counts unpacked bytes: the header sizes are only claims.
    bool admitData(const QByteArray &path, qint64 entryBytes, qint64 chunk);
    QString errorString() const;

private:
    bool checkKind(archive_entry *entry, const QByteArray &name);
    bool cleanName(const QByteArray &name, QByteArray *path);
    bool checkUnique(const QByteArray &path, bool isDir);
    bool checkSize(const QByteArray &path, qint64 size);
    bool fail(const QString &what);

    const qint64 m_archiveSize;
    qint64 m_declared = 0;
    qint64 m_expanded = 0;
    int m_entries = 0;
    QSet<QByteArray> m_files;
    QSet<QByteArray> m_folders;
    QSet<QByteArray> m_namedFolders;
    QString m_error;
};

#endif
