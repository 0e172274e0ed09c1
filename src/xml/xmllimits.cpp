// SPDX-License-Identifier: MIT
#include "xml/xmllimits.h"

#include "xml/readlimits.h"

#include <QStringView>
#include <QXmlStreamReader>

#include <cstring>

namespace {

// A quick pass over the markup that counts what the parser would build,
// without parsing: start tags by depth and '=' signs outside quotes within a
// tag. It only has to be exact for well-formed text; anything else is
// refused by the parser afterwards, at or before the point where the count
// and the parser part ways. Quoted values, the bulk of a page, are skipped
// by a search for the closing quote.
template <typename Unit>
class MarkupScan {
public:
    MarkupScan(const Unit *text, qsizetype size) : m_text(text), m_size(size) {}

    XmlLimits::Verdict run()
    {
        const int maxDepth = XmlLimits::maxDepth();
        const int maxAttributes = XmlLimits::maxAttributes();
        int depth = 0;
        qsizetype i = 0;
        // The unit after '<' tells the kinds apart; start tags, the most
        // frequent, are told at once.
        while ((i = find(i, '<')) < m_size) {
            const char16_t next = at(i + 1);
            if (next == u'!') {
                i = afterExclamation(i);
            } else if (next == u'?') {
                i = after(i + 2, "?>");
            } else if (next == u'/') {
                --depth;
                i = after(i + 2, ">");
            } else {
                int attributes = 0;
                const qsizetype end = tagEnd(i + 1, &attributes);
                if (attributes > maxAttributes)
                    return XmlLimits::TooManyAttributes;
                if (at(end - 1) != u'/' && ++depth > maxDepth)
                    return XmlLimits::TooDeep;
                i = end + 1;
            }
        }
        return XmlLimits::Within;
    }

    // Whether the text has a document type declaration: only one can declare
    // entities, whose expansion the count above does not see.
    bool declared() const { return m_declared; }

private:
    char16_t at(qsizetype i) const { return i >= 0 && i < m_size ? char16_t(m_text[i]) : 0; }

    bool startsWith(qsizetype i, const char *pattern) const
    {
        for (; *pattern; ++pattern, ++i) {
            if (at(i) != char16_t(uchar(*pattern)))
                return false;
        }
        return true;
    }

    // A comment, CDATA or a document type declaration at i ("<!").
    qsizetype afterExclamation(qsizetype i)
    {
        if (startsWith(i, "<!--"))
            return after(i + 4, "-->");
        if (startsWith(i, "<![CDATA["))
            return after(i + 9, "]]>");
        m_declared = true;
        return afterDeclaration(i + 2);
    }

    // The first unit c at or after i, or the end.
    qsizetype find(qsizetype i, char c) const
    {
        if (i >= m_size)
            return m_size;
        const qsizetype found = findUnit(m_text + i, m_size - i, c);
        return found < 0 ? m_size : i + found;
    }

    static qsizetype findUnit(const char *text, qsizetype size, char c)
    {
        const void *const hit = std::memchr(text, c, size_t(size));
        return hit ? static_cast<const char *>(hit) - text : -1;
    }

    static qsizetype findUnit(const char16_t *text, qsizetype size, char c)
    {
        return QStringView(text, size).indexOf(QLatin1Char(c));
    }

    qsizetype find(qsizetype i, const char *pattern) const
    {
        while ((i = find(i, *pattern)) < m_size && !startsWith(i, pattern))
            ++i;
        return i;
    }

    qsizetype after(qsizetype i, const char *pattern) const
    {
        return qMin(m_size, find(i, pattern) + qsizetype(qstrlen(pattern)));
    }

    qsizetype tagEnd(qsizetype i, int *attributes) const
    {
        for (; i < m_size; ++i) {
            const char16_t c = char16_t(m_text[i]);
            // Letters, the bulk of names, pass at one comparison.
            if (c > u'>')
                continue;
            if (c == u'"' || c == u'\'')
                i = find(i + 1, char(c));
            else if (c == u'=')
                ++*attributes;
            else if (c == u'>')
                break;
        }
        return qMin(i, m_size);
    }

    // A document type declaration, its internal subset included.
    qsizetype afterDeclaration(qsizetype i) const
    {
        while (i < m_size) {
            const char16_t c = char16_t(m_text[i]);
            if (startsWith(i, "<!--"))
                i = after(i + 4, "-->");
            else if (startsWith(i, "<?"))
                i = after(i + 2, "?>");
            else if (c == u'"' || c == u'\'')
                i = qMin(m_size, find(i + 1, char(c)) + 1);
            else if (c == u'>')
                return i + 1;
            else
                ++i;
        }
        return i;
    }

    const Unit *const m_text;
    const qsizetype m_size;
    bool m_declared = false;
};

// The parser's own view, entities expanded, once no tag can make it slow.
XmlLimits::Verdict streamCheck(QXmlStreamReader &reader)
{
    const int maxDepth = XmlLimits::maxDepth();
    const int maxAttributes = XmlLimits::maxAttributes();
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > maxDepth)
                return XmlLimits::TooDeep;
            if (reader.attributes().size() > maxAttributes)
                return XmlLimits::TooManyAttributes;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return XmlLimits::Within;
}

template <typename Text>
XmlLimits::Verdict streamCheck(const Text &text)
{
    QXmlStreamReader reader(text);
    return streamCheck(reader);
}

bool isUtf16(const QByteArray &data)
{
    if (data.size() < 2)
        return false;
    const uchar first = uchar(data[0]);
    const uchar second = uchar(data[1]);
    return first == 0 || second == 0 || (first == 0xFE && second == 0xFF) || (first == 0xFF && second == 0xFE);
}

QString fromUtf16(const QByteArray &data)
{
    const bool bigEndian = uchar(data[0]) == 0 || uchar(data[0]) == 0xFE;
    QString text(int(data.size() / 2), Qt::Uninitialized);
    for (int i = 0; i < text.size(); ++i) {
        const uchar high = uchar(data[bigEndian ? 2 * i : 2 * i + 1]);
        const uchar low = uchar(data[bigEndian ? 2 * i + 1 : 2 * i]);
        text[i] = QChar(ushort(high << 8 | low));
    }
    return text;
}

// Whether the XML declaration names an encoding other than UTF-8. The parser
// decodes such bytes before it sees markup, so the count over raw bytes is
// not its view; without a declaration, or with UTF-8, every markup character
// is the byte the count looks for.
bool declaresOtherEncoding(const QByteArray &data)
{
    const int start = data.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    if (data.size() < start + 5 || qstrncmp(data.constData() + start, "<?xml", 5) != 0)
        return false;
    const QByteArray declaration = data.mid(start, data.indexOf("?>", start) - start);
    const int name = declaration.indexOf("encoding");
    if (name < 0)
        return false;
    const int equals = declaration.indexOf('=', name);
    QByteArray value = declaration.mid(equals + 1).trimmed();
    if (value.isEmpty())
        return true;
    value = value.mid(1, value.indexOf(value.at(0), 1) - 1);
    return value.toLower() != "utf-8";
}

} // namespace

int XmlLimits::maxDepth()
{
    return ReadLimits::current().maxXmlDepth;
}

int XmlLimits::maxAttributes()
{
    return ReadLimits::current().maxXmlAttributes;
}

// The parser's pass is needed only where the count cannot be exact: behind a
// document type declaration (entities) or in an encoding whose bytes are not
// the markup's characters.
XmlLimits::Verdict XmlLimits::check(const QByteArray &data)
{
    if (isUtf16(data)) {
        const QString text = fromUtf16(data);
        const Verdict markup = MarkupScan<char16_t>(reinterpret_cast<const char16_t *>(text.utf16()), text.size()).run();
        return markup != Within ? markup : streamCheck(data);
    }
    MarkupScan<char> scan(data.constData(), data.size());
    const Verdict markup = scan.run();
    if (markup != Within || (!scan.declared() && !declaresOtherEncoding(data)))
        return markup;
    return streamCheck(data);
}

XmlLimits::Verdict XmlLimits::check(const QString &text)
{
    MarkupScan<char16_t> scan(reinterpret_cast<const char16_t *>(text.utf16()), text.size());
    const Verdict markup = scan.run();
    if (markup != Within || !scan.declared())
        return markup;
    return streamCheck(text);
}

const char *XmlLimits::warning(Verdict verdict)
{
    switch (verdict) {
    case TooDeep:
        return "XML nested too deep!";
    case TooManyAttributes:
        return "XML element with too many attributes!";
    default:
        return "";
    }
}
