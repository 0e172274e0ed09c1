// SPDX-License-Identifier: MIT
#include "xml/xmllimits.h"

#include "xml/readlimits.h"

#include <QXmlStreamReader>

namespace {

// A quick pass over the markup that counts what the parser would build,
// without parsing: start tags by depth and '=' signs outside quotes within a
// tag. It only has to be exact for well-formed text; anything else is
// refused by the parser afterwards.
template <typename Text>
class MarkupScan {
public:
    explicit MarkupScan(const Text &text) : m_text(text), m_size(qsizetype(text.size())) {}

    XmlLimits::Verdict run()
    {
        const int maxDepth = XmlLimits::maxDepth();
        const int maxAttributes = XmlLimits::maxAttributes();
        int depth = 0;
        qsizetype i = 0;
        while ((i = find(i, "<")) < m_size) {
            if (startsWith(i, "<!--"))
                i = after(i + 4, "-->");
            else if (startsWith(i, "<![CDATA["))
                i = after(i + 9, "]]>");
            else if (startsWith(i, "<?"))
                i = after(i + 2, "?>");
            else if (startsWith(i, "<!"))
                i = afterDeclaration(i + 2);
            else if (startsWith(i, "</")) {
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

private:
    char16_t at(qsizetype i) const { return i >= 0 && i < m_size ? char16_t(unit(m_text.constData()[i])) : 0; }
    static ushort unit(char c) { return uchar(c); }
    static ushort unit(QChar c) { return c.unicode(); }

    bool startsWith(qsizetype i, const char *pattern) const
    {
        for (; *pattern; ++pattern, ++i) {
            if (at(i) != char16_t(uchar(*pattern)))
                return false;
        }
        return true;
    }

    qsizetype find(qsizetype i, const char *pattern) const
    {
        while (i < m_size && !startsWith(i, pattern))
            ++i;
        return i;
    }

    qsizetype after(qsizetype i, const char *pattern) const
    {
        return qMin(m_size, find(i, pattern) + qsizetype(qstrlen(pattern)));
    }

    qsizetype tagEnd(qsizetype i, int *attributes) const
    {
        char16_t quote = 0;
        for (; i < m_size; ++i) {
            const char16_t c = at(i);
            if (quote)
                quote = c == quote ? 0 : quote;
            else if (c == u'"' || c == u'\'')
                quote = c;
            else if (c == u'=')
                ++*attributes;
            else if (c == u'>')
                break;
        }
        return i;
    }

    // A document type declaration, its internal subset included.
    qsizetype afterDeclaration(qsizetype i) const
    {
        while (i < m_size) {
            const char16_t c = at(i);
            if (startsWith(i, "<!--"))
                i = after(i + 4, "-->");
            else if (startsWith(i, "<?"))
                i = after(i + 2, "?>");
            else if (c == u'"' || c == u'\'')
                i = after(i + 1, c == u'"' ? "\"" : "'");
            else if (c == u'>')
                return i + 1;
            else
                ++i;
        }
        return i;
    }

    const Text &m_text;
    const qsizetype m_size;
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

} // namespace

int XmlLimits::maxDepth()
{
    return ReadLimits::current().maxXmlDepth;
}

int XmlLimits::maxAttributes()
{
    return ReadLimits::current().maxXmlAttributes;
}

XmlLimits::Verdict XmlLimits::check(const QByteArray &data)
{
    // Markup characters of UTF-16 text are not bytes of their own.
    const Verdict markup = isUtf16(data) ? MarkupScan<QString>(fromUtf16(data)).run() : MarkupScan<QByteArray>(data).run();
    if (markup != Within)
        return markup;
    QXmlStreamReader reader(data);
    return streamCheck(reader);
}

XmlLimits::Verdict XmlLimits::check(const QString &text)
{
    const Verdict markup = MarkupScan<QString>(text).run();
    if (markup != Within)
        return markup;
    QXmlStreamReader reader(text);
    return streamCheck(reader);
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
