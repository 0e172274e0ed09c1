// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_PACKEDTREE_H
#define ZIPLIB_PACKEDTREE_H

#include <QByteArray>
#include <QString>

#include <functional>
#include <sys/stat.h>

// What packing takes from a folder: the real folders and regular files below
// it, each folder before what it holds, names relative to the folder. Links
// may point anywhere and sockets and pipes hold no lesson data, so they are
// left out; a name that is not UTF-8 stops the walk, since leaving its file
// out would lose it silently. The packer writes these entries and the
// verifier compares them with an archive, so both walk the folder here.
class PackedTree {
public:
    using SkipTest = std::function<bool(const struct stat &)>;
    // A folder's path ends in '/'.
    using FolderVisit = std::function<bool(const QByteArray &path, const struct stat &info)>;
    using FileVisit = std::function<bool(int dirFd, const QByteArray &name, const QByteArray &path)>;

    PackedTree(SkipTest skip, FolderVisit folder, FileVisit file);
    // False when the walk or a visit fails; errorString() then says why,
    // unless a visit failed (its owner keeps that reason).
    bool walk(int rootFd);
    QString errorString() const;

private:
    bool walkFolder(int dirFd, const QByteArray &prefix);
    bool walkChild(int dirFd, const QByteArray &name, const QByteArray &prefix);
    bool fail(const QString &what);

    const SkipTest m_skip;
    const FolderVisit m_folder;
    const FileVisit m_file;
    QString m_error;
};

#endif
