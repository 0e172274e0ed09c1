// SPDX-License-Identifier: MIT
#include "democontent.h"

#include <QImage>
#include <QPainter>

#include <cmath>

namespace {

QList<QPointF> wave(const QPointF &start, int count, double step, double amplitude)
{
    QList<QPointF> points;
    for (int i = 0; i < count; ++i)
        points << QPointF(start.x() + i * step, start.y() + amplitude * std::sin(i * 0.45));
    return points;
}

QList<float> pressure(int count)
{
    QList<float> widths;
    for (int i = 0; i < count; ++i)
        widths << float(2.0 + 6.0 * std::sin(3.14159 * i / (count - 1)));
    return widths;
}

QList<QPointF> square(const QPointF &origin, double side)
{
    return {origin, origin + QPointF(side, 0), origin + QPointF(side, side), origin + QPointF(0, side), origin};
}

} // namespace

QList<DemoPageModel> DemoContent::pages(const QString &pictureName)
{
    return {shapesPage(pictureName), freehandPage(), picturePage(pictureName)};
}

bool DemoContent::writePicture(const QString &path)
{
    QImage picture(160, 120, QImage::Format_RGB32);
    picture.fill(QColor(0x90, 0xca, 0xf9));
    QPainter painter(&picture);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xfd, 0xd8, 0x35));
    painter.drawEllipse(QRectF(108, 14, 34, 34));
    painter.setBrush(QColor(0x43, 0xa0, 0x47));
    painter.drawRect(QRectF(0, 80, 160, 40));
    painter.end();
    return picture.save(path, "PNG");
}

DemoPageModel DemoContent::shapesPage(const QString &pictureName)
{
    DemoPageModel page;
    page.id = 1;
    page.title = QStringLiteral("Shapes and text");
    page.size = QSize(800, 600);
    page.background = QColor(0xff, 0xf8, 0xe1);
    page.grid = grid(40, QColor(0xb0, 0xbe, 0xc5), Qt::SolidLine);
    DemoShape arrow = shape(DemoShape::Line, QRectF(QPointF(80, 320), QPointF(680, 320)), QColor(0xe5, 0x39, 0x35), QColor(), 6);
    arrow.endMarker = LineCapArrow;
    page.shapes << shape(DemoShape::Rect, QRectF(80, 80, 240, 140), QColor(0x0d, 0x47, 0xa1), QColor(0x1e, 0x88, 0xe5), 4)
                << shape(DemoShape::Ellipse, QRectF(420, 90, 260, 160), QColor(0x1b, 0x5e, 0x20), QColor(0x66, 0xbb, 0x6a), 3)
                << arrow;
    DemoShape text = shape(DemoShape::Text, QRectF(80, 380, 440, 110), QColor(0x6a, 0x1b, 0x9a), QColor(0xf3, 0xe5, 0xf5), 2);
    text.text = QStringLiteral("Shapes, lines and text");
    page.shapes << text << lineEnds();
    DemoShape picture = shape(DemoShape::Image, QRectF(80, 505, 440, 80), QColor(), QColor(), 0);
    picture.text = pictureName;
    page.shapes << picture;
    page.commands = recording(page.shapes);
    return page;
}

QList<DemoShape> DemoContent::lineEnds()
{
    QList<DemoShape> lines;
    const QColor ink(0x4e, 0x34, 0x2e);
    const Qt::PenCapStyle caps[] = {Qt::RoundCap, Qt::FlatCap, Qt::SquareCap};
    for (int i = 0; i < 3; ++i) {
        DemoShape line = shape(DemoShape::Line, QRectF(QPointF(590, 380 + 36 * i), QPointF(720, 380 + 36 * i)), ink, QColor(), 16);
        line.cap = caps[i];
        lines << line;
    }
    DemoShape zigzag = shape(DemoShape::Polyline, QRectF(), QColor(0xef, 0x6c, 0x00), QColor(), 5);
    zigzag.points = {{590, 560}, {630, 510}, {670, 560}, {710, 510}};
    zigzag.startMarker = LineCapSquare;
    zigzag.endMarker = LineCapRound;
    return lines << zigzag;
}

DemoPageModel DemoContent::freehandPage()
{
    DemoPageModel page;
    page.id = 2;
    page.title = QStringLiteral("Free-hand");
    page.size = QSize(800, 600);
    page.background = QColor(Qt::white);
    page.grid = grid(32, QColor(0xcf, 0xd8, 0xdc), Qt::DotLine);
    DemoShape first = shape(DemoShape::Stroke, QRectF(), QColor(0x39, 0x49, 0xab), QColor(), 5);
    first.points = wave(QPointF(80, 150), 25, 24, 50);
    first.widths = pressure(int(first.points.size()));
    DemoShape second = shape(DemoShape::Stroke, QRectF(), QColor(0xfb, 0x8c, 0x00), QColor(), 4);
    second.points = wave(QPointF(80, 330), 25, 24, -35);
    second.widths = pressure(int(second.points.size()));
    DemoShape zigzag = shape(DemoShape::Polyline, QRectF(), QColor(0x00, 0x89, 0x7b), QColor(), 3);
    zigzag.points = {{80, 480}, {160, 420}, {240, 480}, {320, 420}, {400, 480}};
    DemoShape drawing = shape(DemoShape::Drawing, QRectF(), QColor(0x8e, 0x24, 0xaa), QColor(), 3);
    drawing.parts = {square(QPointF(500, 410), 90), square(QPointF(620, 430), 60)};
    page.shapes << first << second << zigzag << drawing;
    page.commands = recording(page.shapes);
    return page;
}

DemoPageModel DemoContent::picturePage(const QString &pictureName)
{
    DemoPageModel page;
    page.id = 3;
    page.title = QStringLiteral("Picture");
    page.size = QSize(1024, 768);
    page.background = QColor(0xec, 0xef, 0xf1);
    page.grid.visible = false;
    DemoShape picture = shape(DemoShape::Image, QRectF(312, 184, 400, 300), QColor(), QColor(), 0);
    picture.text = pictureName;
    DemoShape caption = shape(DemoShape::Text, QRectF(312, 520, 400, 70), QColor(0x37, 0x47, 0x4f), QColor(Qt::white), 2);
    caption.text = QStringLiteral("A picture from the lesson");
    page.shapes << shape(DemoShape::Rect, QRectF(302, 174, 420, 320), QColor(0x37, 0x47, 0x4f), QColor(), 3)
                << picture << caption;
    page.commands = recording(page.shapes);
    return page;
}

QList<DemoCommand> DemoContent::recording(const QList<DemoShape> &shapes)
{
    QList<DemoCommand> commands;
    for (int i = 0; i < shapes.size(); ++i) {
        DemoCommand create;
        create.cls = QStringLiteral("create");
        create.time = 800 * i;
        create.gids = {i + 1};
        create.points = shapes.at(i).points;
        commands << create;
    }
    DemoCommand move;
    move.cls = QStringLiteral("move");
    move.time = 800 * int(shapes.size());
    move.gids = {1};
    move.moveBy = QPointF(24, 16);
    DemoCommand select;
    select.cls = QStringLiteral("select");
    select.time = move.time + 600;
    select.gids = {1, 2};
    DemoCommand undo = move;
    undo.cls = QStringLiteral("undo");
    undo.time = select.time + 400;
    DemoCommand group;
    group.cls = QStringLiteral("group");
    group.time = select.time;
    group.gids = select.gids;
    group.steps = {select, undo};
    commands << move << group;
    return commands;
}

DemoShape DemoContent::shape(DemoShape::Kind kind, const QRectF &box, const QColor &stroke,
                             const QColor &fill, float width)
{
    DemoShape result;
    result.kind = kind;
    result.box = box;
    result.stroke = stroke;
    result.fill = fill;
    result.width = width;
    return result;
}

tagPageGrid DemoContent::grid(int step, const QColor &color, Qt::PenStyle style)
{
    tagPageGrid result;
    result.horizontal = step;
    result.vertical = step;
    result.lineColor = color;
    result.lineWidth = 1.0f;
    result.lineStyle = style;
    result.visible = true;
    return result;
}
