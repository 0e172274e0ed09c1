// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_SALVAGEREADER_H
#define LXDOC_TOOL_SALVAGEREADER_H

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

struct archive;
struct archive_entry;

// Reads what can still be read of a damaged ZIP archive into a new, empty
// folder. It walks the local headers from the start of the file and never
// needs the directory at its end, so a cut or overwritten tail loses only
// the entries it covers. An entry whose data does not inflate or whose CRC
// does not match is left out and reported; after such an entry the reader
// looks for the next local header and goes on from there.
//
// The archive is hostile input, read under the unpacking rules: names that
// lead outside the folder, links, devices and encrypted entries are refused
// one by one; too many entries or too many unpacked bytes stop the reading,
// at the limits unpacking uses.
class SalvageReader {
public:
    explicit SalvageReader(const QString &archive);

    // False when nothing sensible could be read or a limit was reached; what
    // was written below folder is then of no use.
    bool readInto(const QString &folder);

    // Relative names of the files written, in archive order.
    QStringList kept() const;
    // "name: why", one line for each entry that was not written.
    QStringList lost() const;
    // The archive has no directory at its end: entries after the last one
    // read may be gone without a trace.
    bool endsEarly() const;
    QString errorString() const;

private:
    bool readFrom(const uchar *data, qint64 size, qint64 start, qint64 *resumeAt);
    bool readEntry(archive *reader, archive_entry *entry);
    bool admit(archive_entry *entry, QString *name);
    bool writeData(archive *reader, const QString &name);
    bool copyData(archive *reader, int fd, const QString &name);
    bool makeParent(const QString &name);
    void lose(const QString &name, const QString &why);
    bool fail(const QString &what);

    const QString m_archive;
    QString m_folder;
    qint64 m_archiveSize = 0;
    qint64 m_expanded = 0;
    int m_entries = 0;
    bool m_endsEarly = false;
    QSet<QString> m_names;
    QStringList m_kept;
    QStringList m_lost;
    QString m_error;
};

#endif
