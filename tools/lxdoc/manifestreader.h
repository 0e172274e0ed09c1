// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_MANIFESTREADER_H
#define LXDOC_TOOL_MANIFESTREADER_H

#include <QMap>
#include <QString>
#include <QStringList>

class QXmlStreamReader;

// Reads the lists of "manifest.xml" straight from the file: the document
// interfaces give the page order but not the resource lists.
class ManifestReader {
public:
    bool load(const QString &path);
    // Where a load failed: "line 3, column 7: ..." or a file error.
    QString error() const;

    QString rootName() const;
    bool hasList(const QString &identifier) const;
    QStringList list(const QString &identifier) const;
    // Why the library refuses to open the lesson for its length: "lists
    // 20000 pages, more than the limit of 10000"; empty within the limit.
    QString pageLimitProblem() const;

    // The resource lists, in the order a person reads them.
    static QStringList resourceKinds();
    // The working folder's subfolder that holds each kind: "flashes" are
    // kept in "flash".
    static QString folderOfKind(const QString &kind);

private:
    void readResource(QXmlStreamReader &reader);

    QString m_error;
    QString m_rootName;
    QMap<QString, QStringList> m_lists;
};

#endif
