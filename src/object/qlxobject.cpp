// SPDX-License-Identifier: MIT
#include "qlxobject.h"

#include "qpropertytransfer.h"
#include "xml/numbertext.h"
#include "xml/xmlname.h"
#include "xml/xmlstream.h"

#include <QtGlobal>

namespace {

const QString kPolyline = QStringLiteral("polyline");
const QString kPoints = QStringLiteral("points");
const QString kPointsWidth = QStringLiteral("points-width");
const QString kOpacity = QStringLiteral("opacity");
const QString kText = QStringLiteral("text");

QString emptyText()
{
    return QStringLiteral("");
}

// Reads a text attribute and, when present, turns it into a value through a
// codec; absent attributes leave the output alone.
template <typename Value, typename Codec>
bool readCoded(QXmlStream *stream, const QDomNode &node, const QString &name, Value &value,
               Codec codec)
{
    QString text;
    if (!stream->getNodeAttribute(node, name, text, emptyText()))
        return false;
    return codec(text, value);
}

template <typename Value, typename Codec>
bool writeCoded(QXmlStream *stream, const QDomNode &node, const QString &name, Value value,
                Codec codec)
{
    QString text;
    if (!codec(value, text))
        return false;
    return stream->setNodeAttribute(node, name, text, true);
}

// A text attribute and the integer that belongs to it ("shortcut" and
// "shortcutarea", "soundtoken" and "soundlaunch"): the second is only touched
// when the first succeeded.
bool writePair(QXmlStream *stream, const QDomNode &node, const QString &textName,
               const QString &text, const QString &intName, int value)
{
    if (!stream->setNodeAttribute(node, textName, text, true))
        return false;
    return stream->setNodeAttribute(node, intName, value, true);
}

bool readPair(QXmlStream *stream, const QDomNode &node, const QString &textName, QString &text,
              const QString &intName, int &value)
{
    if (!stream->getNodeAttribute(node, textName, text, emptyText()))
        return false;
    return stream->getNodeAttribute(node, intName, value, 0);
}

// The n-th "polyline" child (from 0); other children do not count.
QDomNode polygonAt(QXmlStream *stream, const QDomNode &node, int index)
{
    if (index < 0)
        return QDomNode();
    int counter = -1;
    QDomNode found;
    for (QDomNode child = stream->getFirstChildNode(node);
         !stream->isNullNode(child) && counter != index; child = stream->getNextNode(child)) {
        if (stream->getNodeName(child) == kPolyline) {
            ++counter;
            found = child;
        }
    }
    return counter == index ? found : QDomNode();
}

bool readPoints(QXmlStream *stream, const QDomNode &node, QList<QPointF> &points)
{
    QString text;
    if (!stream->getNodeAttribute(node, kPoints, text, emptyText()))
        return false;
    NumberText::appendPoints(points, text);
    return true;
}

} // namespace

QLXObject::QLXObject(QXmlStream *stream, QDomNode node) : m_stream(stream), m_node(node) {}

QLXObject::~QLXObject() = default;

void QLXObject::release()
{
    m_stream = nullptr;
    delete this;
}

bool QLXObject::setClass(const QString &cls)
{
    return m_stream->setNodeAttribute(m_node, QStringLiteral("class"), cls, true);
}

bool QLXObject::getClass(QString &cls)
{
    return m_stream->getNodeAttribute(m_node, QStringLiteral("class"), cls, emptyText());
}

bool QLXObject::setgid(int gid)
{
    return m_stream->setNodeAttribute(m_node, QStringLiteral("gid"), gid, true);
}

bool QLXObject::getgid(int &gid)
{
    return m_stream->getNodeAttribute(m_node, QStringLiteral("gid"), gid, 0);
}

// The stroke's alpha goes into the object's "opacity"; an opaque stroke leaves
// any former opacity alone.
bool QLXObject::setStroke(const QColor &color)
{
    const float alpha = float(color.alphaF());
    if (!m_stream->setNodeAttribute(m_node, QStringLiteral("stroke"), color.name(), true))
        return false;
    if (alpha != 1.0f)
        m_stream->setNodeAttribute(m_node, kOpacity, alpha, true);
    return true;
}

// "opacity" belongs to the whole object, so it is not applied to the stroke
// colour: a stroke read back is always opaque.
bool QLXObject::getStroke(QColor &color)
{
    QString text;
    if (!m_stream->getNodeAttribute(m_node, QStringLiteral("stroke"), text, emptyText()))
        return false;
    color = QColor(text);
    float opacity = 0.0f;
    if (m_stream->getNodeAttribute(m_node, kOpacity, opacity, 0.0f))
        color.setAlphaF(1.0f);
    return true;
}

bool QLXObject::setStrokeWidth(float width)
{
    return m_stream->setNodeAttribute(m_node, QStringLiteral("stroke-width"), width, true);
}

bool QLXObject::getStrokeWidth(float &width)
{
    return m_stream->getNodeAttribute(m_node, QStringLiteral("stroke-width"), width, 0.0f);
}

bool QLXObject::setStrokeLineJoin(Qt::PenJoinStyle join)
{
    return writeCoded(m_stream, m_node, QStringLiteral("stroke-linejoin"), join,
                      QPropertyTransfer::penJoinQt2Svg);
}

bool QLXObject::getStrokeLineJoin(Qt::PenJoinStyle &join)
{
    return readCoded(m_stream, m_node, QStringLiteral("stroke-linejoin"), join,
                     QPropertyTransfer::penJoinSvg2Qt);
}

bool QLXObject::setStrokeLineCap(Qt::PenCapStyle cap)
{
    return writeCoded(m_stream, m_node, QStringLiteral("stroke-linecap"), cap,
                      QPropertyTransfer::penCapQt2Svg);
}

bool QLXObject::getStrokeLineCap(Qt::PenCapStyle &cap)
{
    return readCoded(m_stream, m_node, QStringLiteral("stroke-linecap"), cap,
                     QPropertyTransfer::penCapSvg2Qt);
}

// The dash pattern is in whole pen widths; a solid line still writes the
// attribute, empty, so a former pattern does not survive.
bool QLXObject::setStrokeDashArray(Qt::PenStyle style, float width)
{
    QString text;
    if (!QPropertyTransfer::dashQt2Svg(style, NumberText::saturatedInt(width), text))
        return false;
    return m_stream->setNodeAttribute(m_node, QStringLiteral("stroke-dasharray"), text, true);
}

bool QLXObject::getStrokeDashArray(Qt::PenStyle &style)
{
    return readCoded(m_stream, m_node, QStringLiteral("stroke-dasharray"), style,
                     QPropertyTransfer::dashSvg2Qt);
}

bool QLXObject::setMarkerStart(LineCapStyle marker)
{
    return writeCoded(m_stream, m_node, QStringLiteral("marker-start"), marker,
                      QPropertyTransfer::lineCapQt2Svg);
}

bool QLXObject::getMarkerStart(LineCapStyle &marker)
{
    return readCoded(m_stream, m_node, QStringLiteral("marker-start"), marker,
                     QPropertyTransfer::lineCapSvg2Qt);
}

bool QLXObject::setMarkerEnd(LineCapStyle marker)
{
    return writeCoded(m_stream, m_node, QStringLiteral("marker-end"), marker,
                      QPropertyTransfer::lineCapQt2Svg);
}

bool QLXObject::getMarkerEnd(LineCapStyle &marker)
{
    return readCoded(m_stream, m_node, QStringLiteral("marker-end"), marker,
                     QPropertyTransfer::lineCapSvg2Qt);
}

// Unlike the stroke, the fill's alpha is not stored: the fill shows through
// the object's "opacity" when read back.
bool QLXObject::setFill(bool filled, QColor color)
{
    const QString text = filled ? color.name() : QStringLiteral("none");
    return m_stream->setNodeAttribute(m_node, QStringLiteral("fill"), text, true);
}

bool QLXObject::getFill(bool &filled, QColor &color)
{
    QString text;
    if (!m_stream->getNodeAttribute(m_node, QStringLiteral("fill"), text, emptyText()))
        return false;
    if (text == QLatin1String("none")) {
        filled = false;
        return true;
    }
    color = QColor(text);
    float opacity = 0.0f;
    if (m_stream->getNodeAttribute(m_node, kOpacity, opacity, 0.0f))
        color.setAlphaF(NumberText::unitFraction(opacity));
    filled = true;
    return true;
}

bool QLXObject::setOpacity(float opacity)
{
    return m_stream->setNodeAttribute(m_node, kOpacity, opacity, true);
}

bool QLXObject::getOpacity(float &opacity)
{
    return m_stream->getNodeAttribute(m_node, kOpacity, opacity, 0.0f);
}

bool QLXObject::setShortcut(const QString &target, int area)
{
    return writePair(m_stream, m_node, QStringLiteral("shortcut"), target,
                     QStringLiteral("shortcutarea"), area);
}

bool QLXObject::getShortcut(QString &target, int &area)
{
    return readPair(m_stream, m_node, QStringLiteral("shortcut"), target,
                    QStringLiteral("shortcutarea"), area);
}

bool QLXObject::setSoundToken(const QString &token, int launch)
{
    return writePair(m_stream, m_node, QStringLiteral("soundtoken"), token,
                     QStringLiteral("soundlaunch"), launch);
}

bool QLXObject::getSoundToken(QString &token, int &launch)
{
    return readPair(m_stream, m_node, QStringLiteral("soundtoken"), token,
                    QStringLiteral("soundlaunch"), launch);
}

bool QLXObject::setTransform(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV,
                             QPointF centre)
{
    QString text;
    if (!QPropertyTransfer::transformQt2Svg(pos, scale, angle, flipH, flipV, centre, text))
        return false;
    return m_stream->setNodeAttribute(m_node, QStringLiteral("transform"), text, true);
}

bool QLXObject::getTransform(QPointF &pos, QSizeF &scale, float &angle, bool &flipH, bool &flipV)
{
    QString text;
    if (!m_stream->getNodeAttribute(m_node, QStringLiteral("transform"), text, emptyText()))
        return false;
    return QPropertyTransfer::transformSvg2Qt(text, pos, scale, angle, flipH, flipV);
}

bool QLXObject::setScaleRule(int rule)
{
    return m_stream->setNodeAttribute(m_node, QStringLiteral("zoom-rule"), rule, true);
}

bool QLXObject::getScaleRule(int &rule)
{
    return m_stream->getNodeAttribute(m_node, QStringLiteral("zoom-rule"), rule, 0);
}

bool QLXObject::setLocked(bool locked)
{
    return m_stream->setNodeAttribute(m_node, QStringLiteral("locked"), locked ? 1 : 0, true);
}

// Only 1 means locked; any other number a host may have left reads as unlocked.
bool QLXObject::getLocked(bool &locked)
{
    int value = 0;
    if (!m_stream->getNodeAttribute(m_node, QStringLiteral("locked"), value, 0))
        return false;
    locked = value == 1;
    return true;
}

// An empty list writes nothing: an empty "points" would read back as one
// point at the origin.
bool QLXObject::setPoints(QList<QPointF> &points, bool asPolygon)
{
    if (points.isEmpty())
        return false;
    const QDomNode target =
        asPolygon ? m_stream->newChildNode(m_node, kPolyline, QString()) : m_node;
    return m_stream->setNodeAttribute(target, kPoints, NumberText::pointsText(points), true);
}

// A polygon's own "polyline" child is preferred, so an object drawn in parts
// reads as its first part.
bool QLXObject::getPoints(QList<QPointF> &points)
{
    QDomNode source = m_stream->getChildNode(m_node, kPolyline);
    if (m_stream->isNullNode(source))
        source = m_node;
    return readPoints(m_stream, source, points);
}

int QLXObject::getPolygonCount()
{
    int count = 0;
    for (QDomNode child = m_stream->getFirstChildNode(m_node); !m_stream->isNullNode(child);
         child = m_stream->getNextNode(child)) {
        if (m_stream->getNodeName(child) == kPolyline)
            ++count;
    }
    return count;
}

bool QLXObject::getPolygonPoints(int index, QList<QPointF> &points)
{
    const QDomNode polygon = polygonAt(m_stream, m_node, index);
    if (m_stream->isNullNode(polygon))
        return false;
    return readPoints(m_stream, polygon, points);
}

// Points and widths are each written whole; they need not be of one length.
bool QLXObject::setPoints(QList<QPointF> &points, QList<float> &widths, bool asPolygon)
{
    if (points.isEmpty())
        return false;
    const QDomNode target =
        asPolygon ? m_stream->newChildNode(m_node, kPolyline, QString()) : m_node;
    if (!m_stream->setNodeAttribute(target, kPoints, NumberText::pointsText(points), true))
        return false;
    return m_stream->setNodeAttribute(target, kPointsWidth, NumberText::floatsText(widths), true);
}

bool QLXObject::getPolygonPoints(int index, QList<QPointF> &points, QList<float> &widths)
{
    const QDomNode polygon = polygonAt(m_stream, m_node, index);
    if (m_stream->isNullNode(polygon) || !readPoints(m_stream, polygon, points))
        return false;
    QString text;
    if (!m_stream->getNodeAttribute(polygon, kPointsWidth, text, emptyText()))
        return false;
    NumberText::appendFloats(widths, text);
    return true;
}

// The frame fills the text object whatever its size, hence "100%".
bool QLXObject::setTextFrame(QColor stroke, float width, Qt::PenStyle &style, bool filled,
                             QColor fill)
{
    if (!m_stream || m_node.isNull())
        return false;
    const QDomNode rect = m_stream->newChildNode(m_node, QStringLiteral("rect"), QString());
    if (m_stream->isNullNode(rect))
        return false;
    const QString full = QStringLiteral("100%");
    m_stream->setNodeAttribute(rect, QStringLiteral("width"), full, true);
    m_stream->setNodeAttribute(rect, QStringLiteral("height"), full, true);
    m_stream->setNodeAttribute(rect, QStringLiteral("stroke"), stroke.name(), true);
    m_stream->setNodeAttribute(rect, QStringLiteral("stroke-width"), width, true);
    if (style != Qt::SolidLine) {
        QString dash;
        QPropertyTransfer::dashQt2Svg(style, NumberText::saturatedInt(width), dash);
        m_stream->setNodeAttribute(rect, QStringLiteral("stroke-dasharray"), dash, true);
    }
    if (filled)
        m_stream->setNodeAttribute(rect, QStringLiteral("fill"), fill.name(), true);
    return true;
}

// The blank after the second comma is part of the format.
bool QLXObject::setBound(QRectF rect)
{
    const QString text = QString::asprintf("%.2f,%.2f, %.2f,%.2f", rect.left(), rect.top(),
                                           rect.width(), rect.height());
    return m_stream->setNodeAttribute(m_node, QStringLiteral("bound"), text, true);
}

// Always true: an object without "bound" has an empty one, and callers rely
// on that instead of checking.
bool QLXObject::getBound(QRectF &rect)
{
    QString text;
    if (!m_stream->getNodeAttribute(m_node, QStringLiteral("bound"), text, emptyText())) {
        rect = QRectF(0, 0, 0, 0);
        return true;
    }
    const QChar blank(QLatin1Char(' '));
    const QChar comma(QLatin1Char(','));
    const QString origin = text.section(blank, 0, 0);
    const QString size = text.section(blank, 1, 1);
    rect.setLeft(NumberText::toFloat(origin.section(comma, 0, 0)));
    rect.setTop(NumberText::toFloat(origin.section(comma, 1, 1)));
    rect.setWidth(NumberText::toFloat(size.section(comma, 0, 0)));
    rect.setHeight(NumberText::toFloat(size.section(comma, 1, 1)));
    return true;
}

// The text element is moved, not copied: the page's tree takes the very node
// of the temporary document.
bool QLXObject::setSvgText(const QString &text)
{
    if (text.isEmpty())
        return false;
    QXmlStream temporary;
    if (!temporary.loadFromXmlStream(text)) {
        qWarning("setSvgText: loadFromXmlStream failed!");
        return false;
    }
    const QDomNode textNode = temporary.getChildNode(temporary.getRootNode(), kText);
    if (temporary.isNullNode(textNode)) {
        qWarning("setSvgText: get text node failed!");
        return false;
    }
    if (!XmlName::isNamedTree(textNode))
        return false;
    m_node.appendChild(textNode);
    temporary.closeFile(false);
    return true;
}

// The text is handed out, not copied: afterwards the page no longer holds it,
// and a host that keeps editing it writes it back with setSvgText.
bool QLXObject::getSvgText(QString &text)
{
    QXmlStream temporary;
    if (!temporary.createXmlStream(QStringLiteral("svg"))) {
        qWarning("getSvgText: createXmlStream failed!");
        return false;
    }
    const QDomNode textNode = m_stream->getChildNode(m_node, kText);
    if (m_stream->isNullNode(textNode)) {
        qWarning("getSvgText: get text node failed!");
        return false;
    }
    QDomNode root = temporary.getRootNode();
    if (root.isNull())
        return false;
    root.appendChild(textNode);
    text = temporary.getXmlStream();
    temporary.closeFile(false);
    return true;
}

ILXObject *QLXObject::newLXObject(const QString &name)
{
    if (!m_stream || m_node.isNull())
        return nullptr;
    const QDomNode child = m_stream->newChildNode(m_node, name, QString());
    return m_stream->isNullNode(child) ? nullptr : new QLXObject(m_stream, child);
}

ILXObject *QLXObject::getLXObject(const QString &name)
{
    if (!m_stream || m_node.isNull())
        return nullptr;
    const QDomNode child = m_stream->getChildNodeByNodename(m_node, name);
    return m_stream->isNullNode(child) ? nullptr : new QLXObject(m_stream, child);
}

ILXObject *QLXObject::getFirstLXObject()
{
    if (!m_stream || m_node.isNull())
        return nullptr;
    m_child = m_stream->getFirstChildNode(m_node);
    return m_stream->isNullNode(m_child) ? nullptr : new QLXObject(m_stream, m_child);
}

ILXObject *QLXObject::getNextLXObject()
{
    if (!m_stream || m_child.isNull())
        return nullptr;
    m_child = m_stream->getNextNode(m_child);
    return m_stream->isNullNode(m_child) ? nullptr : new QLXObject(m_stream, m_child);
}

bool QLXObject::setLXObjectAttribute(const QString &name, int value)
{
    return m_stream->setNodeAttribute(m_node, name, value, true);
}

bool QLXObject::setLXObjectAttribute(const QString &name, float value)
{
    return m_stream->setNodeAttribute(m_node, name, value, true);
}

bool QLXObject::setLXObjectAttribute(const QString &name, const QString &value)
{
    return m_stream->setNodeAttribute(m_node, name, value, true);
}

bool QLXObject::getLXObjectAttribute(const QString &name, int &value)
{
    return m_stream->getNodeAttribute(m_node, name, value, 0);
}

bool QLXObject::getLXObjectAttribute(const QString &name, float &value)
{
    return m_stream->getNodeAttribute(m_node, name, value, 0.0f);
}

bool QLXObject::getLXObjectAttribute(const QString &name, QString &value)
{
    return m_stream->getNodeAttribute(m_node, name, value, emptyText());
}

bool QLXObject::getBeelinePoints(QList<QPointF> &points)
{
    const auto read = [this](const char *name) {
        float value = 0.0f;
        m_stream->getNodeAttribute(m_node, QLatin1String(name), value, 0.0f);
        return qreal(value);
    };
    points.append(QPointF(read("x1"), read("y1")));
    points.append(QPointF(read("x2"), read("y2")));
    return true;
}
