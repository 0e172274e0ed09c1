// SPDX-License-Identifier: MIT
#ifndef LXDOC_TESTS_MANIFESTREADER_H
#define LXDOC_TESTS_MANIFESTREADER_H

// Reads "manifest.xml" as written on disk, independently of QManifest, so the
// tests check the file and not the class's in-memory lists.

#include "testsupport.h"

#include <QDomDocument>
#include <QStringList>

inline QDomElement manifestRoot(const QString &path)
{
    QDomDocument document;
    return document.setContent(readBytes(path)) ? document.documentElement() : QDomElement();
}

// The hrefs of the "resource" element with the identifier; a missing element
// reads as a list holding one "<missing>" entry, so it never passes for empty.
inline QStringList manifestList(const QString &path, const QString &identifier)
{
    const QDomElement root = manifestRoot(path);
    for (QDomElement resource = root.firstChildElement("resource"); !resource.isNull();
         resource = resource.nextSiblingElement("resource")) {
        if (resource.attribute("identifier") != identifier)
            continue;
        QStringList hrefs;
        for (QDomElement file = resource.firstChildElement(); !file.isNull(); file = file.nextSiblingElement())
            hrefs << file.attribute("href");
        return hrefs;
    }
    return QStringList("<missing>");
}

#endif
