// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LINEMARKERS_H
#define LXDOC_TOOL_LINEMARKERS_H

#include <QPointF>
#include <QString>

// The board's line-end decorations ("marker-start", "marker-end"). They
// name the board's own shapes rather than SVG markers, so a picture draws
// them as plain filled outlines.
class LineMarkers {
public:
    enum Kind { None, Arrow, Square, Dot, Diamond };

    static Kind kindOf(const QString &text);
    // Path data of a decoration at an end of a stroke; direction is the
    // unit vector pointing away from the stroke.
    static QString outline(Kind kind, const QPointF &at, const QPointF &direction, double strokeWidth);
    // The length unit of every decoration for a stroke width.
    static double unitFor(double strokeWidth);
};

#endif
