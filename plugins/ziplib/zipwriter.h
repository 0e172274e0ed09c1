// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ZIPWRITER_H
#define ZIPLIB_ZIPWRITER_H

#include "archivehandle.h"
#include "packedtree.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <sys/stat.h>
#include <vector>

// Writes the whole tree below a folder as an ordinary ZIP archive into an
// open file: folders as their own entries (an empty resource folder must come
// back), names relative to the folder in UTF-8, modification times kept.
// Media that is compressed already is stored, everything else deflated,
// except files too large for the unpacker to take on trust at any ratio.
class ZipWriter {
public:
    // Files the writer must leave out (its own output lying in the folder).
    using SkipTest = PackedTree::SkipTest;

    // Files larger than storeFrom bytes are stored as they are.
    explicit ZipWriter(qint64 storeFrom);
    bool open(int fd);
    bool addTree(int rootFd, const SkipTest &skip);
    bool close();
    QString errorString() const;

    static bool isCompressedMedia(const QByteArray &name);

private:
    bool addFile(int dirFd, const QByteArray &name, const QByteArray &path);
    bool writeHeader(const QByteArray &path, const struct stat &info);
    void anchorCompressorMemory(bool deflated);
    bool copyData(int fd, const QByteArray &path, off_t size);
    bool fail(const QString &what);
    bool failArchive(const QString &what);
    static la_ssize_t writeOut(archive *a, void *self, const void *buffer, size_t length);

    ArchiveWriter m_archive;
    int m_fd = -1;
    off_t m_written = 0;
    off_t m_writebackFrom = 0;
    const qint64 m_storeFrom;
    std::vector<char> m_buffer;
    std::unique_ptr<char[]> m_heapAnchor;
    QString m_error;
};

#endif
