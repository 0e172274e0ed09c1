// SPDX-License-Identifier: MIT
#include "demopainter.h"

#include <QImage>
#include <QPainter>
#include <QPolygonF>

DemoPainter::DemoPainter(const DemoPageModel &page, const QString &pictureFile)
    : m_page(page)
    , m_pictureFile(pictureFile)
{
}

void DemoPainter::paint(QPainter &painter, QSize target) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(double(target.width()) / m_page.size.width(), double(target.height()) / m_page.size.height());
    painter.fillRect(QRect(QPoint(), m_page.size), m_page.background);
    paintGrid(painter);
    for (const DemoShape &shape : m_page.shapes)
        paintShape(painter, shape);
}

void DemoPainter::paintGrid(QPainter &painter) const
{
    const tagPageGrid &grid = m_page.grid;
    if (!grid.visible || grid.horizontal <= 0 || grid.vertical <= 0)
        return;
    painter.setPen(QPen(grid.lineColor, grid.lineWidth, grid.lineStyle));
    for (int x = grid.horizontal; x < m_page.size.width(); x += grid.horizontal)
        painter.drawLine(x, 0, x, m_page.size.height());
    for (int y = grid.vertical; y < m_page.size.height(); y += grid.vertical)
        painter.drawLine(0, y, m_page.size.width(), y);
}

void DemoPainter::paintShape(QPainter &painter, const DemoShape &shape) const
{
    painter.setPen(shape.stroke.isValid() ? QPen(shape.stroke, shape.width, Qt::SolidLine, shape.cap) : QPen(Qt::NoPen));
    painter.setBrush(shape.fill.isValid() ? QBrush(shape.fill) : QBrush(Qt::NoBrush));
    switch (shape.kind) {
    case DemoShape::Rect: painter.drawRect(shape.box); break;
    case DemoShape::Ellipse: painter.drawEllipse(shape.box); break;
    case DemoShape::Line: painter.drawLine(shape.box.topLeft(), shape.box.bottomRight()); break;
    case DemoShape::Stroke:
    case DemoShape::Polyline: painter.drawPolyline(QPolygonF(shape.points.toVector())); break;
    case DemoShape::Drawing:
        for (const QList<QPointF> &part : shape.parts)
            painter.drawPolyline(QPolygonF(part.toVector()));
        break;
    case DemoShape::Text: paintText(painter, shape); break;
    case DemoShape::Image: painter.drawImage(shape.box, QImage(m_pictureFile)); break;
    }
}

void DemoPainter::paintText(QPainter &painter, const DemoShape &shape) const
{
    painter.drawRect(shape.box);
    QFont font = painter.font();
    font.setPixelSize(28);
    painter.setFont(font);
    painter.drawText(shape.box.adjusted(16, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, shape.text);
}
