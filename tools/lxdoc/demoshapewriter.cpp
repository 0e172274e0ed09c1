// SPDX-License-Identifier: MIT
#include "demoshapewriter.h"

#include "handle.h"

namespace {

struct KindNames {
    const char *element;
    const char *cls;
};

KindNames namesOf(DemoShape::Kind kind)
{
    switch (kind) {
    case DemoShape::Rect: return {"rect", "rect"};
    case DemoShape::Ellipse: return {"ellipse", "ellipse"};
    case DemoShape::Line: return {"line", "line"};
    case DemoShape::Stroke: return {"polyline", "stroke"};
    case DemoShape::Polyline: return {"polyline", "polyline"};
    case DemoShape::Drawing: return {"g", "drawing"};
    case DemoShape::Text: return {"g", "text"};
    case DemoShape::Image: return {"image", "image"};
    }
    return {"g", "group"};
}

} // namespace

bool DemoShapeWriter::write(ILXFrontPage *page, const DemoShape &shape, int gid)
{
    const KindNames names = namesOf(shape.kind);
    Handle<ILXObject> object(page->newLXObject(QString::fromLatin1(names.element)));
    if (!object)
        return false;
    object->setClass(QString::fromLatin1(names.cls));
    object->setgid(gid);
    if (shape.locked)
        object->setLocked(true);
    writeStyle(object.get(), shape);
    writeGeometry(object.get(), shape);
    return true;
}

void DemoShapeWriter::writeStyle(ILXObject *object, const DemoShape &shape)
{
    // A text keeps its colours in its frame; a picture has none.
    if (shape.kind == DemoShape::Text || shape.kind == DemoShape::Image)
        return;
    object->setStroke(shape.stroke);
    object->setStrokeWidth(shape.width);
    object->setFill(shape.fill.isValid(), shape.fill);
    if (shape.kind == DemoShape::Stroke)
        object->setStrokeLineJoin(Qt::RoundJoin);
    if (shape.kind == DemoShape::Line || shape.kind == DemoShape::Stroke || shape.kind == DemoShape::Polyline)
        object->setStrokeLineCap(shape.cap);
    if (shape.startMarker != LineCapNone)
        object->setMarkerStart(shape.startMarker);
    if (shape.endMarker != LineCapNone)
        object->setMarkerEnd(shape.endMarker);
}

void DemoShapeWriter::writeGeometry(ILXObject *object, const DemoShape &shape)
{
    QList<QPointF> points = shape.points;
    QList<float> widths = shape.widths;
    switch (shape.kind) {
    case DemoShape::Rect:
        writeRect(object, shape.box);
        break;
    case DemoShape::Ellipse:
        writeNumbers(object, {{"cx", shape.box.center().x()}, {"cy", shape.box.center().y()},
                              {"rx", shape.box.width() / 2}, {"ry", shape.box.height() / 2}});
        object->setBound(shape.box);
        break;
    case DemoShape::Line:
        writeNumbers(object, {{"x1", shape.box.left()}, {"y1", shape.box.top()},
                              {"x2", shape.box.right()}, {"y2", shape.box.bottom()}});
        break;
    case DemoShape::Stroke:
        object->setPoints(points, widths, false);
        break;
    case DemoShape::Polyline:
        object->setPoints(points, false);
        break;
    case DemoShape::Drawing:
        for (QList<QPointF> part : shape.parts)
            object->setPoints(part, true);
        break;
    case DemoShape::Text:
        writeText(object, shape);
        break;
    case DemoShape::Image:
        writeImage(object, shape);
        break;
    }
}

void DemoShapeWriter::writeNumbers(ILXObject *object, std::initializer_list<NamedNumber> numbers)
{
    for (const NamedNumber &number : numbers)
        object->setLXObjectAttribute(QString::fromLatin1(number.first), float(number.second));
}

void DemoShapeWriter::writeRect(ILXObject *object, const QRectF &box)
{
    writeNumbers(object, {{"x", box.x()}, {"y", box.y()}, {"width", box.width()}, {"height", box.height()}});
    object->setBound(box);
}

void DemoShapeWriter::writeText(ILXObject *object, const DemoShape &shape)
{
    object->setBound(shape.box);
    object->setTransform(shape.box.topLeft(), QSizeF(1, 1), 0.0f, false, false, QPointF());
    object->setSvgText(QStringLiteral("<svg><text x=\"16\" y=\"%1\" font-family=\"sans-serif\" font-size=\"28\" "
                                      "fill=\"%2\">%3</text></svg>")
                           .arg(int(shape.box.height() / 2 + 10))
                           .arg(shape.stroke.name(), shape.text.toHtmlEscaped()));
    // The board adds a frame after the text it surrounds; it is still drawn behind it.
    Qt::PenStyle style = Qt::SolidLine;
    object->setTextFrame(shape.stroke, shape.width, style, true, shape.fill);
}

void DemoShapeWriter::writeImage(ILXObject *object, const DemoShape &shape)
{
    writeRect(object, shape.box);
    // The plain SVG 2 name; the picture keeps its proportions inside the box.
    object->setLXObjectAttribute(QStringLiteral("href"), shape.text);
}
