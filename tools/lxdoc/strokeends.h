// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_STROKEENDS_H
#define LXDOC_TOOL_STROKEENDS_H

#include <QList>
#include <QPointF>
#include <QString>

// The two ends of an open stroke and the way each one points, outwards
// along its first and last segment: where a line's end decorations go.
class StrokeEnds {
public:
    // points in drawing order; curve control points count, so that an end
    // points along the curve's tangent.
    static StrokeEnds fromPoints(const QList<QPointF> &points);
    // SVG path data ("M 0 0 L 10 10 C ...").
    static StrokeEnds fromPath(const QString &data);
    // A "points" attribute: numbers in x,y pairs.
    static QList<QPointF> parsePoints(const QString &text);

    bool isValid() const { return m_valid; }
    QPointF start() const { return m_start; }
    QPointF end() const { return m_end; }
    // Unit vectors pointing away from the stroke.
    QPointF startDirection() const { return m_startDirection; }
    QPointF endDirection() const { return m_endDirection; }

private:
    bool m_valid = false;
    QPointF m_start;
    QPointF m_end;
    QPointF m_startDirection;
    QPointF m_endDirection;
};

#endif
