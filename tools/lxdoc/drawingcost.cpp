// SPDX-License-Identifier: MIT
#include "drawingcost.h"

#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <QTextItem>

#include <cmath>

namespace {

// One step is about what the rasteriser spends on one pixel of an outline's
// edge; the rest is weighed against that (measured on QtSvg 6.4 and 5.15
// drawing into an antialiased ARGB32 image).
// Setting up one shape (stroker, clip, span buffers).
const double kShapeSteps = 50;
// A glyph comes from a cached image.
const double kGlyphSteps = 20;
// Solid spans between the edges are blended many pixels per step, scaled
// pictures fewer.
const double kFilledPixelsPerStep = 1000;
const double kPicturePixelsPerStep = 100;

double lengthAndCount(const QPainterPath &path, int *segments)
{
    double length = 0;
    *segments = 0;
    QPointF last;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        const QPointF at(element.x, element.y);
        if (!element.isMoveTo()) {
            // Curve control points too: their polygon is longer than the curve.
            length += QLineF(last, at).length();
            ++*segments;
        }
        last = at;
    }
    return length;
}

} // namespace

DrawingCost::DrawingCost(QSize size)
    : QPaintEngine(QPaintEngine::AllFeatures)
    , m_size(size)
{
}

double DrawingCost::of(QSvgRenderer &renderer, QSize size)
{
    DrawingCost cost(size);
    QPainter painter(&cost);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(size)));
    painter.end();
    return cost.total();
}

double DrawingCost::total() const
{
    return m_total;
}

QPaintEngine *DrawingCost::paintEngine() const
{
    return const_cast<DrawingCost *>(this);
}

bool DrawingCost::begin(QPaintDevice *)
{
    return true;
}

bool DrawingCost::end()
{
    return true;
}

void DrawingCost::updateState(const QPaintEngineState &)
{
}

QPaintEngine::Type DrawingCost::type() const
{
    return QPaintEngine::User;
}

void DrawingCost::drawPath(const QPainterPath &path)
{
    addShape(path);
}

void DrawingCost::drawPolygon(const QPointF *points, int count, PolygonDrawMode mode)
{
    if (count < 1)
        return;
    QPainterPath path(points[0]);
    for (int i = 1; i < count; ++i)
        path.lineTo(points[i]);
    if (mode != PolylineMode)
        path.closeSubpath();
    addShape(path);
}

void DrawingCost::drawLines(const QLineF *lines, int count)
{
    for (int i = 0; i < count; ++i) {
        QPainterPath path(lines[i].p1());
        path.lineTo(lines[i].p2());
        addShape(path);
    }
}

void DrawingCost::drawRects(const QRectF *rects, int count)
{
    for (int i = 0; i < count; ++i) {
        QPainterPath path;
        path.addRect(rects[i]);
        addShape(path);
    }
}

void DrawingCost::drawEllipse(const QRectF &rect)
{
    QPainterPath path;
    path.addEllipse(rect);
    addShape(path);
}

void DrawingCost::drawPoints(const QPointF *points, int count)
{
    for (int i = 0; i < count; ++i)
        drawEllipse(QRectF(points[i], QSizeF()));
}

void DrawingCost::drawTextItem(const QPointF &origin, const QTextItem &item)
{
    const QRectF box(origin.x(), origin.y() - item.ascent(), item.width(), item.ascent() + item.descent());
    m_total += kShapeSteps + item.text().size() * kGlyphSteps
        + coveredArea(painter()->combinedTransform().mapRect(box)) / kFilledPixelsPerStep;
}

void DrawingCost::drawPixmap(const QRectF &target, const QPixmap &, const QRectF &source)
{
    addPicture(target, source.size());
}

void DrawingCost::drawImage(const QRectF &target, const QImage &, const QRectF &source, Qt::ImageConversionFlags)
{
    addPicture(target, source.size());
}

void DrawingCost::drawTiledPixmap(const QRectF &target, const QPixmap &, const QPointF &)
{
    addPicture(target, target.size());
}

int DrawingCost::metric(PaintDeviceMetric metric) const
{
    switch (metric) {
    case PdmWidth:
        return m_size.width();
    case PdmHeight:
        return m_size.height();
    case PdmWidthMM:
        return qRound(m_size.width() * 25.4 / 96);
    case PdmHeightMM:
        return qRound(m_size.height() * 25.4 / 96);
    case PdmNumColors:
        return INT_MAX;
    case PdmDepth:
        return 32;
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        // A QImage's own resolution, so text is laid out as it will be drawn.
        return 96;
    default:
        return QPaintDevice::metric(metric);
    }
}

// Both the fill and the stroke are cut into cells along the outline; a
// stroke's outline runs on both sides of the path and around every join.
// Each cell is sorted into its row among the cells of the same shape, so a
// shape whose many edges cross the same rows (a stroke zigzagging over the
// page) costs more per pixel of edge: measured, the cost per edge pixel
// grows with the logarithm of the edge count.
void DrawingCost::addShape(const QPainterPath &path)
{
    const QTransform transform = painter()->combinedTransform();
    const QPen pen = painter()->pen();
    const bool stroked = pen.style() != Qt::NoPen;
    const double scale = std::sqrt(std::fabs(transform.determinant()));
    const double width = !stroked ? 0 : pen.isCosmetic() ? qMax(1.0, pen.widthF()) : pen.widthF() * scale;
    const QPainterPath mapped = transform.map(path);
    int segments = 0;
    const double length = lengthAndCount(mapped, &segments);
    const double outline = (stroked ? 2 : 1) * length + segments * width;
    const double margin = width / 2;
    m_total += kShapeSteps + outline * std::log2(segments + 2.0)
        + coveredArea(mapped.controlPointRect().adjusted(-margin, -margin, margin, margin)) / kFilledPixelsPerStep;
}

// Scaling reads every source pixel once and writes every covered one.
void DrawingCost::addPicture(const QRectF &target, const QSizeF &source)
{
    m_total += kShapeSteps + (source.width() * source.height() + coveredArea(painter()->combinedTransform().mapRect(target)))
        / kPicturePixelsPerStep;
}

double DrawingCost::coveredArea(const QRectF &deviceBox) const
{
    const QRectF covered = deviceBox.intersected(QRectF(QPointF(), QSizeF(m_size)));
    return covered.isValid() ? covered.width() * covered.height() : 0;
}
