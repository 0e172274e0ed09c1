// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ARCHIVEVERIFIER_H
#define ZIPLIB_ARCHIVEVERIFIER_H

#include "centraldirectory.h"

#include <QByteArray>
#include <QString>

#include <map>
#include <sys/stat.h>

// Answers whether an archive on disk is the one packing a folder would give
// now: a complete archive the unpacker accepts, whose directory names the
// same folders and files as the folder holds (by the packer's own rule: real
// folders and regular files, the archive itself left out), each file with the
// same size and CRC-32. The directory's CRC is the one the packer wrote, so a
// file changed since, or an archive replaced or cut short, shows here without
// unpacking anything.
class ArchiveVerifier {
public:
    bool verify(const QString &archive, const QString &folder);
    QString errorString() const;

private:
    struct Entry {
        quint64 size = 0;
        quint32 crc = 0;
    };

    bool readArchive(const QString &archive);
    bool readFolder(int rootFd);
    bool readFile(int dirFd, const QByteArray &name, const QByteArray &path);
    bool compare();
    bool fail(const QString &what);

    CentralDirectory m_directory;
    struct stat m_archive = {};
    std::map<QByteArray, Entry> m_folder;
    QString m_error;
};

#endif
