// SPDX-License-Identifier: MIT
#include "manifest/qmanifest.h"

#include "manifest/listtextmemo.h"
#include "xml/xmlstream.h"

#include <utility>

namespace {

const char *const kRootName = "manifest";
const char *const kResource = "resource";
const char *const kIdentifier = "identifier";
const char *const kFile = "file";
const char *const kHref = "href";

// A new manifest lists its resources in this order; readers look them up by
// identifier, so the order only matters for files this class writes.
const char *const kNewResourceOrder[] = {"pages",  "records",  "images",     "sounds",
                                         "flashes", "avmedia", "fillblocks", "attachments"};

// List entries sit two levels into the document: manifest, resource, file.
const int kEntryDepth = 2;

QDomNode childAt(const QDomNode &parent, int position)
{
    QDomNode child = parent.firstChild();
    for (int i = 0; i < position && !child.isNull(); ++i)
        child = child.nextSibling();
    return child;
}

} // namespace

QManifest::QManifest() = default;

// The owner closes first: destroying a manifest never writes or frees the stream.
QManifest::~QManifest() = default;

bool QManifest::createManifestFile(const QString &path)
{
    closeStream(true);
    m_stream = new QXmlStream;
    if (!m_stream->createXmlFile(path, QString::fromLatin1(kRootName))) {
        closeStream(false);
        return false;
    }
    m_root = m_stream->getRootNode();
    if (m_root.isNull()) {
        closeStream(false);
        return false;
    }
    m_stream->setNodeAttribute(m_root, QString::fromLatin1(kIdentifier), QStringLiteral("lzn"), true);
    m_stream->setNodeAttribute(m_root, QStringLiteral("version"), QStringLiteral("6.0.0"), true);
    for (const char *identifier : kNewResourceOrder) {
        // A child that cannot be made is left out; the others are still made.
        const QDomNode child = m_stream->newChildNode(m_root, QString::fromLatin1(kResource), QString());
        if (!child.isNull())
            m_stream->setNodeAttribute(child, QString::fromLatin1(kIdentifier),
                                       QString::fromLatin1(identifier), true);
    }
    m_stream->saveFile();
    return true;
}

bool QManifest::loadManifestFile(const QString &path)
{
    closeStream(true);
    m_stream = new QXmlStream;
    if (!m_stream->loadFromXmlFile(path)) {
        // A manifest that does not parse stays open after the failed load;
        // closing it with saving would replace the user's file with an empty
        // tree, so it is let go untouched.
        closeStream(false);
        return false;
    }
    m_root = m_stream->getRootNode();

    // A missing list is reported but does not fail the load. The "fillblocks"
    // element is never read: that member is only appended to.
    const struct {
        QStringList *list;
        const char *identifier;
        const char *message;
    } lists[] = {
        {&m_pages, "pages", "Get pages list failed!\n"},
        {&m_records, "records", "Get records list failed!\n"},
        {&m_images, "images", "Get image list failed!\n"},
        {&m_sounds, "sounds", "Get sounds list failed!\n"},
        {&m_flashes, "flashes", "Get flashes list failed!\n"},
        {&m_avmedia, "avmedia", "Get avmedia list failed!\n"},
        {&m_attachments, "attachments", "Get attachment list failed!\n"},
    };
    for (const auto &entry : lists) {
        if (!getResourceList(*entry.list, QString::fromLatin1(entry.identifier)))
            qWarning("%s", entry.message);
    }
    return true;
}

void QManifest::saveFile()
{
    if (m_stream)
        m_stream->saveFile(knownLists());
}

void QManifest::closeFile(bool save)
{
    closeStream(save);
    for (QStringList *list : {&m_pages, &m_records, &m_images, &m_sounds, &m_avmedia, &m_flashes,
                              &m_fillblocks, &m_attachments})
        list->clear();
}

QStringList &QManifest::getPagesList()
{
    return m_pages;
}

bool QManifest::getResourceList(QStringList &list, const QString &identifier)
{
    const QDomNode resource = findResource(identifier);
    if (resource.isNull())
        return false;
    for (QDomNode child = m_stream->getFirstChildNode(resource); !child.isNull();
         child = m_stream->getNextNode(child)) {
        QString href;
        m_stream->getNodeAttribute(child, QString::fromLatin1(kHref), href, QString());
        if (!href.isEmpty())
            list.append(href);
    }
    return true;
}

bool QManifest::setResourceList(QStringList &list, const QString &identifier)
{
    const QDomNode resource = findResource(identifier);
    if (resource.isNull())
        return false;
    ListTextMemo::Texts texts;
    m_stream->removeAllChildNotes(resource);
    bool complete = true;
    for (const QString &entry : std::as_const(list)) {
        const QDomNode file = m_stream->newChildNode(resource, QString::fromLatin1(kFile), QString());
        complete = complete && !file.isNull();
        if (!file.isNull()) {
            m_stream->setNodeAttribute(file, QString::fromLatin1(kHref), entry, true);
            texts.insert(int(texts.lengths.size()), m_stream->getFileText(file, kEntryDepth));
        }
    }
    if (complete)
        ListTextMemo::put(resource, list, texts);
    else
        ListTextMemo::drop(resource);
    return true;
}

bool QManifest::insertFrontPage(int index, const QString &fileName)
{
    return insertPage(m_pages, QStringLiteral("pages"), index, fileName);
}

bool QManifest::insertRecPage(int index, const QString &fileName)
{
    return insertPage(m_records, QStringLiteral("records"), index, fileName);
}

bool QManifest::deleteFrontPage(const QString &fileName)
{
    return deletePage(m_pages, QStringLiteral("pages"), fileName);
}

bool QManifest::deleteRecPage(const QString &fileName)
{
    return deletePage(m_records, QStringLiteral("records"), fileName);
}

bool QManifest::addImageFile(const QString &fileName)
{
    return appendResource(m_images, QStringLiteral("images"), fileName);
}

bool QManifest::addSoundFile(const QString &fileName)
{
    return appendResource(m_sounds, QStringLiteral("sounds"), fileName);
}

bool QManifest::addAvMediaFile(const QString &fileName)
{
    return appendResource(m_avmedia, QStringLiteral("avmedia"), fileName);
}

bool QManifest::addFlashFile(const QString &fileName)
{
    return appendResource(m_flashes, QStringLiteral("flashes"), fileName);
}

// Fill blocks and attachments share the fillblocks member on purpose: each
// writes that whole member under its own identifier, and the attachments
// member is only ever read.
bool QManifest::addFillblockFile(const QString &fileName)
{
    return appendResource(m_fillblocks, QStringLiteral("fillblocks"), fileName);
}

bool QManifest::addAttachment(const QString &fileName)
{
    return appendResource(m_fillblocks, QStringLiteral("attachments"), fileName);
}

void QManifest::closeStream(bool save)
{
    if (!m_stream)
        return;
    m_stream->closeFile(save);
    ListTextMemo::forget(m_root);
    delete m_stream;
    m_stream = nullptr;
}

QDomNode QManifest::findResource(const QString &identifier)
{
    if (m_root.isNull() || !m_stream)
        return QDomNode();
    return m_stream->getChildNodeByAttribute(m_root, QString::fromLatin1(kIdentifier), identifier);
}

// A list element that holds the list as setResourceList writes it, with
// its entries' text remembered, takes a change as one node: rewriting the
// whole element on every insert made building a lesson quadratic in its
// pages. Any other element (just read from disk, or written from another
// list) is rewritten as before.
bool QManifest::insertPage(QStringList &list, const QString &identifier, int index,
                           const QString &fileName)
{
    if (!m_stream)
        return false;
    const QDomNode resource = findResource(identifier);
    ListTextMemo::Texts texts;
    // Taken before the list changes, so the change does not copy the list.
    const bool inStep = ListTextMemo::take(resource, list, &texts);
    int position = -1;
    if (list.isEmpty() || index == -1)
        position = 0;
    else if (index >= list.size())
        position = int(list.size());
    else if (index >= 0)
        position = index;
    // An index below -1 matches no position and inserts nothing; kept as it is.
    if (position >= 0)
        list.insert(position, fileName);
    if (!inStep)
        return setResourceList(list, identifier);
    if (position < 0 || insertEntry(resource, list, position, texts))
        ListTextMemo::put(resource, list, texts);
    return true;
}

bool QManifest::deletePage(QStringList &list, const QString &identifier, const QString &fileName)
{
    if (!m_stream)
        return false;
    const QDomNode resource = findResource(identifier);
    ListTextMemo::Texts texts;
    const bool inStep = ListTextMemo::take(resource, list, &texts);
    const int position = int(list.indexOf(fileName));
    if (position >= 0)
        list.removeAt(position);
    if (!inStep)
        return setResourceList(list, identifier);
    if (position >= 0) {
        m_stream->removeNode(childAt(resource, position));
        texts.remove(position);
    }
    ListTextMemo::put(resource, list, texts);
    return true;
}

bool QManifest::appendResource(QStringList &list, const QString &identifier, const QString &fileName)
{
    const QDomNode resource = findResource(identifier);
    ListTextMemo::Texts texts;
    const bool inStep = ListTextMemo::take(resource, list, &texts);
    list.append(fileName);
    if (!inStep)
        return setResourceList(list, identifier);
    if (insertEntry(resource, list, int(list.size()) - 1, texts))
        ListTextMemo::put(resource, list, texts);
    return true;
}

// The same node setResourceList makes for the list's entry at the position,
// put where that entry stands. Appending, the common case, walks nothing.
// False when the node could not be made: the element then no longer
// mirrors the list, and the next change rewrites it.
bool QManifest::insertEntry(const QDomNode &resource, const QStringList &list, int position, ListTextMemo::Texts &texts)
{
    const QDomNode next = position + 1 < list.size() ? childAt(resource, position) : QDomNode();
    const QDomNode file = m_stream->newChildNode(resource, QString::fromLatin1(kFile), QString());
    if (file.isNull())
        return false;
    m_stream->setNodeAttribute(file, QString::fromLatin1(kHref), list.at(position), true);
    if (!next.isNull())
        QDomNode(resource).insertBefore(file, next);
    texts.insert(position, m_stream->getFileText(file, kEntryDepth));
    return true;
}

// What a save needs not walk: every list element whose entries' text is
// remembered, each with the member list that writes it (the fillblocks
// member writes both fillblocks and attachments).
QVector<DomWriter::KnownChildren> QManifest::knownLists()
{
    const struct {
        const char *identifier;
        const QStringList *list;
    } written[] = {{"pages", &m_pages},     {"records", &m_records},       {"images", &m_images},
                   {"sounds", &m_sounds},   {"avmedia", &m_avmedia},       {"flashes", &m_flashes},
                   {"fillblocks", &m_fillblocks}, {"attachments", &m_fillblocks}};
    QVector<DomWriter::KnownChildren> known;
    for (const auto &entry : written) {
        const QDomNode resource = findResource(QString::fromLatin1(entry.identifier));
        const QString text = ListTextMemo::text(resource, *entry.list);
        if (!text.isEmpty())
            known.append({resource, text});
    }
    return known;
}
