// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DRAWINGCOST_H
#define LXDOC_TOOL_DRAWINGCOST_H

#include <QPaintDevice>
#include <QPaintEngine>
#include <QRectF>

class QSvgRenderer;

// What drawing a picture will cost the rasteriser, found before anything
// is drawn by letting QtSvg draw it onto a device that only adds up what
// each shape will take in device pixels. QtSvg has already applied every
// transform, viewBox and style by then, so nothing of SVG is modelled here.
//
// What dominates is the antialiasing rasteriser cutting outlines into
// cells along their edges, so the estimate is mostly edge length in device
// pixels; it grows with what a page really makes the painter do, whatever
// the SVG says in how many words.
class DrawingCost : public QPaintDevice, public QPaintEngine {
public:
    explicit DrawingCost(QSize size);

    static double of(QSvgRenderer &renderer, QSize size);
    double total() const;

    QPaintEngine *paintEngine() const override;
    bool begin(QPaintDevice *device) override;
    bool end() override;
    void updateState(const QPaintEngineState &state) override;
    Type type() const override;

    using QPaintEngine::drawEllipse;
    using QPaintEngine::drawLines;
    using QPaintEngine::drawPoints;
    using QPaintEngine::drawPolygon;
    using QPaintEngine::drawRects;
    void drawPath(const QPainterPath &path) override;
    void drawPolygon(const QPointF *points, int count, PolygonDrawMode mode) override;
    void drawLines(const QLineF *lines, int count) override;
    void drawRects(const QRectF *rects, int count) override;
    void drawEllipse(const QRectF &rect) override;
    void drawPoints(const QPointF *points, int count) override;
    void drawTextItem(const QPointF &origin, const QTextItem &item) override;
    void drawPixmap(const QRectF &target, const QPixmap &pixmap, const QRectF &source) override;
    void drawImage(const QRectF &target, const QImage &image, const QRectF &source,
                   Qt::ImageConversionFlags flags) override;
    void drawTiledPixmap(const QRectF &target, const QPixmap &pixmap, const QPointF &offset) override;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    void addShape(const QPainterPath &path);
    void addPicture(const QRectF &target, const QSizeF &source);
    double coveredArea(const QRectF &deviceBox) const;

    QSize m_size;
    double m_total = 0;
};

#endif
