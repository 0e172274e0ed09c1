// SPDX-License-Identifier: MIT
#include "jsonnumber.h"

#include <QByteArray>

#include <charconv>
#include <cmath>

double JsonNumber::shortest(double value)
{
    const float single = float(value);
    if (!std::isfinite(value) || double(single) != value)
        return value;
    char text[64];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, single);
    // Read back without the locale: to_chars always writes a decimal point.
    return QByteArray(text, int(result.ptr - text)).toDouble();
}
