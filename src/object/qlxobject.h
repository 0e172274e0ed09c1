// SPDX-License-Identifier: MIT
#ifndef LXDOC_QLXOBJECT_H
#define LXDOC_QLXOBJECT_H

#include "ilxobject.h"
#include <QDomNode>

class QXmlStream;

// A thin view on one element of a page: every operation reads or writes the
// element at once and nothing is cached, so several views of one element agree.
class QLXObject : public ILXObject {
public:
    QLXObject(QXmlStream *stream, QDomNode node);

    void release() override;
    bool setClass(const QString &cls) override;
    bool getClass(QString &cls) override;
    bool setgid(int gid) override;
    bool getgid(int &gid) override;
    bool setStroke(const QColor &color) override;
    bool getStroke(QColor &color) override;
    bool setStrokeWidth(float width) override;
    bool getStrokeWidth(float &width) override;
    bool setStrokeLineJoin(Qt::PenJoinStyle join) override;
    bool getStrokeLineJoin(Qt::PenJoinStyle &join) override;
    bool setStrokeLineCap(Qt::PenCapStyle cap) override;
    bool getStrokeLineCap(Qt::PenCapStyle &cap) override;
    bool setStrokeDashArray(Qt::PenStyle style, float width) override;
    bool getStrokeDashArray(Qt::PenStyle &style) override;
    bool setMarkerStart(LineCapStyle marker) override;
    bool getMarkerStart(LineCapStyle &marker) override;
    bool setMarkerEnd(LineCapStyle marker) override;
    bool getMarkerEnd(LineCapStyle &marker) override;
    bool setFill(bool filled, QColor color) override;
    bool getFill(bool &filled, QColor &color) override;
    bool setOpacity(float opacity) override;
    bool getOpacity(float &opacity) override;
    bool setShortcut(const QString &target, int area) override;
    bool getShortcut(QString &target, int &area) override;
    bool setSoundToken(const QString &token, int launch) override;
    bool getSoundToken(QString &token, int &launch) override;
    bool setTransform(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV, QPointF centre) override;
    bool getTransform(QPointF &pos, QSizeF &scale, float &angle, bool &flipH, bool &flipV) override;
    bool setScaleRule(int rule) override;
    bool getScaleRule(int &rule) override;
    bool setLocked(bool locked) override;
    bool getLocked(bool &locked) override;
    bool setPoints(QList<QPointF> &points, bool asPolygon) override;
    bool getPoints(QList<QPointF> &points) override;
    int getPolygonCount() override;
    bool getPolygonPoints(int index, QList<QPointF> &points) override;
    bool setPoints(QList<QPointF> &points, QList<float> &widths, bool asPolygon) override;
    bool getPolygonPoints(int index, QList<QPointF> &points, QList<float> &widths) override;
    bool setTextFrame(QColor stroke, float width, Qt::PenStyle &style, bool filled, QColor fill) override;
    bool setBound(QRectF rect) override;
    bool getBound(QRectF &rect) override;
    bool setSvgText(const QString &text) override;
    bool getSvgText(QString &text) override;
    ILXObject *newLXObject(const QString &name) override;
    ILXObject *getLXObject(const QString &name) override;
    ILXObject *getFirstLXObject() override;
    ILXObject *getNextLXObject() override;
    bool setLXObjectAttribute(const QString &name, int value) override;
    bool setLXObjectAttribute(const QString &name, float value) override;
    bool setLXObjectAttribute(const QString &name, const QString &value) override;
    bool getLXObjectAttribute(const QString &name, int &value) override;
    bool getLXObjectAttribute(const QString &name, float &value) override;
    bool getLXObjectAttribute(const QString &name, QString &value) override;
    virtual ~QLXObject();

    // Not part of ILXObject: the two ends of a straight line ("x1".."y2").
    bool getBeelinePoints(QList<QPointF> &points);

private:
    QXmlStream *m_stream;
    QDomNode m_node;
    QDomNode m_child;
};

#endif
