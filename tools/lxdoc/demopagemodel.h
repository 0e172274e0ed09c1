// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOPAGEMODEL_H
#define LXDOC_TOOL_DEMOPAGEMODEL_H

#include "linecapstyle.h"
#include "tagpagegrid.h"

#include <QColor>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>

// One drawn thing on a sample page, as the board's tools make them.
struct DemoShape {
    enum Kind { Rect, Ellipse, Line, Stroke, Polyline, Drawing, Text, Image };
    Kind kind = Rect;
    QRectF box;                  // placement; a line runs from its top left to its bottom right
    QColor stroke;
    QColor fill;                 // invalid: not filled
    float width = 1.0f;
    Qt::PenCapStyle cap = Qt::FlatCap;          // Line, Stroke, Polyline
    LineCapStyle startMarker = LineCapNone;     // Line, Polyline
    LineCapStyle endMarker = LineCapNone;
    QList<QPointF> points;       // Stroke, Polyline
    QList<float> widths;         // Stroke: one per point
    QList<QList<QPointF>> parts; // Drawing: one polyline each
    QString text;                // Text: the words; Image: the picture's lesson-relative name
    bool locked = false;         // the board moves or erases nothing locked
};

// One recorded step; "group" steps hold further steps.
struct DemoCommand {
    QString cls;
    int time = 0;
    QList<int> gids;
    QList<QPointF> points;
    QPointF moveBy;              // "move": the offset of the placement
    QList<DemoCommand> steps;
};

struct DemoPageModel {
    int id = 0;
    QString title;
    QSize size;
    QColor background;
    tagPageGrid grid;
    QList<DemoShape> shapes;
    QList<DemoCommand> commands;
};

#endif
