// SPDX-License-Identifier: MIT
#include "numbertext.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace {

// Bounds of the fast path: past them a number may overflow an int or lose the
// exact agreement with Qt's conversion, so Qt reads it instead.
constexpr int maxPlainIntDigits = 9;
constexpr int maxPlainFloatChars = 24;

bool isDigit(QChar c)
{
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

// Optional '-', then digits; nothing else.
bool plainIntToChars(QStringView text, char *buffer, int &length)
{
    const int size = int(text.size());
    int i = 0;
    if (size > 0 && text[0] == u'-')
        buffer[i++] = '-';
    const int digits = size - i;
    if (digits < 1 || digits > maxPlainIntDigits)
        return false;
    for (; i < size; ++i) {
        if (!isDigit(text[i]))
            return false;
        buffer[i] = char(text[i].unicode());
    }
    length = size;
    return true;
}

// Optional '-', at least one digit, optionally '.' and at least one digit.
bool plainFloatToChars(QStringView text, char *buffer, int &length)
{
    const int size = int(text.size());
    if (size < 1 || size > maxPlainFloatChars)
        return false;
    int i = 0;
    if (text[0] == u'-')
        buffer[i++] = '-';
    int intDigits = 0;
    for (; i < size && isDigit(text[i]); ++i, ++intDigits)
        buffer[i] = char(text[i].unicode());
    if (intDigits == 0)
        return false;
    if (i < size) {
        if (text[i] != u'.' || i + 1 == size)
            return false;
        buffer[i++] = '.';
        for (; i < size; ++i) {
            if (!isDigit(text[i]))
                return false;
            buffer[i] = char(text[i].unicode());
        }
    }
    length = size;
    return true;
}

// An exact tie at two decimals (x.125, x.375, x.625, x.875: the only ones a
// double can hold) rounds away from zero in Qt but to even in to_chars; Qt
// formats those itself. Multiplying by 8 is exact below 1e15.
bool isTieAtTwoDecimals(double value)
{
    const double eighths = value * 8.0;
    return std::floor(eighths) == eighths && std::fmod(eighths, 2.0) != 0.0;
}

void appendAscii(QString &out, const char *begin, const char *end)
{
    out.append(QLatin1String(begin, int(end - begin)));
}

// Where the next sep stands at or after from, or the size when none does.
// A plain loop: the pieces are a few characters long, and Qt's general
// search costs more to set up than the scan itself.
qsizetype findChar(QStringView text, qsizetype from, char16_t sep)
{
    const qsizetype size = text.size();
    const QChar *const data = text.data();
    while (from < size && data[from].unicode() != sep)
        ++from;
    return from;
}

// Comma-separated field 0 or 1 of a part, as QString::section(',', n, n)
// cuts it: a missing field is null.
QStringView commaField(QStringView part, int field)
{
    const qsizetype first = findChar(part, 0, u',');
    if (field == 0)
        return part.left(first);
    if (first == part.size())
        return QStringView();
    const qsizetype second = findChar(part, first + 1, u',');
    return part.mid(first + 1, second - first - 1);
}

// Calls f for every piece of text cut at sep, empty pieces included.
template<typename F>
void forEachPiece(QStringView text, char16_t sep, F f)
{
    qsizetype start = 0;
    for (;;) {
        const qsizetype cut = findChar(text, start, sep);
        f(text.mid(start, cut - start));
        if (cut == text.size())
            return;
        start = cut + 1;
    }
}

qsizetype pieceCount(QStringView text, char16_t sep)
{
    qsizetype count = 1;
    for (const QChar c : text)
        count += c.unicode() == sep;
    return count;
}

// Appends the decimal digits at p to digits and returns where they end. More
// than 19 digits wrap around, but those are refused by the caller anyway.
const char16_t *readDigits(const char16_t *p, const char16_t *end, quint64 &digits)
{
    quint64 value = digits;
    for (; p < end; ++p) {
        const unsigned digit = unsigned(*p) - u'0';
        if (digit > 9)
            break;
        value = value * 10 + digit;
    }
    digits = value;
    return p;
}

// Plain decimals of at most 15 digits ("-123.45") starting at i and ending
// at a ',' or ' ' or the end, where i is left (untouched when refused). The
// digits fit a double exactly and so does the power of ten, so one division
// gives the correctly rounded double, the same from_chars and Qt produce, and
// that double is then rounded to float as they do. Anything else is refused
// and read the general way. The float is the output on purpose: GCC 12 at -O2
// drops the rounding of a double-to-float-to-double pair stored side by side.
bool scanDecimal(QStringView text, qsizetype &i, float &value)
{
    static const double powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7,
                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const char16_t *const begin = reinterpret_cast<const char16_t *>(text.utf16());
    const char16_t *const end = begin + text.size();
    const char16_t *p = begin + i;
    const bool negative = p < end && *p == u'-';
    p += negative;
    quint64 digits = 0;
    const char16_t *const first = p;
    p = readDigits(p, end, digits);
    const int whole = int(p - first);
    int fraction = 0;
    if (whole > 0 && p < end && *p == u'.') {
        const char16_t *const point = ++p;
        p = readDigits(p, end, digits);
        fraction = int(p - point);
        if (fraction == 0)
            return false;
    }
    if (whole == 0 || whole + fraction > 15 || (p < end && *p != u',' && *p != u' '))
        return false;
    i = p - begin;
    const double exact = double(digits) / powers[fraction];
    value = float(negative ? -exact : exact);
    return true;
}

bool shortDecimal(QStringView text, float &value)
{
    qsizetype i = 0;
    return scanDecimal(text, i, value) && i == text.size();
}

// "x,y" up to a blank or the end in one pass; false sends the part the
// general way (more fields, empty fields, exponents ...).
bool scanPoint(QStringView text, qsizetype &i, QPointF &point)
{
    float x = 0;
    float y = 0;
    if (!scanDecimal(text, i, x) || i == text.size() || text[i] != u',')
        return false;
    ++i;
    if (!scanDecimal(text, i, y) || (i < text.size() && text[i] != u' '))
        return false;
    point = QPointF(x, y);
    return true;
}

} // namespace

int NumberText::toInt(QStringView text)
{
    char buffer[maxPlainIntDigits + 2];
    int length = 0;
    if (plainIntToChars(text, buffer, length)) {
        int value = 0;
        std::from_chars(buffer, buffer + length, value);
        return value;
    }
    return text.toString().toInt(nullptr, 10);
}

float NumberText::toFloat(QStringView text)
{
    float value = 0;
    if (shortDecimal(text, value))
        return value;
    char buffer[maxPlainFloatChars + 1];
    int length = 0;
    if (plainFloatToChars(text, buffer, length)) {
        double exact = 0;
        std::from_chars(buffer, buffer + length, exact);
        return float(exact);
    }
    return text.toString().toFloat();
}

QString NumberText::floatAttribute(float value)
{
    return QString::number(double(value), 'g', 6);
}

QString NumberText::fixed5(double value)
{
    return QString::asprintf("%0.5f", value);
}

void NumberText::appendFixed2(QString &out, double value)
{
    if (value == 0) {
        // Qt writes negative zero without its sign.
        out += QLatin1String("0.00");
        return;
    }
    if (std::isfinite(value) && std::fabs(value) < 1e15 && !isTieAtTwoDecimals(value)) {
        char buffer[32];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                          std::chars_format::fixed, 2);
        if (result.ec == std::errc()) {
            appendAscii(out, buffer, result.ptr);
            return;
        }
    }
    out += QString::asprintf("%.2f", value);
}

void NumberText::appendInt(QString &out, int value)
{
    char buffer[16];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    appendAscii(out, buffer, result.ptr);
}

int NumberText::saturatedInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    if (value >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    return int(value);
}

float NumberText::unitFraction(float value)
{
    if (!(value > 0.0f))
        return 0.0f;
    return value < 1.0f ? value : 1.0f;
}

// Points and widths are not counted ahead to reserve the list: the count
// costs more than the list's own growth.
void NumberText::appendPoints(QList<QPointF> &out, QStringView text)
{
    qsizetype start = 0;
    for (;;) {
        qsizetype end = start;
        QPointF point;
        if (!scanPoint(text, end, point)) {
            end = findChar(text, start, u' ');
            const QStringView part = text.mid(start, end - start);
            point = QPointF(toFloat(commaField(part, 0)), toFloat(commaField(part, 1)));
        }
        out.append(point);
        if (end == text.size())
            return;
        start = end + 1;
    }
}

void NumberText::appendInts(QList<int> &out, QStringView text)
{
    out.reserve(out.size() + pieceCount(text, u','));
    forEachPiece(text, u',', [&out](QStringView part) { out.append(toInt(part)); });
}

void NumberText::appendFloats(QList<float> &out, QStringView text)
{
    qsizetype start = 0;
    for (;;) {
        qsizetype end = start;
        float value = 0;
        if (scanDecimal(text, end, value) && (end == text.size() || text[end] == u',')) {
            out.append(value);
        } else {
            end = findChar(text, start, u',');
            out.append(toFloat(text.mid(start, end - start)));
        }
        if (end == text.size())
            return;
        start = end + 1;
    }
}

QString NumberText::pointsText(const QList<QPointF> &points)
{
    QString out;
    out.reserve(points.size() * 14);
    for (const QPointF &point : points) {
        if (!out.isEmpty())
            out += u' ';
        appendFixed2(out, point.x());
        out += u',';
        appendFixed2(out, point.y());
    }
    return out;
}

QString NumberText::intsText(const QList<int> &values)
{
    QString out;
    out.reserve(values.size() * 6);
    for (int i = 0; i < values.size(); ++i) {
        if (i > 0)
            out += u',';
        appendInt(out, values[i]);
    }
    return out;
}

QString NumberText::floatsText(const QList<float> &values)
{
    QString out;
    out.reserve(values.size() * 7);
    for (int i = 0; i < values.size(); ++i) {
        if (i > 0)
            out += u',';
        appendFixed2(out, values[i]);
    }
    return out;
}
