// SPDX-License-Identifier: MIT
#include "xmlstream.h"

#include "domwriter.h"
#include "numbertext.h"
#include "regularfile.h"
#include "xmllimits.h"
#include "xmlname.h"

#include <QDomElement>
#include <QDomNamedNodeMap>
#include <QSaveFile>
#include <QStringList>

#include <algorithm>

namespace {

// Files carry indentation 4, text taken out with getXmlStream indentation 1;
// both forms are read by other tools and stay as they are.
constexpr int fileIndent = 4;
constexpr int textIndent = 1;

// The shared loop of the attribute searches: the cursor walks from start in
// one direction and stays on the first element that matches, or ends null.
template<typename Match>
QDomNode searchSiblings(QDomNode &cursor, const QDomNode &start, bool forwards, Match match)
{
    cursor = start;
    while (!cursor.isNull()) {
        if (cursor.isElement() && match(cursor.toElement()))
            return cursor;
        cursor = forwards ? cursor.nextSibling() : cursor.previousSibling();
    }
    cursor.clear();
    return QDomNode();
}

// Attribute text of an element, or false when the node is not an element or
// lacks the attribute.
bool attributeText(const QDomNode &node, const QString &name, QString &text)
{
    if (!node.isElement())
        return false;
    const QDomAttr attribute = node.toElement().attributeNode(name);
    if (attribute.isNull())
        return false;
    text = attribute.value();
    return true;
}

auto textMatch(const QString &name, const QString &value)
{
    return [&name, &value](const QDomElement &element) {
        QString text;
        return attributeText(element, name, text) && text == value;
    };
}

auto pairMatch(const QString &name1, const QString &value1, const QString &name2, const QString &value2)
{
    return [&](const QDomElement &element) {
        return textMatch(name1, value1)(element) && textMatch(name2, value2)(element);
    };
}

// The element's value is the text of its first child; only a text child
// carries one.
QDomNode valueChild(const QDomNode &node)
{
    if (!node.isElement())
        return QDomNode();
    const QDomNode first = node.firstChild();
    return first.isText() ? first : QDomNode();
}

} // namespace

QXmlStream::QXmlStream() = default;

QXmlStream::~QXmlStream()
{
    closeFile(true);
}

bool QXmlStream::isReady()
{
    return m_ready;
}

bool QXmlStream::createXmlFile(const QString &fileName, const QString &rootName)
{
    m_file.close();
    m_fileName = fileName;
    m_file.setFileName(fileName);
    if (m_file.exists()) {
        qWarning("XML file had exist!");
        m_ready = false;
        return false;
    }
    // NewOnly also refuses a dangling link, which would otherwise be followed
    // to create a file wherever it points.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        qWarning("open XML file error!");
        m_file.close();
        m_ready = false;
        return false;
    }
    m_document.appendChild(m_document.createProcessingInstruction(QStringLiteral("xml"),
                                                                  QStringLiteral("version='1.0'")));
    m_document.appendChild(m_document.createElement(rootName));
    m_file.write(DomWriter::toUtf8(m_document, fileIndent));
    m_file.close();
    m_ready = true;
    return true;
}

bool QXmlStream::createXmlStream(const QString &rootName)
{
    m_document.appendChild(m_document.createElement(rootName));
    m_ready = true;
    return true;
}

bool QXmlStream::loadFromXmlFile(const QString &fileName)
{
    // An open file cannot be renamed; it is let go only once the new file
    // is known to exist, so a failed load leaves the old file as it was.
    if (m_file.isOpen()) {
        if (!QFile::exists(fileName))
            return false;
        m_file.close();
    }
    m_file.setFileName(fileName);
    if (!m_file.exists())
        return false;
    m_fileName = fileName;
    // A name that is a link, a FIFO or a device is not a lesson file: it is
    // neither followed nor waited on.
    if (!RegularFile::open(&m_file, fileName, true)) {
        qWarning("open XML file error!");
        m_file.close();
        m_ready = false;
        return false;
    }
    if (!setContentWithin(m_file.readAll())) {
        qWarning("cann't load the xml file!");
        m_ready = false;
        return false;
    }
    m_ready = true;
    return true;
}

bool QXmlStream::loadFromXmlStream(const QString &text)
{
    if (!setContentWithin(text)) {
        qWarning("cann't load the xml Stream!");
        m_ready = false;
        return false;
    }
    m_ready = true;
    return true;
}

// A text beyond the limits is refused before QDom sees it, and the tree is
// left empty as after any failed parse.
template <typename Text>
bool QXmlStream::setContentWithin(const Text &text)
{
    const XmlLimits::Verdict verdict = XmlLimits::check(text);
    if (verdict == XmlLimits::Within)
        return m_document.setContent(text, false);
    qWarning("%s", XmlLimits::warning(verdict));
    m_document = QDomDocument();
    return false;
}

bool QXmlStream::reloadFile()
{
    if (m_fileName.isNull()) {
        qWarning("No file name specified");
        m_ready = false;
        return false;
    }
    m_file.close();
    // The load's result is not passed on: a reload always leaves a ready
    // object, the load's own warning being the only sign of a failure.
    loadFromXmlFile(m_fileName);
    m_ready = true;
    return true;
}

bool QXmlStream::setXmlFileName(const QString &fileName)
{
    m_file.close();
    m_file.setFileName(fileName);
    m_fileName = m_file.fileName();
    reloadFile();
    return true;
}

QString &QXmlStream::getXmlFileName()
{
    m_fileName = m_file.fileName();
    return m_fileName;
}

bool QXmlStream::saveFile()
{
    return saveFile({});
}

bool QXmlStream::saveFile(const QVector<DomWriter::KnownChildren> &known)
{
    m_file.close();
    if (m_file.fileName().isEmpty())
        return false;
    // The new content replaces the file only once it is complete and flushed
    // to disk, so a crash or a full disk during a save leaves the last saved
    // page instead of a truncated one. A folder that refuses the temporary
    // file still gets the file written in place.
    QSaveFile out(m_file.fileName());
    out.setDirectWriteFallback(true);
    const QByteArray bytes = DomWriter::toUtf8(m_document, fileIndent, known);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return false;
    // The file stays open on purpose: closing with save, or the destructor,
    // writes it once more.
    if (!m_file.open(QIODevice::ReadWrite)) {
        m_file.close();
        return false;
    }
    return true;
}

QString QXmlStream::getFileText(const QDomNode &node, int depth) const
{
    return DomWriter::nodeText(node, fileIndent, depth);
}

bool QXmlStream::closeFile(bool save)
{
    if (!m_file.isOpen())
        return true;
    if (save)
        saveFile();
    m_file.close();
    return true;
}

QString &QXmlStream::getXmlStream()
{
    m_text = DomWriter::toString(m_document, textIndent);
    return m_text;
}

QDomNode QXmlStream::getRootNode()
{
    // One step past a leading non-element, not a search: a document opening
    // with two non-elements yields the second of them.
    QDomNode node = m_document.firstChild();
    if (!node.isElement())
        node = node.nextSibling();
    m_root = node;
    return m_root;
}

QDomNode QXmlStream::getFirstChildNode(const QDomNode &node)
{
    return node.firstChild();
}

QDomNode QXmlStream::getLastChildNode(const QDomNode &node)
{
    return node.lastChild();
}

QDomNode QXmlStream::getNextNode(const QDomNode &node)
{
    return node.nextSibling();
}

QDomNode QXmlStream::getPreviousNode(const QDomNode &node)
{
    return node.previousSibling();
}

QString QXmlStream::getNodeName(const QDomNode &node) const
{
    return node.nodeName();
}

bool QXmlStream::isNullNode(const QDomNode &node)
{
    return node.isNull();
}

bool QXmlStream::hadChildNodes(const QDomNode &node)
{
    return node.hasChildNodes();
}

int QXmlStream::getChildNodesCount(const QDomNode &node)
{
    int count = 0;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        ++count;
    return count;
}

QDomNode QXmlStream::getFirstChildNode(const QDomNode &node, const QString &name, const QString &value)
{
    return searchSiblings(m_cursor, node.firstChild(), true, textMatch(name, value));
}

QDomNode QXmlStream::getLastChildNode(const QDomNode &node, const QString &name, const QString &value)
{
    return searchSiblings(m_cursor, node.lastChild(), false, textMatch(name, value));
}

QDomNode QXmlStream::getNextNode(const QDomNode &node, const QString &name, const QString &value)
{
    return searchSiblings(m_cursor, node.nextSibling(), true, textMatch(name, value));
}

QDomNode QXmlStream::getPreviousNode(const QDomNode &node, const QString &name, const QString &value)
{
    return searchSiblings(m_cursor, node.previousSibling(), false, textMatch(name, value));
}

QDomNode QXmlStream::getNextNode(const QDomNode &node, const QString &name1, const QString &value1,
                                 const QString &name2, const QString &value2)
{
    return searchSiblings(m_cursor, node.nextSibling(), true, pairMatch(name1, value1, name2, value2));
}

QDomNode QXmlStream::getPreviousNode(const QDomNode &node, const QString &name1, const QString &value1,
                                     const QString &name2, const QString &value2)
{
    return searchSiblings(m_cursor, node.previousSibling(), false,
                          pairMatch(name1, value1, name2, value2));
}

QDomNode QXmlStream::getChildNodeByAttribute(const QDomNode &node, const QString &name, const QString &value)
{
    return getFirstChildNode(node, name, value);
}

// A malformed attribute reads as 0 and so matches the value 0: kept, callers
// rely on it.
QDomNode QXmlStream::getChildNodeByAttribute(const QDomNode &node, const QString &name, int value)
{
    return searchSiblings(m_cursor, node.firstChild(), true, [&](const QDomElement &element) {
        QString text;
        return attributeText(element, name, text) && NumberText::toInt(text) == value;
    });
}

// Exact float equality: only text that reads back to the very same float matches.
QDomNode QXmlStream::getChildNodeByAttribute(const QDomNode &node, const QString &name, float value)
{
    return searchSiblings(m_cursor, node.firstChild(), true, [&](const QDomElement &element) {
        QString text;
        return attributeText(element, name, text) && NumberText::toFloat(text) == value;
    });
}

QDomNode QXmlStream::getChildNode(const QDomNode &node, const QString &tagName)
{
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement() && child.toElement().tagName() == tagName)
            return child;
    }
    return QDomNode();
}

// Unlike getChildNode this stops at the first child that is not an element
// and hands that child back; callers rely on both behaviours.
QDomNode QXmlStream::getChildNodeByNodename(const QDomNode &node, const QString &name)
{
    if (node.isNull())
        return node;
    QDomNode child = node.firstChild();
    while (!child.isNull() && child.isElement()) {
        if (child.nodeName() == name)
            return child;
        child = child.nextSibling();
    }
    return child;
}

bool QXmlStream::isRootNode(const QDomNode &node)
{
    return node == getRootNode();
}

QDomNode QXmlStream::getParentNode(const QDomNode &node)
{
    const QDomNode target = node; // node may be the parent cache itself
    m_parent.clear();
    if (isRootNode(target))
        return QDomNode();
    m_parent = target.parentNode();
    return m_parent;
}

QDomNode QXmlStream::newChildNode(QDomNode parent, const QString &tagName, const QString &value)
{
    // Qt would warn about appending to a null node, and a name that does not
    // read back would cost the whole file on the next open.
    if (parent.isNull() || !XmlName::isQualifiedName(tagName))
        return QDomNode();
    QDomElement element = m_document.createElement(tagName);
    element.appendChild(m_document.createTextNode(value));
    return parent.appendChild(element);
}

bool QXmlStream::removeNode(const QDomNode &node)
{
    const QDomNode target = node;
    getParentNode(target);
    if (!m_parent.isNull())
        m_parent.removeChild(target);
    return true;
}

bool QXmlStream::removeChildNode(QDomNode parent, const QString &name)
{
    if (!parent.hasChildNodes())
        return false;
    for (QDomNode child = parent.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.nodeName() == name) {
            parent.removeChild(child);
            break;
        }
    }
    return true;
}

bool QXmlStream::removeAllChildNotes(QDomNode parent)
{
    if (!parent.hasChildNodes())
        return false;
    QDomNode child = parent.firstChild();
    while (!child.isNull()) {
        const QDomNode next = child.nextSibling();
        parent.removeChild(child);
        child = next;
    }
    return true;
}

bool QXmlStream::getNodeAttribute(const QDomNode &node, const QString &name, int &result, int def)
{
    result = def;
    QString text;
    if (!attributeText(node, name, text))
        return false;
    result = NumberText::toInt(text);
    return true;
}

bool QXmlStream::getNodeAttribute(const QDomNode &node, const QString &name, float &result, float def)
{
    result = def;
    QString text;
    if (!attributeText(node, name, text))
        return false;
    result = NumberText::toFloat(text);
    return true;
}

bool QXmlStream::getNodeAttribute(const QDomNode &node, const QString &name, QString &result,
                                  const QString &def)
{
    result = def;
    return attributeText(node, name, result);
}

// The flag of the setters is accepted and ignored: an attribute is always
// created or overwritten, unless its name would not read back.
bool QXmlStream::setNodeAttribute(const QDomNode &node, const QString &name, int value, bool flag)
{
    QString text;
    NumberText::appendInt(text, value);
    return setNodeAttribute(node, name, text, flag);
}

bool QXmlStream::setNodeAttribute(const QDomNode &node, const QString &name, float value, bool flag)
{
    return setNodeAttribute(node, name, NumberText::floatAttribute(value), flag);
}

bool QXmlStream::setNodeAttribute(const QDomNode &node, const QString &name, const QString &value, bool)
{
    if (!XmlName::isQualifiedName(name))
        return false;
    node.toElement().setAttribute(name, value);
    return true;
}

bool QXmlStream::newNodeAttribute(const QDomNode &node, const QString &name, const QString &value)
{
    return setNodeAttribute(node, name, value, true);
}

bool QXmlStream::removeAttribute(const QDomNode &node, const QString &name)
{
    node.toElement().removeAttribute(name);
    return true;
}

bool QXmlStream::isNodeAttributeExist(const QDomNode &node, const QString &name)
{
    return node.isElement() && node.toElement().hasAttribute(name);
}

// Indexes count in name order, the order the files are written in, so an
// index means the same attribute in every process.
QString QXmlStream::getNodeAttributeName(const QDomNode &node, int index)
{
    m_attributeName = QLatin1String("");
    const QDomNamedNodeMap map = node.attributes();
    const int count = int(map.count());
    if (count > 0) {
        QStringList names;
        names.reserve(count);
        for (int i = 0; i < count; ++i)
            names.append(map.item(i).nodeName());
        std::sort(names.begin(), names.end());
        m_attributeName = index >= 0 && index < count ? names.at(index) : QString();
    }
    return m_attributeName;
}

bool QXmlStream::setNodeValue(const QDomNode &node, const QString &text)
{
    if (!node.isElement())
        return false;
    QDomNode child = valueChild(node);
    if (!child.isNull())
        child.setNodeValue(text);
    return true;
}

bool QXmlStream::setNodeValue(const QDomNode &node, int value)
{
    QString text;
    NumberText::appendInt(text, value);
    return setNodeValue(node, text);
}

bool QXmlStream::setNodeValue(const QDomNode &node, float value)
{
    return setNodeValue(node, NumberText::fixed5(double(value)));
}

bool QXmlStream::hadNodeValue(const QDomNode &node)
{
    return !valueChild(node).nodeValue().isEmpty();
}

bool QXmlStream::removeNodeValue(const QDomNode &node)
{
    if (!hadNodeValue(node))
        return false;
    valueChild(node).setNodeValue(QLatin1String(""));
    return true;
}

int QXmlStream::getNodeIntValue(const QDomNode &node)
{
    return hadNodeValue(node) ? NumberText::toInt(valueChild(node).nodeValue()) : 0;
}

float QXmlStream::getNodeFloatValue(const QDomNode &node)
{
    return hadNodeValue(node) ? NumberText::toFloat(valueChild(node).nodeValue()) : 0.0f;
}

QString QXmlStream::getNodeStringValue(const QDomNode &node)
{
    const QString text = valueChild(node).nodeValue();
    return text.isNull() ? QString(QLatin1String("")) : text;
}
