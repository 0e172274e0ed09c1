// SPDX-License-Identifier: MIT
#include "qpropertytransfer.h"

#include "xml/numbertext.h"

#include <QStringList>
#include <QStringView>

#include <cstddef>

namespace {

template <typename Enum>
struct NamedValue {
    Enum value;
    const char *text;
};

const NamedValue<LineCapStyle> kMarkers[] = {
    {LineCapArrow, "ArrowAnchor"},
    {LineCapSquare, "SquareAnchor"},
    {LineCapRound, "RoundAnchor"},
    {LineCapDiamond, "DiamondAnchor"},
};

// Searched in this order; the first exact match wins.
const NamedValue<PageFormat> kPageFormats[] = {
    {PageFormatLzn, "lzn"},
    {PageFormatDoc, "doc"},
    {PageFormatPpt, "ppt"},
    {PageFormatExcel, "excel"},
    {PageFormatPdf, "pdf"},
};

template <typename Enum, std::size_t N>
const char *textOf(const NamedValue<Enum> (&table)[N], Enum value)
{
    for (const auto &entry : table) {
        if (entry.value == value)
            return entry.text;
    }
    return nullptr;
}

template <typename Enum, std::size_t N>
bool valueOf(const NamedValue<Enum> (&table)[N], const QString &text, Enum &value)
{
    for (const auto &entry : table) {
        if (text == QLatin1String(entry.text)) {
            value = entry.value;
            return true;
        }
    }
    return false;
}

// QString::indexOf treats a negative start as counted from the end (-1 is the
// last character). The placement reader keeps searching after a miss with the
// cursor at -1, so a later keyword is only looked for in the last character and
// is never found: the parse stops at the first missing keyword. That rule is
// written out here instead of being left to indexOf.
int findFrom(const QString &text, const QString &key, int from)
{
    if (from < 0)
        from = qMax(from + int(text.size()), 0);
    return int(text.indexOf(key, from));
}

// The number in [from, to); a missing end (to < 0) runs to the end of the text.
float numberBetween(const QString &text, int from, int to)
{
    const int size = int(text.size());
    const int begin = qBound(0, from, size);
    const int end = to < 0 ? size : qBound(begin, to, size);
    return NumberText::toFloat(QStringView(text).mid(begin, end - begin));
}

// Steps past "keyword(" whatever the bracket is; -1 when the keyword is missing.
int skipKeyword(const QString &text, const QString &keyword, int from)
{
    const int at = findFrom(text, keyword, from);
    return at < 0 ? at : at + int(keyword.size()) + 1;
}

} // namespace

bool QPropertyTransfer::penJoinQt2Svg(Qt::PenJoinStyle join, QString &text)
{
    switch (join) {
    case Qt::MiterJoin:
        text = QStringLiteral("miter");
        break;
    case Qt::BevelJoin:
        text = QStringLiteral("bevel");
        break;
    default:
        text = QStringLiteral("round");
        break;
    }
    return true;
}

bool QPropertyTransfer::penJoinSvg2Qt(const QString &text, Qt::PenJoinStyle &join)
{
    if (text == QLatin1String("miter"))
        join = Qt::MiterJoin;
    else if (text == QLatin1String("bevel"))
        join = Qt::BevelJoin;
    else
        join = Qt::RoundJoin;
    return true;
}

// A round cap has always been stored as "found"; files in the field carry it,
// and reading maps it back to RoundCap through the default branch.
bool QPropertyTransfer::penCapQt2Svg(Qt::PenCapStyle cap, QString &text)
{
    switch (cap) {
    case Qt::FlatCap:
        text = QStringLiteral("flat");
        break;
    case Qt::SquareCap:
        text = QStringLiteral("square");
        break;
    default:
        text = QStringLiteral("found");
        break;
    }
    return true;
}

bool QPropertyTransfer::penCapSvg2Qt(const QString &text, Qt::PenCapStyle &cap)
{
    if (text == QLatin1String("flat"))
        cap = Qt::FlatCap;
    else if (text == QLatin1String("square"))
        cap = Qt::SquareCap;
    else
        cap = Qt::RoundCap;
    return true;
}

// "Round" is written for no marker and reads back as none only because every
// unknown marker name does.
bool QPropertyTransfer::lineCapQt2Svg(LineCapStyle cap, QString &text)
{
    const char *name = textOf(kMarkers, cap);
    text = QLatin1String(name ? name : "Round");
    return true;
}

bool QPropertyTransfer::lineCapSvg2Qt(const QString &text, LineCapStyle &cap)
{
    if (!valueOf(kMarkers, text, cap))
        cap = LineCapNone;
    return true;
}

// A page without a format stores a one-character text holding U+0000, not the
// empty text; existing pages carry that value, so it is kept.
bool QPropertyTransfer::formatID2PageFormat(PageFormat format, QString &text)
{
    const char *id = textOf(kPageFormats, format);
    text = id ? QString(QLatin1String(id)) : QString(QChar(0));
    return true;
}

bool QPropertyTransfer::pageFormat2FormatID(const QString &text, PageFormat &format)
{
    format = PageFormatNone;
    valueOf(kPageFormats, text, format);
    return format != PageFormatNone;
}

// Dashes are three pen widths long and every gap and dot is one width.
bool QPropertyTransfer::dashQt2Svg(Qt::PenStyle style, int width, QString &text)
{
    const int w = width;
    // In double, where three times any int is exact, then held to the int range.
    const int dash = NumberText::saturatedInt(3.0 * w);
    switch (style) {
    case Qt::DashLine:
        text = QString::asprintf("%d,%d", dash, w);
        break;
    case Qt::DotLine:
        text = QString::asprintf("%d,%d", w, w);
        break;
    case Qt::DashDotLine:
        text = QString::asprintf("%d,%d,%d,%d", dash, w, w, w);
        break;
    case Qt::DashDotDotLine:
        text = QString::asprintf("%d,%d,%d,%d,%d,%d", dash, w, w, w, w, w);
        break;
    default:
        text = QString();
        break;
    }
    return true;
}

// Only the first and last numbers decide; the middle ones are never checked.
bool QPropertyTransfer::dashSvg2Qt(const QString &text, Qt::PenStyle &style)
{
    const QStringList parts = text.split(QLatin1Char(','));
    const int first = NumberText::toInt(parts.first());
    const int last = NumberText::toInt(parts.last());
    // In 64 bits: a hostile file may hold any int, and three times it must not overflow.
    const bool dashed = qint64(last) * 3 == first;
    switch (parts.size()) {
    case 2:
        // Equality is tested first, so "0,0" is dotted, not dashed.
        style = first == last ? Qt::DotLine : (dashed ? Qt::DashLine : Qt::SolidLine);
        break;
    case 4:
        style = dashed ? Qt::DashDotLine : Qt::SolidLine;
        break;
    case 6:
        style = dashed ? Qt::DashDotDotLine : Qt::SolidLine;
        break;
    default:
        style = Qt::SolidLine;
        break;
    }
    return true;
}

// A flip is stored as a negative scale factor; the centre is written three
// times so that other readers can rotate and scale about it.
bool QPropertyTransfer::transformQt2Svg(QPointF pos, QSizeF scale, float angle, bool flipH,
                                        bool flipV, QPointF centre, QString &text)
{
    const double sH = flipH ? -1.0 : 1.0;
    const double sV = flipV ? -1.0 : 1.0;
    text = QString::asprintf(
        "translate(%.2f,%.2f)translate(%0.2f,%0.2f)scale(%0.2f,%0.2f)translate(%0.2f,%0.2f)"
        "rotate(%0.2f,%0.2f,%0.2f)",
        pos.x(), pos.y(), centre.x(), centre.y(), scale.width() * sH, scale.height() * sV,
        -centre.x(), -centre.y(), double(angle), centre.x(), centre.y());
    return true;
}

// Reads only the first translate, the scale and the angle: the centre is not
// needed to place the object again. Outputs of a missing piece stay as they
// were, and the flips are only ever raised.
bool QPropertyTransfer::transformSvg2Qt(const QString &text, QPointF &pos, QSizeF &scale,
                                        float &angle, bool &flipH, bool &flipV)
{
    const QString comma = QStringLiteral(",");
    const QString close = QStringLiteral(")");

    int p = skipKeyword(text, QStringLiteral("translate"), 0);
    if (p >= 0) {
        int c = findFrom(text, comma, p);
        pos.setX(numberBetween(text, p, c));
        p = c + 1;
        c = findFrom(text, close, p);
        pos.setY(numberBetween(text, p, c));
    }

    p = skipKeyword(text, QStringLiteral("scale"), p);
    if (p >= 0) {
        int c = findFrom(text, comma, p);
        scale.setWidth(numberBetween(text, p, c));
        p = c + 1;
        c = findFrom(text, close, p);
        scale.setHeight(numberBetween(text, p, c));
        if (scale.width() < 0) {
            flipH = true;
            scale.setWidth(-scale.width());
        }
        if (scale.height() < 0) {
            flipV = true;
            scale.setHeight(-scale.height());
        }
    }

    p = skipKeyword(text, QStringLiteral("rotate"), p);
    if (p >= 0)
        angle = numberBetween(text, p, findFrom(text, comma, p));
    return true;
}
