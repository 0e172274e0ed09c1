// SPDX-License-Identifier: MIT
#ifndef LXDOC_QMANIFEST_H
#define LXDOC_QMANIFEST_H

#include "manifest/listtextmemo.h"
#include "xml/domwriter.h"

#include <QDomNode>
#include <QStringList>

class QXmlStream;

// The working folder's "manifest.xml": page order, record pages and the
// resource lists. Each list is mirrored in memory and its element rewritten
// whenever it changes.
class QManifest {
public:
    QManifest();
    virtual ~QManifest();
    QManifest(const QManifest &) = delete;
    QManifest &operator=(const QManifest &) = delete;

    bool createManifestFile(const QString &path);
    bool loadManifestFile(const QString &path);
    void saveFile();
    void closeFile(bool save);
    QStringList &getPagesList();
    bool getResourceList(QStringList &list, const QString &identifier);
    bool setResourceList(QStringList &list, const QString &identifier);

    bool insertFrontPage(int index, const QString &fileName);
    bool insertRecPage(int index, const QString &fileName);
    bool deleteFrontPage(const QString &fileName);
    bool deleteRecPage(const QString &fileName);

    bool addImageFile(const QString &fileName);
    bool addSoundFile(const QString &fileName);
    bool addAvMediaFile(const QString &fileName);
    bool addFlashFile(const QString &fileName);
    bool addFillblockFile(const QString &fileName);
    bool addAttachment(const QString &fileName);

private:
    void closeStream(bool save);
    QDomNode findResource(const QString &identifier);
    bool insertPage(QStringList &list, const QString &identifier, int index, const QString &fileName);
    bool deletePage(QStringList &list, const QString &identifier, const QString &fileName);
    bool appendResource(QStringList &list, const QString &identifier, const QString &fileName);
    bool insertEntry(const QDomNode &resource, const QStringList &list, int position, ListTextMemo::Texts &texts);
    QVector<DomWriter::KnownChildren> knownLists();

    QXmlStream *m_stream = nullptr;
    QDomNode m_root;
    QStringList m_pages;
    QStringList m_records;
    QStringList m_images;
    QStringList m_sounds;
    QStringList m_avmedia;
    QStringList m_flashes;
    QStringList m_fillblocks;
    QStringList m_attachments;
};

#endif
