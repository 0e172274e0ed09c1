// SPDX-License-Identifier: MIT
#include "record/qlxrecordpage.h"

#include "record/qlxcmd.h"
#include "xml/xmlstream.h"

namespace {

const char *const kRootTag = "record";
const char *const kClassAttribute = "class";
const char *const kPageClass = "page";

} // namespace

QLXRecordPage::QLXRecordPage() = default;

// Opening a record page that does not exist yet makes a new one; a file that
// exists but cannot be parsed is left alone (create refuses to overwrite it).
QLXRecordPage::QLXRecordPage(const QString &path)
{
    if (!loadRecPageFile(path))
        createRecPageFile(path);
}

void QLXRecordPage::release()
{
    closeFile(false);
    delete this;
}

bool QLXRecordPage::saveFile()
{
    return m_stream ? m_stream->saveFile() : false;
}

bool QLXRecordPage::closeFile(bool save)
{
    if (!m_stream)
        return true;
    m_stream->closeFile(save);
    dropStream();
    return true;
}

bool QLXRecordPage::loadRecPageFile(const QString &path)
{
    closeFile(false);
    m_stream = new QXmlStream;
    if (!m_stream->loadFromXmlFile(path)) {
        // The failed parse leaves the file open; closing without saving keeps
        // the stream's destructor from writing an empty tree over it.
        closeFile(false);
        return false;
    }
    m_root = m_stream->getRootNode();
    if (m_root.isNull()) {
        closeFile(false);
        return false;
    }
    return true;
}

bool QLXRecordPage::createRecPageFile(const QString &path)
{
    closeFile(false);
    m_stream = new QXmlStream;
    if (!m_stream->createXmlFile(path, QString::fromLatin1(kRootTag))) {
        closeFile(false);
        return false;
    }
    m_root = m_stream->getRootNode();
    if (m_root.isNull())
        return false;
    // The file was closed by its creation, so the class reaches the disk only
    // with the next saveFile.
    return m_stream->setNodeAttribute(m_root, QString::fromLatin1(kClassAttribute),
                                      QString::fromLatin1(kPageClass), true);
}

// The class accessors do not look at the root, as the host has always had it:
// on a page without one the set reports success and the get finds nothing.
bool QLXRecordPage::setClass(QString cls)
{
    if (!m_stream)
        return true;
    return m_stream->setNodeAttribute(m_root, QString::fromLatin1(kClassAttribute), cls, true);
}

bool QLXRecordPage::getClass(QString &cls)
{
    cls = QStringLiteral("");
    if (!m_stream)
        return false;
    return m_stream->getNodeAttribute(m_root, QString::fromLatin1(kClassAttribute), cls,
                                      QStringLiteral(""));
}

bool QLXRecordPage::clearAllCmdRecords()
{
    if (!isReady())
        return false;
    return m_stream->removeAllChildNotes(m_root);
}

ILXCmd *QLXRecordPage::getFirstLXCmd()
{
    if (!isReady())
        return nullptr;
    m_current = m_stream->getFirstChildNode(m_root);
    return wrapCurrent();
}

ILXCmd *QLXRecordPage::getNextLXCmd()
{
    if (!isReady())
        return nullptr;
    m_current = m_stream->getNextNode(m_current);
    return wrapCurrent();
}

// Unlike a command's own newLXCmd, the page moves its cursor onto the command
// just recorded, so a following getNextLXCmd finds nothing.
ILXCmd *QLXRecordPage::newLXCmd(const QString &name)
{
    if (!isReady())
        return nullptr;
    m_current = m_stream->newChildNode(m_root, name, QString());
    return wrapCurrent();
}

bool QLXRecordPage::getLXPageAttribute(const QString &name, int &value)
{
    value = 0;
    return isReady() && m_stream->getNodeAttribute(m_root, name, value, 0);
}

bool QLXRecordPage::getLXPageAttribute(const QString &name, float &value)
{
    value = 0.0f;
    return isReady() && m_stream->getNodeAttribute(m_root, name, value, 0.0f);
}

bool QLXRecordPage::getLXPageAttribute(const QString &name, QString &value)
{
    value = QStringLiteral("");
    return isReady() && m_stream->getNodeAttribute(m_root, name, value, QStringLiteral(""));
}

bool QLXRecordPage::setLXPageAttribute(const QString &name, int value)
{
    return isReady() && m_stream->setNodeAttribute(m_root, name, value, true);
}

bool QLXRecordPage::setLXPageAttribute(const QString &name, float value)
{
    return isReady() && m_stream->setNodeAttribute(m_root, name, value, true);
}

bool QLXRecordPage::setLXPageAttribute(const QString &name, const QString &value)
{
    return isReady() && m_stream->setNodeAttribute(m_root, name, value, true);
}

// Ending the object neither saves nor deletes the stream: the host ends a
// record page with release, which closes first.
QLXRecordPage::~QLXRecordPage() = default;

bool QLXRecordPage::isReady() const
{
    return m_stream && !m_root.isNull();
}

void QLXRecordPage::dropStream()
{
    delete m_stream;
    m_stream = nullptr;
    m_root.clear();
    m_current.clear();
}

ILXCmd *QLXRecordPage::wrapCurrent() const
{
    return m_current.isNull() ? nullptr : new QLXCmd(m_stream, m_current);
}
