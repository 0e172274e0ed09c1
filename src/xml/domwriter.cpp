// SPDX-License-Identifier: MIT
#include "domwriter.h"

#include "xmlname.h"

#include <QDomDocument>
#include <QDomDocumentType>
#include <QDomElement>
#include <QDomNamedNodeMap>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <utility>

namespace {

bool isHighSurrogate(char16_t c)
{
    return c >= 0xD800 && c < 0xDC00;
}

bool isLowSurrogate(char16_t c)
{
    return c >= 0xDC00 && c < 0xE000;
}

// Characters that may stand as they are: XML 1.0 chars except the few that
// need a closer look (controls, surrogates, the two non-characters, and the
// markup characters).
bool isPlain(char16_t c)
{
    return c >= 0x20 && c < 0xD800 && c != u'<' && c != u'&' && c != u'"' && c != u'>';
}

// Attributes of an element sorted by name. QDom offers no other way through
// an attribute map than by index; elements carry few attributes.
void sortAttributes(const QDomNamedNodeMap &map, QVector<QDomAttr> &attributes)
{
    attributes.clear();
    const int count = int(map.count());
    for (int i = 0; i < count; ++i)
        attributes.append(map.item(i).toAttr());
    std::sort(attributes.begin(), attributes.end(),
              [](const QDomAttr &a, const QDomAttr &b) { return a.name() < b.name(); });
}

// Entities and notations of a doctype in name order, so their order is stable too.
QVector<QDomNode> sortedNodes(const QDomNamedNodeMap &map)
{
    QVector<QDomNode> nodes;
    const int count = int(map.count());
    nodes.reserve(count);
    for (int i = 0; i < count; ++i)
        nodes.append(map.item(i));
    std::sort(nodes.begin(), nodes.end(),
              [](const QDomNode &a, const QDomNode &b) { return a.nodeName() < b.nodeName(); });
    return nodes;
}

bool isTextLike(const QDomNode &node)
{
    return !node.isNull() && node.isText();
}

QString qualifiedName(const QDomElement &element, const QString &namespaceUri)
{
    if (!namespaceUri.isNull() && !element.prefix().isEmpty())
        return element.prefix() + u':' + element.localName();
    return element.tagName();
}

// Indentation stops growing past this depth, so a deep tree's text stays
// linear in its size; real lessons never come near it.
const int kMaxIndentDepth = 32;

} // namespace

DomWriter::DomWriter(int indent, const QVector<KnownChildren> &known)
    : m_indent(indent)
    , m_known(known)
{
}

QString DomWriter::toString(const QDomNode &node, int indent, const QVector<KnownChildren> &known)
{
    DomWriter writer(indent, known);
    if (node.isDocument())
        writer.writeDocument(node);
    else
        writer.writeNode(node, 1); // QDomNode::save starts a lone node one level deep
    return writer.m_out;
}

QByteArray DomWriter::toUtf8(const QDomNode &node, int indent, const QVector<KnownChildren> &known)
{
    return toString(node, indent, known).toUtf8();
}

QString DomWriter::nodeText(const QDomNode &node, int indent, int depth)
{
    DomWriter writer(indent, {});
    writer.writeNode(node, depth);
    return writer.m_out;
}

void DomWriter::writeDocument(const QDomNode &document)
{
    const QDomDocumentType type = document.toDocument().doctype();
    bool typeWritten = false;
    for (QDomNode n = document.firstChild(); !n.isNull(); n = n.nextSibling()) {
        const bool declaration = n.isProcessingInstruction() && n.nodeName() == QLatin1String("xml");
        // The doctype follows the XML declaration, or leads when there is none.
        if (!typeWritten && !declaration) {
            writeDocumentType(type);
            typeWritten = true;
        }
        if (declaration)
            writeDeclaration(n.nodeValue());
        else
            writeNode(n, 0);
    }
}

// Iterative on purpose: a tree a host built may be far deeper than any
// file the library reads, and the writer must not run out of stack on it.
void DomWriter::writeNode(const QDomNode &top, int depth)
{
    QDomNode node = top;
    for (;;) {
        if (openNode(node, depth)) {
            if (node.isElement())
                ++depth;
            node = node.firstChild();
            continue;
        }
        while (node != top && node.nextSibling().isNull()) {
            node = node.parentNode();
            if (node.isElement())
                closeElement(node.toElement(), --depth);
        }
        if (node == top)
            return;
        node = node.nextSibling();
    }
}

// Writes what comes before a node's children; true when they follow.
bool DomWriter::openNode(const QDomNode &node, int depth)
{
    switch (node.nodeType()) {
    case QDomNode::ElementNode:
        return openElement(node.toElement(), depth);
    case QDomNode::TextNode:
        writeEscaped(node.nodeValue(), !node.parentNode().isElement(), false);
        break;
    case QDomNode::CDATASectionNode:
        m_out += QLatin1String("<![CDATA[");
        writeRaw(node.nodeValue());
        m_out += QLatin1String("]]>");
        break;
    case QDomNode::CommentNode: {
        const QString value = node.nodeValue();
        if (!isTextLike(node.previousSibling()))
            writeIndent(depth);
        m_out += QLatin1String("<!--");
        writeRaw(value);
        // Keeps a comment ending in '-' from closing as "--->".
        if (value.endsWith(u'-'))
            m_out += u' ';
        m_out += QLatin1String("-->");
        if (!isTextLike(node.nextSibling()))
            m_out += u'\n';
        break;
    }
    case QDomNode::ProcessingInstructionNode:
        m_out += QLatin1String("<?");
        writeRaw(node.nodeName());
        m_out += u' ';
        writeRaw(node.nodeValue());
        m_out += QLatin1String("?>\n");
        break;
    case QDomNode::EntityReferenceNode:
        m_out += u'&';
        writeRaw(node.nodeName());
        m_out += u';';
        break;
    case QDomNode::AttributeNode:
        writeRaw(node.nodeName());
        m_out += QLatin1String("=\"");
        writeEscaped(node.nodeValue(), true, true);
        m_out += u'"';
        break;
    case QDomNode::DocumentNode:
        writeDocument(node);
        break;
    case QDomNode::DocumentTypeNode:
        writeDocumentType(node.toDocumentType());
        break;
    default:
        return node.hasChildNodes();
    }
    return false;
}

bool DomWriter::openElement(const QDomElement &element, int depth)
{
    // An element whose name would not read back is left out with all it
    // holds: written, it would make the whole file unreadable.
    if (!isName(element.nodeName(), m_elementName))
        return false;
    // No whitespace is written next to a text node: it would change the text.
    if (!isTextLike(element.previousSibling()))
        writeIndent(depth);

    const QString namespaceUri = element.namespaceURI();
    const QString name = qualifiedName(element, namespaceUri);
    m_out += u'<';
    // Without a namespace the name written is the one just checked.
    if (namespaceUri.isNull())
        m_out += name;
    else
        writeRaw(name);
    if (!namespaceUri.isNull()) {
        m_out += element.prefix().isEmpty() ? QLatin1String(" xmlns") : QLatin1String(" xmlns:");
        writeRaw(element.prefix());
        m_out += QLatin1String("=\"");
        writeEscaped(namespaceUri, true, false);
        m_out += u'"';
    }
    writeAttributes(element);

    const QDomNode first = element.firstChild();
    if (first.isNull()) {
        m_out += QLatin1String("/>");
        if (!isTextLike(element.nextSibling()))
            writeNewline();
        return false;
    }
    m_out += u'>';
    // A lone text child is written here, as the walk down and up again
    // would write it: most elements of a lesson hold at most a value.
    if (first.nodeType() == QDomNode::TextNode && first.nextSibling().isNull()) {
        writeEscaped(first.nodeValue(), false, false);
        writeEndTag(name, element);
        return false;
    }
    if (!first.isText())
        writeNewline();
    return !writeKnownChildren(element, depth);
}

bool DomWriter::writeKnownChildren(const QDomElement &element, int depth)
{
    for (const KnownChildren &known : m_known) {
        if (known.element == element) {
            m_out += known.text;
            closeElement(element, depth);
            return true;
        }
    }
    return false;
}

void DomWriter::closeElement(const QDomElement &element, int depth)
{
    if (!element.lastChild().isText())
        writeIndent(depth);
    writeEndTag(qualifiedName(element, element.namespaceURI()), element);
}

void DomWriter::writeEndTag(const QString &name, const QDomElement &element)
{
    m_out += QLatin1String("</");
    writeRaw(name);
    m_out += u'>';
    if (!isTextLike(element.nextSibling()))
        writeNewline();
}

// The names of a tree repeat: one that passed the check just before is not
// checked again.
bool DomWriter::isName(const QString &name, QString &lastGood)
{
    if (!lastGood.isEmpty() && name == lastGood)
        return true;
    if (!XmlName::isQualifiedName(name))
        return false;
    lastGood = name;
    return true;
}

void DomWriter::writeAttributes(const QDomElement &element)
{
    const QDomNamedNodeMap map = element.attributes();
    const int count = int(map.count());
    if (count == 0)
        return;
    QStringList declaredPrefixes;
    // A lone attribute needs neither sorting nor a check for repeats: list
    // entries, the bulk of a long manifest, carry just one.
    if (count == 1) {
        // QDom reaches an attribute by index through a walk of its hash from
        // the start; by the name the last lone attribute had, it is a lookup.
        QDomAttr attribute;
        if (!m_loneAttribute.isEmpty())
            attribute = QDomElement(element).attributeNode(m_loneAttribute); // not const in Qt 5
        if (attribute.isNull()) {
            attribute = map.item(0).toAttr();
            m_loneAttribute = attribute.name();
        }
        writeAttribute(attribute, element, nullptr, declaredPrefixes);
        return;
    }
    QSet<QString> writtenNames;
    // The buffer is reused: attributes are written before any child.
    sortAttributes(map, m_attributes);
    for (const QDomAttr &attribute : std::as_const(m_attributes))
        writeAttribute(attribute, element, &writtenNames, declaredPrefixes);
}

void DomWriter::writeAttribute(const QDomAttr &attribute, const QDomElement &element, QSet<QString> *writtenNames,
                               QStringList &declaredPrefixes)
{
    const QString attributeUri = attribute.namespaceURI();
    const QString attributeName =
        attributeUri.isNull() ? attribute.name() : attribute.prefix() + u':' + attribute.localName();
    // A name holding characters XML cannot carry was never a name: with
    // them left out it may clash with another ("x\v2" and "x2") or end
    // in ':', and the whole file would no longer read. Such an attribute is
    // dropped, as is any other name that would not read back, and repeats.
    // A name that reads back holds only characters XML carries, so it is
    // written as it is.
    if (!isName(attributeName, m_attributeName) || (writtenNames && writtenNames->contains(attributeName)))
        return;
    if (writtenNames)
        writtenNames->insert(attributeName);
    m_out += u' ';
    m_out += attributeName;
    m_out += QLatin1String("=\"");
    writeEscaped(attribute.value(), true, true);
    m_out += u'"';
    if (!attributeUri.isNull() && attribute.prefix() != element.prefix()
        && !declaredPrefixes.contains(attribute.prefix())) {
        declaredPrefixes.append(attribute.prefix());
        m_out += QLatin1String(" xmlns:");
        writeRaw(attribute.prefix());
        m_out += QLatin1String("=\"");
        writeEscaped(attributeUri, true, true);
        m_out += u'"';
    }
}

void DomWriter::writeDocumentType(const QDomDocumentType &type)
{
    if (type.isNull() || type.name().isEmpty())
        return;
    m_out += QLatin1String("<!DOCTYPE ");
    writeRaw(type.name());
    if (!type.publicId().isNull()) {
        m_out += QLatin1String(" PUBLIC ");
        writeQuoted(type.publicId());
        if (!type.systemId().isNull()) {
            m_out += u' ';
            writeQuoted(type.systemId());
        }
    } else if (!type.systemId().isNull()) {
        m_out += QLatin1String(" SYSTEM ");
        writeQuoted(type.systemId());
    }
    const QDomNamedNodeMap entities = type.entities();
    const QDomNamedNodeMap notations = type.notations();
    if (entities.count() > 0 || notations.count() > 0) {
        m_out += QLatin1String(" [\n");
        for (const QDomNode &node : sortedNodes(notations)) {
            const QDomNotation notation = node.toNotation();
            m_out += QLatin1String("<!NOTATION ");
            writeRaw(notation.nodeName());
            if (!notation.publicId().isNull()) {
                m_out += QLatin1String(" PUBLIC ");
                writeQuoted(notation.publicId());
                if (!notation.systemId().isNull()) {
                    m_out += u' ';
                    writeQuoted(notation.systemId());
                }
            } else {
                m_out += QLatin1String(" SYSTEM ");
                writeQuoted(notation.systemId());
            }
            m_out += QLatin1String(">\n");
        }
        for (const QDomNode &node : sortedNodes(entities)) {
            const QDomEntity entity = node.toEntity();
            QString name = entity.nodeName();
            if (name.startsWith(u'%'))
                name = QLatin1String("% ") + name.mid(1);
            m_out += QLatin1String("<!ENTITY ");
            writeRaw(name);
            m_out += u' ';
            if (entity.systemId().isNull() && entity.publicId().isNull()) {
                m_out += u'"';
                writeEntityValue(entity.nodeValue());
                m_out += u'"';
            } else {
                if (entity.publicId().isNull()) {
                    m_out += QLatin1String("SYSTEM ");
                } else {
                    m_out += QLatin1String("PUBLIC ");
                    writeQuoted(entity.publicId());
                    m_out += u' ';
                }
                writeQuoted(entity.systemId());
                if (!entity.notationName().isNull()) {
                    m_out += QLatin1String(" NDATA ");
                    writeRaw(entity.notationName());
                }
            }
            m_out += QLatin1String(">\n");
        }
        m_out += u']';
    }
    m_out += QLatin1String(">\n");
}

// The file is always written as UTF-8, so a declaration naming another
// encoding would make the next load misread every non-ASCII character.
void DomWriter::writeDeclaration(const QString &data)
{
    QString text = data;
    const int key = int(text.indexOf(QLatin1String("encoding")));
    if (key >= 0) {
        const int equals = int(text.indexOf(u'=', key));
        int open = equals;
        while (open >= 0 && open < text.size() && text[open] != u'"' && text[open] != u'\'')
            ++open;
        if (open >= 0 && open < text.size()) {
            const int close = int(text.indexOf(text[open], open + 1));
            if (close > open)
                text.replace(open + 1, close - open - 1, QLatin1String("UTF-8"));
        }
    }
    m_out += QLatin1String("<?xml ");
    writeRaw(text);
    m_out += QLatin1String("?>\n");
}

// QDom's own entity escaping, '%' written as "&#60;" included, so a
// doctype reads back exactly as QDom would have written it.
void DomWriter::writeEntityValue(const QString &value)
{
    QString text;
    text.reserve(value.size());
    for (int i = 0; i < value.size(); ++i) {
        const QChar c = value[i];
        if (c == u'%')
            text += QLatin1String("&#60;");
        else if (c == u'"')
            text += QLatin1String("&#34;");
        else if (c == u'&' && i + 1 < value.size() && value[i + 1] == u'#')
            text += QLatin1String("&#38;");
        else
            text += c;
    }
    writeRaw(text);
}

void DomWriter::writeIndent(int depth)
{
    if (m_indent <= 0)
        return;
    const int width = qMin(depth, kMaxIndentDepth) * m_indent;
    if (m_spaces.size() < width)
        m_spaces.fill(u' ', width);
    m_out.append(QStringView(m_spaces).left(width));
}

void DomWriter::writeNewline()
{
    if (m_indent != -1)
        m_out += u'\n';
}

void DomWriter::writeQuoted(const QString &text)
{
    const QChar quote = text.contains(u'\'') ? u'"' : u'\'';
    m_out += quote;
    writeRaw(text);
    m_out += quote;
}

void DomWriter::writeRaw(QStringView text)
{
    qsizetype run = 0;
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = text[i].unicode();
        if (c >= 0x20 && c < 0xD800)
            continue;
        if (c == u'\t' || c == u'\n' || c == u'\r' || (c >= 0xE000 && c < 0xFFFE))
            continue;
        if (isHighSurrogate(c) && i + 1 < size && isLowSurrogate(text[i + 1].unicode())) {
            ++i;
            continue;
        }
        // Not a character XML can carry: leave it out.
        m_out.append(text.mid(run, i - run));
        run = i + 1;
    }
    m_out.append(text.mid(run));
}

void DomWriter::writeEscaped(QStringView text, bool quotes, bool attribute)
{
    qsizetype run = 0;
    const qsizetype size = text.size();
    auto replace = [&](qsizetype i, QLatin1String with) {
        m_out.append(text.mid(run, i - run));
        m_out += with;
        run = i + 1;
    };
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = text[i].unicode();
        if (isPlain(c))
            continue;
        switch (c) {
        case u'<':
            replace(i, QLatin1String("&lt;"));
            break;
        case u'&':
            replace(i, QLatin1String("&amp;"));
            break;
        case u'"':
            if (quotes)
                replace(i, QLatin1String("&quot;"));
            break;
        case u'>':
            // Only "]]>" must not appear in character data.
            if (i >= 2 && text[i - 1] == u']' && text[i - 2] == u']')
                replace(i, QLatin1String("&gt;"));
            break;
        case u'\r':
            replace(i, QLatin1String("&#xd;"));
            break;
        case u'\n':
            if (attribute)
                replace(i, QLatin1String("&#xa;"));
            break;
        case u'\t':
            if (attribute)
                replace(i, QLatin1String("&#x9;"));
            break;
        default:
            if (c >= 0xE000 && c < 0xFFFE)
                break;
            if (isHighSurrogate(c) && i + 1 < size && isLowSurrogate(text[i + 1].unicode())) {
                ++i;
                break;
            }
            replace(i, QLatin1String());
            break;
        }
    }
    m_out.append(text.mid(run));
}
