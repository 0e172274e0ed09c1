// SPDX-License-Identifier: MIT
#ifndef LXDOC_ILXOBJECT_H
#define LXDOC_ILXOBJECT_H

#include "linecapstyle.h"
#include "lxdoc_export.h"
#include <QColor>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <Qt>

// One graphic object of a page (an SVG element). Every pointer handed out is a
// new view owned by the caller and ended with release(). The operation order
// is the binary layout a host relies on.
class LXDOC_EXPORT ILXObject {
public:
    virtual void release() = 0;
    virtual bool setClass(const QString &cls) = 0;
    virtual bool getClass(QString &cls) = 0;
    virtual bool setgid(int gid) = 0;
    virtual bool getgid(int &gid) = 0;
    virtual bool setStroke(const QColor &color) = 0;
    virtual bool getStroke(QColor &color) = 0;
    virtual bool setStrokeWidth(float width) = 0;
    virtual bool getStrokeWidth(float &width) = 0;
    virtual bool setStrokeLineJoin(Qt::PenJoinStyle join) = 0;
    virtual bool getStrokeLineJoin(Qt::PenJoinStyle &join) = 0;
    virtual bool setStrokeLineCap(Qt::PenCapStyle cap) = 0;
    virtual bool getStrokeLineCap(Qt::PenCapStyle &cap) = 0;
    virtual bool setStrokeDashArray(Qt::PenStyle style, float width) = 0;
    virtual bool getStrokeDashArray(Qt::PenStyle &style) = 0;
    virtual bool setMarkerStart(LineCapStyle marker) = 0;
    virtual bool getMarkerStart(LineCapStyle &marker) = 0;
    virtual bool setMarkerEnd(LineCapStyle marker) = 0;
    virtual bool getMarkerEnd(LineCapStyle &marker) = 0;
    virtual bool setFill(bool filled, QColor color) = 0;
    virtual bool getFill(bool &filled, QColor &color) = 0;
    virtual bool setOpacity(float opacity) = 0;
    virtual bool getOpacity(float &opacity) = 0;
    virtual bool setShortcut(const QString &target, int area) = 0;
    virtual bool getShortcut(QString &target, int &area) = 0;
    virtual bool setSoundToken(const QString &token, int launch) = 0;
    virtual bool getSoundToken(QString &token, int &launch) = 0;
    virtual bool setTransform(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV, QPointF centre) = 0;
    virtual bool getTransform(QPointF &pos, QSizeF &scale, float &angle, bool &flipH, bool &flipV) = 0;
    virtual bool setScaleRule(int rule) = 0;
    virtual bool getScaleRule(int &rule) = 0;
    virtual bool setLocked(bool locked) = 0;
    virtual bool getLocked(bool &locked) = 0;
    virtual bool setPoints(QList<QPointF> &points, bool asPolygon) = 0;
    virtual bool getPoints(QList<QPointF> &points) = 0;
    virtual int getPolygonCount() = 0;
    virtual bool getPolygonPoints(int index, QList<QPointF> &points) = 0;
    virtual bool setPoints(QList<QPointF> &points, QList<float> &widths, bool asPolygon) = 0;
    virtual bool getPolygonPoints(int index, QList<QPointF> &points, QList<float> &widths) = 0;
    virtual bool setTextFrame(QColor stroke, float width, Qt::PenStyle &style, bool filled, QColor fill) = 0;
    virtual bool setBound(QRectF rect) = 0;
    virtual bool getBound(QRectF &rect) = 0;
    virtual bool setSvgText(const QString &text) = 0;
    virtual bool getSvgText(QString &text) = 0;
    virtual ILXObject *newLXObject(const QString &name) = 0;
    virtual ILXObject *getLXObject(const QString &name) = 0;
    virtual ILXObject *getFirstLXObject() = 0;
    virtual ILXObject *getNextLXObject() = 0;
    virtual bool setLXObjectAttribute(const QString &name, int value) = 0;
    virtual bool setLXObjectAttribute(const QString &name, float value) = 0;
    virtual bool setLXObjectAttribute(const QString &name, const QString &value) = 0;
    virtual bool getLXObjectAttribute(const QString &name, int &value) = 0;
    virtual bool getLXObjectAttribute(const QString &name, float &value) = 0;
    virtual bool getLXObjectAttribute(const QString &name, QString &value) = 0;

protected:
    ~ILXObject() = default;
};

#endif
