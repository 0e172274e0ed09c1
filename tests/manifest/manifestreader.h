#ifndef LXDOC_TESTS_MANIFESTREADER_H
#define LXDOC_TESTS_MANIFESTREADER_H

// Reads "manifest.xml" as written on disk, independently of QManifest, so the
// tests check the file and not the class's in-memory lists.

#include <QDomDocument>
#include <QFile>
#include <QStringList>

inline QDomElement manifestRoot(const QString &path)
{
    QFile file(path);
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return QDomElement();
    return document.documentElement();
}

// The hrefs of the "resource" element with the identifier; a missing element
// reads as a list holding one "<missing>" entry, so it never passes for empty.
inline QStringList manifestList(const QString &path, const QString &identifier)
{
    const QDomElement root = manifestRoot(path);
    for (QDomElement resource = root.firstChildElement(QStringLiteral("resource")); !resource.isNull();
         resource = resource.nextSiblingElement(QStringLiteral("resource"))) {
        if (resource.attribute(QStringLiteral("identifier")) != identifier)
            continue;
        QStringList hrefs;
        for (QDomElement file = resource.firstChildElement(); !file.isNull(); file = file.nextSiblingElement())
            hrefs << file.attribute(QStringLiteral("href"));
        return hrefs;
    }
    return QStringList(QStringLiteral("<missing>"));
}

#endif
