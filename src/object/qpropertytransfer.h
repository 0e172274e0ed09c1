// SPDX-License-Identifier: MIT
#ifndef LXDOC_QPROPERTYTRANSFER_H
#define LXDOC_QPROPERTYTRANSFER_H

#include "linecapstyle.h"
#include "pageformat.h"
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <Qt>

// Turns Qt drawing values into the attribute texts of page and record files
// and back. Every text form the library writes lives here.
class QPropertyTransfer {
public:
    virtual ~QPropertyTransfer() = default;

    static bool penJoinQt2Svg(Qt::PenJoinStyle join, QString &text);
    static bool penJoinSvg2Qt(const QString &text, Qt::PenJoinStyle &join);
    static bool penCapQt2Svg(Qt::PenCapStyle cap, QString &text);
    static bool penCapSvg2Qt(const QString &text, Qt::PenCapStyle &cap);
    static bool lineCapQt2Svg(LineCapStyle cap, QString &text);
    static bool lineCapSvg2Qt(const QString &text, LineCapStyle &cap);
    static bool formatID2PageFormat(PageFormat format, QString &text);
    static bool pageFormat2FormatID(const QString &text, PageFormat &format);
    static bool dashQt2Svg(Qt::PenStyle style, int width, QString &text);
    static bool dashSvg2Qt(const QString &text, Qt::PenStyle &style);
    static bool transformQt2Svg(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV,
                                QPointF centre, QString &text);
    static bool transformSvg2Qt(const QString &text, QPointF &pos, QSizeF &scale, float &angle,
                                bool &flipH, bool &flipV);
};

#endif
