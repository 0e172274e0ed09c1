// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_SVGNUMBERS_H
#define LXDOC_TOOL_SVGNUMBERS_H

#include <QList>
#include <QString>

class QRegularExpression;

// Numbers as SVG writes them in lists ("1,2 3.5e1-4"): one pattern for
// every place that reads them, so they all agree where a number ends.
class SvgNumbers {
public:
    static const QRegularExpression &pattern();
    static QList<double> parse(const QString &text);
};

#endif
