// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_FILETREE_H
#define LXDOC_TOOL_FILETREE_H

#include <QString>
#include <QStringList>

// Plain folder work on a user's files: read and copy, never delete.
class FileTree {
public:
    // Copies the regular files and folders below source into target (made
    // where missing). Symbolic links are left out: the library's folder
    // removal follows linked folders, so a copy that is later released must
    // not hold any.
    static bool copy(const QString &source, const QString &target, QString *error);
    // Files below folder, relative to it, sorted; hidden files and links left out.
    static QStringList files(const QString &folder);
    static bool isEmptyOrMissing(const QString &folder);
    static bool isLessonFolder(const QString &folder);
};

#endif
