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

// The plain reading below needs no length: it runs over text that ends in a
// unit which is neither a digit nor '.', such as the '\0' after a QString's
// units or after the copy toFloat makes, and it never reads past that unit.

// Appends the decimal digits at p to digits and returns how many there are.
// More than 19 digits wrap around, but those are refused by the caller anyway.
template <typename Unit>
inline qsizetype readDigits(const Unit *p, quint64 &digits)
{
    quint64 value = digits;
    qsizetype count = 0;
    for (unsigned digit; (digit = unsigned(p[count]) - '0') <= 9; ++count)
        value = value * 10 + digit;
    digits = value;
    return count;
}

// A plain decimal of at most 15 digits ("-123.45") at p; returns where it
// ends, or null when the text there is anything else, which is then read the
// general way. The digits fit a double exactly and so does the power of ten,
// so one division gives the correctly rounded double, the same from_chars
// and Qt produce, and that double is then rounded to float as they do. The
// float is the output on purpose: GCC 12 at -O2 drops the rounding of a
// double-to-float-to-double pair stored side by side.
template <typename Unit>
inline const Unit *plainDecimal(const Unit *p, float &value)
{
    static constexpr double powers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool negative = *p == '-';
    p += negative;
    quint64 digits = 0;
    const qsizetype whole = readDigits(p, digits);
    if (whole == 0)
        return nullptr;
    p += whole;
    qsizetype fraction = 0;
    if (*p == '.') {
        fraction = readDigits(++p, digits);
        if (fraction == 0)
            return nullptr;
        p += fraction;
    }
    if (whole + fraction > 15)
        return nullptr;
    const double exact = double(qint64(digits)) / powers[fraction];
    value = float(negative ? -exact : exact);
    return p;
}

// The units of a QString always end in a '\0'.
const char16_t *unitsOf(const QString &text)
{
    return reinterpret_cast<const char16_t *>(text.utf16());
}

// Appends to a list through a pointer where the list is one array (Qt 6),
// through the list's own append otherwise. The list is sized for an estimate
// up front and trimmed to what was added when the appender ends.
template <typename T>
class ListAppender {
public:
    ListAppender(QList<T> &list, qsizetype expected) : m_list(list)
    {
        const qsizetype first = m_list.size();
        m_list.reserve(first + expected);
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        useCapacity(first);
#endif
    }
    ListAppender(const ListAppender &) = delete;
    ListAppender &operator=(const ListAppender &) = delete;

    // Text that is not the library's (one long piece) can leave far fewer
    // elements than estimated; the list then keeps no more room than its own
    // growth would have left.
    ~ListAppender()
    {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        trim(m_list, m_next - m_list.constData());
#endif
    }

    void add(const T &value)
    {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        if (m_next == m_end)
            grow();
        *m_next++ = value;
#else
        m_list.append(value);
#endif
    }

private:
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Past the estimate the list doubles, as its own append would grow it.
    void grow()
    {
        const qsizetype used = m_next - m_list.constData();
        m_list.resize(2 * used + 1);
        useCapacity(used);
    }

    // Out of line and without the appender, whose pointers can then stay
    // in registers while the list is filled.
    Q_NEVER_INLINE static void trim(QList<T> &list, qsizetype size)
    {
        list.resize(size);
        if (2 * list.size() < list.capacity())
            list.squeeze();
    }

    // The whole allocation becomes elements, written from index next on.
    void useCapacity(qsizetype next)
    {
        m_list.resize(m_list.capacity());
        m_next = m_list.data() + next;
        m_end = m_list.data() + m_list.size();
    }
#endif

    QList<T> &m_list;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    T *m_next = nullptr;
    T *m_end = nullptr;
#endif
};

// The shortest pieces the library writes ("0.00,0.00 " and "0.00,"): lists
// of its own files are sized once and never grow, other text is at worst
// sized for a part of its length and grows from there.
constexpr qsizetype minWrittenPointChars = 10;
constexpr qsizetype minWrittenFloatChars = 5;

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
    char buffer[maxPlainFloatChars + 1];
    int length = 0;
    if (plainFloatToChars(text, buffer, length)) {
        buffer[length] = '\0';
        float value = 0;
        if (plainDecimal(buffer, value) == buffer + length)
            return value;
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

void NumberText::appendPoints(QList<QPointF> &out, const QString &text)
{
    ListAppender<QPointF> appender(out, text.size() / minWrittenPointChars + 1);
    const char16_t *const begin = unitsOf(text);
    const char16_t *const end = begin + text.size();
    for (const char16_t *p = begin;; ++p) {
        float x = 0;
        float y = 0;
        const char16_t *q = plainDecimal(p, x);
        if (q && *q == u',' && (q = plainDecimal(q + 1, y)) && (q == end || *q == u' ')) {
            appender.add(QPointF(x, y));
        } else {
            q = begin + findChar(text, p - begin, u' ');
            const QStringView part(p, q);
            appender.add(QPointF(toFloat(commaField(part, 0)), toFloat(commaField(part, 1))));
        }
        if (q == end)
            return;
        p = q;
    }
}

void NumberText::appendInts(QList<int> &out, QStringView text)
{
    out.reserve(out.size() + pieceCount(text, u','));
    forEachPiece(text, u',', [&out](QStringView part) { out.append(toInt(part)); });
}

void NumberText::appendFloats(QList<float> &out, const QString &text)
{
    ListAppender<float> appender(out, text.size() / minWrittenFloatChars + 1);
    const char16_t *const begin = unitsOf(text);
    const char16_t *const end = begin + text.size();
    for (const char16_t *p = begin;; ++p) {
        float value = 0;
        const char16_t *q = plainDecimal(p, value);
        if (!q || (q != end && *q != u',')) {
            q = begin + findChar(text, p - begin, u',');
            value = toFloat(QStringView(p, q));
        }
        appender.add(value);
        if (q == end)
            return;
        p = q;
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
