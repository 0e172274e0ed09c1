// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_IMPORTSOURCES_H
#define LXDOC_TOOL_IMPORTSOURCES_H

#include <QList>
#include <QString>
#include <QStringList>

// What the command line names to import, checked before any page is made:
// PDF files, pictures, and folders of pictures in natural name order
// ("page2" before "page10").
class ImportSources {
public:
    struct Item {
        QString path;
        bool isPdf = false;
        int pages = 1;
    };

    bool collect(const QStringList &paths);
    const QList<Item> &items() const;
    int pageCount() const;
    QString error() const;

    static QStringList picturesIn(const QString &folder);

private:
    bool addFile(const QString &path);
    bool addPdf(const QString &path);
    bool addPicture(const QString &path);
    bool fail(const QString &path, const QString &reason);

    QList<Item> m_items;
    QString m_error;
};

#endif
