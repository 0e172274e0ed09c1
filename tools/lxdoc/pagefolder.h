// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PAGEFOLDER_H
#define LXDOC_TOOL_PAGEFOLDER_H

#include <QStringList>

// The folder that receives a lesson's page images. Page files are numbered
// with as many digits as the page count needs ("page-001.png" of 300), so
// they sort in page order. A folder that already holds files is taken only
// when forced, and then earlier page files that this run does not write are
// removed, so one folder never mixes two renderings.
class PageFolder {
public:
    PageFolder(const QString &path, int pageCount, bool force);

    static QString fileName(int index, int pageCount);
    // Before anything is drawn: the folder can be made and written, and
    // every page file in it can be replaced.
    bool prepare();
    // Moves the drawn pages (in page order) into the folder.
    bool fill(const QStringList &drawn, QStringList *written);
    QString error() const;

private:
    bool removeStalePages(const QStringList &kept);
    bool fail(const QString &reason);

    QString m_path;
    int m_count;
    bool m_force;
    QString m_error;
};

#endif
