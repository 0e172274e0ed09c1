// SPDX-License-Identifier: MIT
#include "linemarkers.h"

#include <QList>
#include <QStringList>

#include <cmath>

namespace {

QString pathThrough(const QList<QPointF> &corners)
{
    QStringList steps;
    for (const QPointF &corner : corners)
        steps << QStringLiteral("%1,%2").arg(corner.x(), 0, 'f', 2).arg(corner.y(), 0, 'f', 2);
    return QStringLiteral("M") + steps.join(QStringLiteral(" L")) + QStringLiteral(" Z");
}

QString circle(const QPointF &centre, double radius)
{
    const QString r = QString::number(radius, 'f', 2);
    return QStringLiteral("M%1,%2 A%3,%3 0 1 0 %4,%2 A%3,%3 0 1 0 %1,%2 Z")
        .arg(centre.x() - radius, 0, 'f', 2).arg(centre.y(), 0, 'f', 2).arg(r).arg(centre.x() + radius, 0, 'f', 2);
}

} // namespace

LineMarkers::Kind LineMarkers::kindOf(const QString &text)
{
    // "Round" is how the board stores "no decoration".
    if (text == QLatin1String("ArrowAnchor"))
        return Arrow;
    if (text == QLatin1String("SquareAnchor"))
        return Square;
    if (text == QLatin1String("RoundAnchor"))
        return Dot;
    if (text == QLatin1String("DiamondAnchor"))
        return Diamond;
    return None;
}

double LineMarkers::unitFor(double strokeWidth)
{
    // A hairline still gets a head that can be seen.
    return std::isfinite(strokeWidth) && strokeWidth > 2 ? strokeWidth : 2.0;
}

QString LineMarkers::outline(Kind kind, const QPointF &at, const QPointF &direction, double strokeWidth)
{
    const double unit = unitFor(strokeWidth);
    const QPointF along = direction * unit;
    const QPointF across(-along.y(), along.x());
    switch (kind) {
    case Arrow:
        // The head starts where the stroke ends, wide enough to cover any cap.
        return pathThrough({at + 1.5 * across, at + 3 * along, at - 1.5 * across});
    case Square:
        return pathThrough({at + 1.5 * (along + across), at + 1.5 * (along - across),
                            at - 1.5 * (along + across), at - 1.5 * (along - across)});
    case Dot:
        return circle(at, 1.5 * unit);
    case Diamond:
        return pathThrough({at + 2 * along, at + 1.5 * across, at - 2 * along, at - 1.5 * across});
    case None:
        break;
    }
    return QString();
}
