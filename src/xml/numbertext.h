// SPDX-License-Identifier: MIT
#ifndef LXDOC_NUMBERTEXT_H
#define LXDOC_NUMBERTEXT_H

#include <QList>
#include <QPointF>
#include <QString>
#include <QStringView>

// Number text of the library's files. Reading is the hot path of opening a
// lesson, so plain numbers take a fast path and anything unusual falls back
// to Qt's own conversion; both give the same results.
class NumberText {
public:
    // QString::toInt(base 10) / QString::toFloat: malformed text gives 0.
    static int toInt(QStringView text);
    static float toFloat(QStringView text);

    // The forms written to disk.
    static QString floatAttribute(float value);    // 'g', 6 significant digits: 1.23457e+06
    static QString fixed5(double value);           // "%0.5f"
    static void appendFixed2(QString &out, double value); // "%.2f"
    static void appendInt(QString &out, int value);       // "%d"

    // "x,y x,y": split at every blank keeping empty parts; x and y are
    // comma-separated fields 0 and 1 of each part (missing reads 0). The
    // point and float readers take a QString: its units end in a '\0', which
    // stops every scan without checking the length.
    static void appendPoints(QList<QPointF> &out, const QString &text);
    // Split at every comma keeping empty parts.
    static void appendInts(QList<int> &out, QStringView text);
    static void appendFloats(QList<float> &out, const QString &text);

    // Towards zero, held to the int range; NaN gives 0. Hosts pass any float
    // as a width, and a plain cast of a value past the range is undefined.
    static int saturatedInt(double value);
    // Held to 0..1, NaN giving 0: Qt warns about an alpha outside that range.
    static float unitFraction(float value);

    // "%.2f,%.2f" per pair, pairs joined by one blank.
    static QString pointsText(const QList<QPointF> &points);
    // first "%d" / "%.2f", further ",%d" / ",%.2f".
    static QString intsText(const QList<int> &values);
    static QString floatsText(const QList<float> &values);
};

#endif
