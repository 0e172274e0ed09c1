// SPDX-License-Identifier: MIT
#include "objectdescriber.h"

#include "handle.h"
#include "jsonnumber.h"

#include <QJsonArray>
#include <QXmlStreamReader>

namespace {

// Attributes shown as they are stored, as text: a length may be "100%", so
// a number here would make the same field sometimes a number, sometimes not.
const char *const kPlainAttributes[] = {"x", "y", "width", "height", "cx", "cy", "rx", "ry",
                                        "x1", "y1", "x2", "y2", "xlink:href", "stroke-dasharray",
                                        "stroke-linejoin", "marker-start", "marker-end"};

QJsonObject placement(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV)
{
    QJsonObject result;
    result.insert(QStringLiteral("x"), JsonNumber::shortest(pos.x()));
    result.insert(QStringLiteral("y"), JsonNumber::shortest(pos.y()));
    result.insert(QStringLiteral("scale-x"), JsonNumber::shortest(scale.width()));
    result.insert(QStringLiteral("scale-y"), JsonNumber::shortest(scale.height()));
    result.insert(QStringLiteral("angle"), JsonNumber::shortest(angle));
    if (flipH)
        result.insert(QStringLiteral("flip-h"), true);
    if (flipV)
        result.insert(QStringLiteral("flip-v"), true);
    return result;
}

QString textContent(const QString &svg)
{
    QXmlStreamReader reader(svg);
    QString text;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::Characters)
            text += reader.text().toString();
    }
    return text.simplified();
}

template <typename T>
bool readTransform(T *item, QJsonObject &node)
{
    QPointF pos;
    QSizeF scale;
    float angle = 0;
    bool flipH = false;
    bool flipV = false;
    if (!item->getTransform(pos, scale, angle, flipH, flipV))
        return false;
    node.insert(QStringLiteral("transform"), placement(pos, scale, angle, flipH, flipV));
    return true;
}

} // namespace

QJsonObject ObjectDescriber::object(ILXObject *object)
{
    QJsonObject node;
    QString cls;
    if (object->getClass(cls))
        node.insert(QStringLiteral("class"), cls);
    int gid = 0;
    if (object->getgid(gid))
        node.insert(QStringLiteral("gid"), gid);
    addStyle(node, object);
    addPlainAttributes(node, object);
    addGeometry(node, object);
    addText(node, object);
    addChildren(node, object);
    return node;
}

QJsonObject ObjectDescriber::command(ILXCmd *command)
{
    QJsonObject node;
    QString cls;
    if (command->getClass(cls))
        node.insert(QStringLiteral("class"), cls);
    int time = 0;
    if (command->getLXCmdAttribute(QStringLiteral("time"), time))
        node.insert(QStringLiteral("time"), time);
    addCommandLists(node, command);
    readTransform(command, node);
    addSteps(node, command);
    return node;
}

void ObjectDescriber::addStyle(QJsonObject &node, ILXObject *object)
{
    QColor color;
    if (object->getStroke(color))
        node.insert(QStringLiteral("stroke"), color.name());
    float number = 0;
    if (object->getStrokeWidth(number))
        node.insert(QStringLiteral("stroke-width"), JsonNumber::shortest(number));
    bool filled = false;
    if (object->getFill(filled, color))
        node.insert(QStringLiteral("fill"), filled ? color.name() : QStringLiteral("none"));
    if (object->getOpacity(number))
        node.insert(QStringLiteral("opacity"), JsonNumber::shortest(number));
    bool locked = false;
    if (object->getLocked(locked) && locked)
        node.insert(QStringLiteral("locked"), true);
}

void ObjectDescriber::addPlainAttributes(QJsonObject &node, ILXObject *object)
{
    for (const char *name : kPlainAttributes) {
        QString text;
        if (object->getLXObjectAttribute(QString::fromLatin1(name), text))
            node.insert(QString::fromLatin1(name), text);
    }
}

void ObjectDescriber::addGeometry(QJsonObject &node, ILXObject *object)
{
    QString text;
    QRectF bound;
    // getBound reports success even without a bound, so ask for the text first.
    if (object->getLXObjectAttribute(QStringLiteral("bound"), text) && object->getBound(bound))
        node.insert(QStringLiteral("bound"), QJsonArray{JsonNumber::shortest(bound.x()), JsonNumber::shortest(bound.y()),
                                                                  JsonNumber::shortest(bound.width()), JsonNumber::shortest(bound.height())});
    const int polygons = object->getPolygonCount();
    if (polygons > 0)
        node.insert(QStringLiteral("polygons"), polygons);
    QList<QPointF> points;
    if (polygons == 0 && object->getPoints(points))
        node.insert(QStringLiteral("points"), int(points.size()));
    if (object->getLXObjectAttribute(QStringLiteral("points-width"), text))
        node.insert(QStringLiteral("widths"), int(text.split(QLatin1Char(',')).size()));
    readTransform(object, node);
}

void ObjectDescriber::addText(QJsonObject &node, ILXObject *object)
{
    QString svg;
    if (object->getSvgText(svg))
        node.insert(QStringLiteral("text"), textContent(svg));
}

void ObjectDescriber::addChildren(QJsonObject &node, ILXObject *object)
{
    QJsonArray children;
    for (Handle<ILXObject> child(object->getFirstLXObject()); child; child.reset(object->getNextLXObject()))
        children.append(ObjectDescriber::object(child.get()));
    if (!children.isEmpty())
        node.insert(QStringLiteral("children"), children);
}

void ObjectDescriber::addCommandLists(QJsonObject &node, ILXCmd *command)
{
    QList<int> gids;
    if (command->getListGraphicsId(gids)) {
        QJsonArray array;
        for (int gid : gids)
            array.append(gid);
        node.insert(QStringLiteral("gids"), array);
    }
    QList<QPointF> points;
    if (command->getPointFList(QStringLiteral("points"), points))
        node.insert(QStringLiteral("points"), int(points.size()));
}

void ObjectDescriber::addSteps(QJsonObject &node, ILXCmd *command)
{
    QJsonArray steps;
    for (Handle<ILXCmd> step(command->getFirstLXCmd()); step; step.reset(command->getNextLXCmd()))
        steps.append(ObjectDescriber::command(step.get()));
    if (!steps.isEmpty())
        node.insert(QStringLiteral("steps"), steps);
}
