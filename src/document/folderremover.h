// SPDX-License-Identifier: MIT
#ifndef LXDOC_FOLDERREMOVER_H
#define LXDOC_FOLDERREMOVER_H

#include <QByteArray>
#include <QList>

#include <sys/types.h>

// Deletes a folder tree through folder descriptors, one level at a time and
// without recursion, so a tree whose paths are longer than the system allows
// (a lesson can hold one) goes as well as any other, whatever its depth.
// Links are never followed below the starting folder. Failures are skipped:
// what cannot go stays, with the folders holding it.
class FolderRemover {
public:
    enum Scope {
        // Everything below the folder: for folders a program made for itself.
        Everything,
        // Only regular files and real folders whose names do not start with
        // a dot; links, hidden entries and special files stay, and so do the
        // folders around them. The starting folder may be reached through a
        // link, as a folder named by a host always could.
        VisibleFilesAndFolders,
    };

    explicit FolderRemover(Scope scope);
    // Empties the folder at path, then removes it too when removeSelf is set.
    void remove(const QByteArray &path, bool removeSelf) const;

private:
    bool isRemovable(const char *name, mode_t mode) const;
    QList<QByteArray> clearFiles(int fd) const;

    const Scope m_scope;
};

#endif
