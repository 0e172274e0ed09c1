// SPDX-License-Identifier: MIT
#ifndef LXDOC_TAGPAGEGRID_H
#define LXDOC_TAGPAGEGRID_H

#include <QColor>
#include <Qt>

// The page grid, filled and read field by field by ILXFrontPage.
struct tagPageGrid {
    int horizontal = 0;
    int vertical = 0;
    QColor lineColor;
    float lineWidth = 1.0f;
    Qt::PenStyle lineStyle = Qt::SolidLine;
    bool visible = false;
};

#endif
