// SPDX-License-Identifier: MIT
#include "xmlname.h"

#include <QDomDocument>
#include <QDomElement>
#include <QDomNamedNodeMap>

namespace {

// Qt 6's reader refuses longer names, so a file holding one would not open
// again.
constexpr qsizetype maxNameLength = 4096;

bool inRange(uint c, uint low, uint high)
{
    return c >= low && c <= high;
}

// NameStartChar of XML 1.0 (fifth edition), the colon left out: it is
// handled by the qualified-name rule.
bool isNameStart(uint c)
{
    if (c < 0x80)
        return inRange(c, 'a', 'z') || inRange(c, 'A', 'Z') || c == '_';
    return inRange(c, 0xC0, 0xD6) || inRange(c, 0xD8, 0xF6) || inRange(c, 0xF8, 0x2FF)
        || inRange(c, 0x370, 0x37D) || inRange(c, 0x37F, 0x1FFF) || inRange(c, 0x200C, 0x200D)
        || inRange(c, 0x2070, 0x218F) || inRange(c, 0x2C00, 0x2FEF) || inRange(c, 0x3001, 0xD7FF)
        || inRange(c, 0xF900, 0xFDCF) || inRange(c, 0xFDF0, 0xFFFD) || inRange(c, 0x10000, 0xEFFFF);
}

bool isNameChar(uint c)
{
    return isNameStart(c) || c == '-' || c == '.' || inRange(c, '0', '9') || c == 0xB7
        || inRange(c, 0x300, 0x36F) || inRange(c, 0x203F, 0x2040);
}

bool isHighSurrogate(uint c)
{
    return inRange(c, 0xD800, 0xDBFF);
}

bool isLowSurrogate(uint c)
{
    return inRange(c, 0xDC00, 0xDFFF);
}

// The code point at i, a surrogate pair read as one; a lone surrogate is
// returned as it is and so matches no name rule. i moves to the last unit read.
uint codePoint(QStringView text, qsizetype &i)
{
    const uint c = text[i].unicode();
    if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1].unicode())) {
        ++i;
        return QChar::surrogateToUcs4(char16_t(c), text[i].unicode());
    }
    return c;
}

// A name without colon (NCName).
bool isPlainName(QStringView name)
{
    if (name.isEmpty())
        return false;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const bool first = i == 0;
        const uint c = codePoint(name, i);
        if (first ? !isNameStart(c) : !isNameChar(c))
            return false;
    }
    return true;
}

bool isCarried(uint c)
{
    return (c >= 0x20 && c < 0xD800) || c == '\t' || c == '\n' || c == '\r'
        || inRange(c, 0xE000, 0xFFFD) || c >= 0x10000;
}

bool isAscii(QStringView text)
{
    for (const QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

// Qt's parser still follows the older name tables of XML 1.0, which leave
// out many letters the current rule allows (and each Qt version its own
// ones); a name that this parser would refuse on the next open must not get
// in. Only names with non-ASCII letters are asked, which are rare.
bool readsBack(QStringView name)
{
    const QString text = name.toString();
    QDomDocument document;
    if (!document.setContent(QLatin1Char('<') + text + QLatin1String(" a=\"\"/>"), false))
        return false;
    const QDomElement element = document.documentElement();
    QDomDocument attributeDocument;
    return element.tagName() == text
        && attributeDocument.setContent(QLatin1String("<a ") + text + QLatin1String("=\"\"/>"), false)
        && attributeDocument.documentElement().hasAttribute(text);
}

bool hasNamedAttributes(const QDomNode &node)
{
    const QDomNamedNodeMap map = node.attributes();
    const int count = int(map.count());
    for (int i = 0; i < count; ++i) {
        if (!XmlName::isQualifiedName(map.item(i).nodeName()))
            return false;
    }
    return true;
}

} // namespace

bool XmlName::isQualifiedName(QStringView name)
{
    if (name.size() > maxNameLength)
        return false;
    const qsizetype colon = name.indexOf(u':');
    const bool valid = colon < 0 ? isPlainName(name)
                                 : isPlainName(name.left(colon)) && isPlainName(name.mid(colon + 1));
    return valid && (isAscii(name) || readsBack(name));
}

// Walked without recursion: a pasted fragment may nest deeper than the stack allows.
bool XmlName::isNamedTree(const QDomNode &node)
{
    QDomNode current = node;
    while (!current.isNull()) {
        if (current.isElement()
            && (!isQualifiedName(current.nodeName()) || !hasNamedAttributes(current)))
            return false;
        if (current.hasChildNodes()) {
            current = current.firstChild();
            continue;
        }
        while (current != node && current.nextSibling().isNull())
            current = current.parentNode();
        if (current == node)
            break;
        current = current.nextSibling();
    }
    return true;
}

QString XmlName::carried(QStringView text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const qsizetype start = i;
        if (isCarried(codePoint(text, i)))
            out.append(text.mid(start, i - start + 1));
    }
    return out;
}
