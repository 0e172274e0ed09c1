// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_CENTRALDIRECTORY_H
#define ZIPLIB_CENTRALDIRECTORY_H

#include "lxarchivelimits.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <vector>

// A ZIP archive's own list of its entries, read before anything is unpacked:
// the count it declares, where each entry's bytes lie, how large it says it
// is and its name decoded as the format prescribes. An archive whose list
// contradicts itself (a wrong count, entries sharing bytes, a folder holding
// data) or that declares more than the limits allow is refused here, before
// a byte is written.
class CentralDirectory {
public:
    struct Record {
        QByteArray name; // UTF-8, as stored or decoded from CP437
        quint32 crc = 0; // CRC-32 of the unpacked bytes
        quint64 compressed = 0;
        quint64 size = 0;
        quint64 offset = 0;
        quint64 dataEnd = 0;
    };

    bool read(int fd, qint64 fileSize, const LXArchiveLimits &limits);
    // In the order of their bytes in the file, the order entries are read in.
    const std::vector<Record> &records() const;
    QString errorString() const;

    // The most bytes that many stored bytes may unpack to.
    static qint64 allowedBytes(quint64 stored, const LXArchiveLimits &limits);

private:
    bool findEnd(int fd, qint64 fileSize);
    bool readZip64End(int fd, qint64 locatorAt);
    bool readRecords(int fd, const LXArchiveLimits &limits);
    bool parseRecord(const QByteArray &directory, int *at, Record *record);
    bool locateData(int fd, Record *record);
    bool checkLayout(const LXArchiveLimits &limits);
    bool fail(const QString &what);

    quint64 m_count = 0;
    quint64 m_directorySize = 0;
    quint64 m_directoryOffset = 0;
    quint64 m_directoryEnd = 0;
    std::vector<Record> m_records;
    QString m_error;
};

#endif
