// SPDX-License-Identifier: MIT
#include "pagesvgadapter.h"

#include "linemarkers.h"
#include "markupfilter.h"
#include "pagepicture.h"
#include "strokeends.h"
#include "svgnumbers.h"
#include "svgtree.h"

#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

const QString kSvgNamespace = QStringLiteral("http://www.w3.org/2000/svg");
const QString kXlinkNamespace = QStringLiteral("http://www.w3.org/1999/xlink");
// More lines than this is a grid measure gone wrong, not a grid.
const int kMaxGridLines = 2000;

const QStringList &strokeStyle()
{
    static const QStringList names = {QStringLiteral("stroke"), QStringLiteral("stroke-width"),
                                      QStringLiteral("stroke-opacity"), QStringLiteral("marker-start"),
                                      QStringLiteral("marker-end")};
    return names;
}

bool isNamed(const SvgNode &node, const char *name)
{
    return node.name == QLatin1String(name);
}

// The board stores a round cap as "found" and a butt cap as "flat".
QString svgLineCap(const QString &stored)
{
    if (stored == QLatin1String("found"))
        return QStringLiteral("round");
    return stored == QLatin1String("flat") ? QStringLiteral("butt") : stored;
}

QString resolvePercent(const QString &value, double reference)
{
    if (!value.endsWith(QLatin1Char('%')))
        return value;
    bool ok = false;
    const double percent = value.chopped(1).toDouble(&ok);
    return ok ? QString::number(percent * reference / 100.0) : value;
}

double number(const SvgNode &element, const char *name, const QSizeF &box, double fallback)
{
    const QString value = element.value(QLatin1String(name));
    if (value.isEmpty())
        return fallback;
    const bool horizontal = name[0] == 'x' || name[0] == 'w';
    return resolvePercent(value, horizontal ? box.width() : box.height()).toDouble();
}

// "bound" is "left,top, width,height" in the lesson's own notation.
QSizeF boundOf(const SvgNode &element, const QSizeF &fallback)
{
    const QString bound = element.value(QStringLiteral("bound"));
    const QStringList parts = bound.split(QRegularExpression(QStringLiteral("[,\\s]+")), Qt::SkipEmptyParts);
    if (parts.size() != 4 || !MarkupFilter::isSaneGeometry(bound))
        return fallback;
    return QSizeF(parts.at(2).toDouble(), parts.at(3).toDouble());
}

StrokeEnds endsOf(const SvgNode &element)
{
    if (isNamed(element, "line")) {
        const QSizeF none;
        return StrokeEnds::fromPoints({QPointF(number(element, "x1", none, 0), number(element, "y1", none, 0)),
                                       QPointF(number(element, "x2", none, 0), number(element, "y2", none, 0))});
    }
    if (isNamed(element, "polyline"))
        return StrokeEnds::fromPoints(StrokeEnds::parsePoints(element.value(QStringLiteral("points"))));
    if (isNamed(element, "path"))
        return StrokeEnds::fromPath(element.value(QStringLiteral("d")));
    return StrokeEnds();
}

// A text frame is drawn behind its text wherever the board put it.
std::vector<const SvgNode *> drawingOrder(const SvgNode &parent)
{
    std::vector<const SvgNode *> order;
    for (const SvgNode &child : parent.children)
        order.push_back(&child);
    const bool holdsText = std::any_of(order.begin(), order.end(), [](const SvgNode *n) { return isNamed(*n, "text"); });
    if (holdsText)
        std::stable_partition(order.begin(), order.end(), [](const SvgNode *n) { return isNamed(*n, "rect"); });
    return order;
}

} // namespace

PageSvgAdapter::PageSvgAdapter(const QString &lessonFolder, QSize pageSize)
    : m_folder(lessonFolder)
    , m_size(pageSize)
{
}

bool PageSvgAdapter::compose(const QByteArray &page, QByteArray *svg)
{
    SvgTree tree;
    if (!tree.parse(page)) {
        m_error = tree.error();
        return false;
    }
    QXmlStreamWriter writer(svg);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("svg"));
    writeRoot(tree.root(), writer);
    writeChildren(tree.root(), writer, Inherited{QSizeF(m_size), {}}, true);
    writer.writeEndElement();
    writer.writeEndDocument();
    return true;
}

QString PageSvgAdapter::error() const
{
    return m_error;
}

void PageSvgAdapter::writeRoot(const SvgNode &root, QXmlStreamWriter &writer) const
{
    writer.writeAttribute(QStringLiteral("xmlns"), kSvgNamespace);
    writer.writeAttribute(QStringLiteral("xmlns:xlink"), kXlinkNamespace);
    writer.writeAttribute(QStringLiteral("width"), QString::number(m_size.width()));
    writer.writeAttribute(QStringLiteral("height"), QString::number(m_size.height()));
    const QString viewBox = root.value(QStringLiteral("viewBox"));
    const bool usable = SvgNumbers::parse(viewBox).size() == 4 && MarkupFilter::isSaneGeometry(viewBox);
    writer.writeAttribute(QStringLiteral("viewBox"), usable
        ? viewBox : QStringLiteral("0 0 %1 %2").arg(m_size.width()).arg(m_size.height()));
    for (const QXmlStreamAttribute &attribute : root.attributes) {
        const QString name = attribute.qualifiedName().toString();
        const QString value = attribute.value().toString();
        if (name != QLatin1String("width") && name != QLatin1String("height") && name != QLatin1String("viewBox")
            && MarkupFilter::keepsAttribute(name, value) && MarkupFilter::isSaneGeometry(value))
            writer.writeAttribute(name, value);
    }
}

// Recursion here is bounded: SvgTree refuses deeper pages.
void PageSvgAdapter::writeChildren(const SvgNode &parent, QXmlStreamWriter &writer, const Inherited &inherited,
                                   bool isPage) const
{
    for (const SvgNode *child : drawingOrder(parent))
        writeNode(*child, writer, inherited, isPage);
}

void PageSvgAdapter::writeNode(const SvgNode &node, QXmlStreamWriter &writer, const Inherited &inherited,
                               bool isPage) const
{
    if (!node.isElement()) {
        if (MarkupFilter::keepsText(node.text))
            writer.writeCharacters(node.text);
    } else if (isPage && isNamed(node, "grid")) {
        writeGrid(node.attributes, writer);
    } else if (!MarkupFilter::isDrawable(node)) {
        return;
    } else if (isNamed(node, "image")) {
        writeImage(node, writer, inherited.box);
    } else {
        writeElement(node, writer, inherited);
    }
}

void PageSvgAdapter::writeElement(const SvgNode &element, QXmlStreamWriter &writer, const Inherited &inherited) const
{
    const Inherited own = inheritedBy(element, inherited);
    writer.writeStartElement(element.name);
    writeAttributes(element, writer, inherited.box);
    writeChildren(element, writer, own, false);
    writer.writeEndElement();
    writeMarkers(element, writer, own);
}

void PageSvgAdapter::writeAttributes(const SvgNode &element, QXmlStreamWriter &writer, const QSizeF &box) const
{
    const bool sized = isNamed(element, "rect");
    for (const QXmlStreamAttribute &attribute : element.attributes) {
        const QString name = attribute.qualifiedName().toString();
        QString value = attribute.value().toString();
        if (!MarkupFilter::keepsAttribute(name, value))
            continue;
        if (sized && name == QLatin1String("width"))
            value = resolvePercent(value, box.width());
        else if (sized && name == QLatin1String("height"))
            value = resolvePercent(value, box.height());
        else if (name == QLatin1String("stroke-linecap"))
            value = svgLineCap(value);
        writer.writeAttribute(name, value);
    }
}

void PageSvgAdapter::writeImage(const SvgNode &image, QXmlStreamWriter &writer, const QSizeF &box) const
{
    // SVG 2's plain "href" wins over "xlink:href" when both are given.
    QString href = image.value(QStringLiteral("href"));
    if (href.isEmpty())
        href = image.value(QStringLiteral("xlink:href"));
    PagePicture picture(m_folder);
    if (!picture.load(href))
        return;
    const QSizeF natural(picture.size());
    const QRectF frame(number(image, "x", box, 0), number(image, "y", box, 0),
                       number(image, "width", box, natural.width()), number(image, "height", box, natural.height()));
    if (frame.isEmpty())
        return;
    QString data;
    const QRectF placed = picture.place(frame, image.value(QStringLiteral("preserveAspectRatio")), &data);
    writer.writeStartElement(QStringLiteral("image"));
    static const QStringList placement = {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("width"),
                                          QStringLiteral("height"), QStringLiteral("preserveAspectRatio")};
    for (const QXmlStreamAttribute &attribute : image.attributes) {
        const QString name = attribute.qualifiedName().toString();
        if (!placement.contains(name) && MarkupFilter::keepsAttribute(name, attribute.value().toString()))
            writer.writeAttribute(name, attribute.value().toString());
    }
    writer.writeAttribute(QStringLiteral("x"), QString::number(placed.x()));
    writer.writeAttribute(QStringLiteral("y"), QString::number(placed.y()));
    writer.writeAttribute(QStringLiteral("width"), QString::number(placed.width()));
    writer.writeAttribute(QStringLiteral("height"), QString::number(placed.height()));
    writer.writeAttribute(QStringLiteral("preserveAspectRatio"), QStringLiteral("none"));
    writer.writeAttribute(QStringLiteral("xlink:href"), data);
    writer.writeEndElement();
}

// The decorations go right after their stroke, in its coordinates, filled
// with its colour.
void PageSvgAdapter::writeMarkers(const SvgNode &element, QXmlStreamWriter &writer, const Inherited &style) const
{
    const LineMarkers::Kind start = LineMarkers::kindOf(style.stroke.value(QStringLiteral("marker-start")));
    const LineMarkers::Kind end = LineMarkers::kindOf(style.stroke.value(QStringLiteral("marker-end")));
    const QString colour = style.stroke.value(QStringLiteral("stroke"));
    if ((start == LineMarkers::None && end == LineMarkers::None) || colour.isEmpty()
        || colour == QLatin1String("none") || !MarkupFilter::keepsAttribute(QStringLiteral("fill"), colour))
        return;
    const StrokeEnds ends = endsOf(element);
    if (!ends.isValid())
        return;
    const double width = style.stroke.value(QStringLiteral("stroke-width"), QStringLiteral("1")).toDouble();
    const QString outlines = (LineMarkers::outline(start, ends.start(), ends.startDirection(), width) + QLatin1Char(' ')
                              + LineMarkers::outline(end, ends.end(), ends.endDirection(), width)).trimmed();
    writer.writeEmptyElement(QStringLiteral("path"));
    writer.writeAttribute(QStringLiteral("d"), outlines);
    writer.writeAttribute(QStringLiteral("fill"), colour);
    writer.writeAttribute(QStringLiteral("stroke"), QStringLiteral("none"));
    const QString opacity = style.stroke.value(QStringLiteral("stroke-opacity"));
    if (!opacity.isEmpty())
        writer.writeAttribute(QStringLiteral("fill-opacity"), opacity);
    for (const char *copied : {"transform", "opacity"}) {
        const QString value = element.value(QLatin1String(copied));
        if (!value.isEmpty())
            writer.writeAttribute(QLatin1String(copied), value);
    }
}

PageSvgAdapter::Inherited PageSvgAdapter::inheritedBy(const SvgNode &element, const Inherited &parent) const
{
    Inherited own{boundOf(element, parent.box), parent.stroke};
    for (const QString &name : strokeStyle()) {
        const QString value = element.value(name);
        if (!value.isEmpty())
            own.stroke.insert(name, value);
    }
    return own;
}

void PageSvgAdapter::writeGrid(const QXmlStreamAttributes &attributes, QXmlStreamWriter &writer) const
{
    writer.writeStartElement(QStringLiteral("g"));
    writer.writeAttribute(QStringLiteral("class"), QStringLiteral("grid"));
    writer.writeAttribute(QStringLiteral("fill"), QStringLiteral("none"));
    const QString copied[][2] = {{QStringLiteral("stroke"), QStringLiteral("stroke")},
                                 {QStringLiteral("stroke-width"), QStringLiteral("stroke-width")},
                                 {QStringLiteral("stroke-dasharray"), QStringLiteral("stroke-dasharray")},
                                 {QStringLiteral("opacity"), QStringLiteral("stroke-opacity")}};
    for (const auto &pair : copied) {
        const QString value = attributes.value(pair[0]).toString();
        if (!value.isEmpty() && MarkupFilter::keepsAttribute(pair[1], value) && MarkupFilter::isSaneGeometry(value))
            writer.writeAttribute(pair[1], value);
    }
    writeGridLines(writer, true, attributes.value(QLatin1String("grid-horizontal")).toDouble());
    writeGridLines(writer, false, attributes.value(QLatin1String("grid-vertical")).toDouble());
    writer.writeEndElement();
}

void PageSvgAdapter::writeGridLines(QXmlStreamWriter &writer, bool vertical, double step) const
{
    const double length = vertical ? m_size.height() : m_size.width();
    const double extent = vertical ? m_size.width() : m_size.height();
    if (!(step > 0) || extent / step > kMaxGridLines)
        return;
    for (double at = step; at < extent; at += step) {
        writer.writeEmptyElement(QStringLiteral("line"));
        writer.writeAttribute(QStringLiteral("x1"), QString::number(vertical ? at : 0));
        writer.writeAttribute(QStringLiteral("y1"), QString::number(vertical ? 0 : at));
        writer.writeAttribute(QStringLiteral("x2"), QString::number(vertical ? at : length));
        writer.writeAttribute(QStringLiteral("y2"), QString::number(vertical ? length : at));
    }
}
