// SPDX-License-Identifier: MIT
#include "svgnumbers.h"

#include <QRegularExpression>

const QRegularExpression &SvgNumbers::pattern()
{
    static const QRegularExpression number(QStringLiteral("[-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?"));
    return number;
}

QList<double> SvgNumbers::parse(const QString &text)
{
    QList<double> numbers;
    QRegularExpressionMatchIterator it = pattern().globalMatch(text);
    while (it.hasNext())
        numbers << it.next().captured().toDouble();
    return numbers;
}
