// SPDX-License-Identifier: MIT
#include "strokeends.h"

#include "svgnumbers.h"

#include <QRegularExpression>

#include <cmath>

namespace {

// The data was checked once when read; checking it again at every number
// would make long paths quadratic.
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
const auto kAnchoredUnchecked = QRegularExpression::AnchoredMatchOption | QRegularExpression::DontCheckSubjectStringMatchOption;
#else
const auto kAnchoredUnchecked = QRegularExpression::AnchorAtOffsetMatchOption | QRegularExpression::DontCheckSubjectStringMatchOption;
#endif

QPointF unit(const QPointF &vector)
{
    const double length = std::hypot(vector.x(), vector.y());
    return length > 0 ? vector / length : QPointF(1, 0);
}

// Reads SVG path data into the list of points it passes through, control
// points included, absolute.
class PathReader {
public:
    explicit PathReader(const QString &data) : m_data(data) {}
    QList<QPointF> points();

private:
    bool command(QChar letter);
    bool number(double *value);
    bool flag();
    bool point(bool relative, QPointF *result);
    bool curve(QChar kind, bool relative);
    bool arc(bool relative);
    void skipSeparators();
    bool atNumber();

    const QString &m_data;
    int m_at = 0;
    QList<QPointF> m_points;
    QPointF m_current;
    QPointF m_subpath;
    QPointF m_control; // the last curve's closing control point
    QChar m_previous;
};

QList<QPointF> PathReader::points()
{
    skipSeparators();
    QChar letter;
    while (m_at < m_data.size()) {
        if (m_data.at(m_at).isLetter())
            letter = m_data.at(m_at++);
        else if (letter.isNull() || letter.toUpper() == QLatin1Char('Z') || !atNumber())
            break;
        if (!command(letter))
            break;
        // A moveto's further pairs are linetos.
        if (letter == QLatin1Char('M'))
            letter = QLatin1Char('L');
        else if (letter == QLatin1Char('m'))
            letter = QLatin1Char('l');
        skipSeparators();
    }
    return m_points;
}

bool PathReader::command(QChar letter)
{
    const bool relative = letter.isLower();
    const QChar kind = letter.toUpper();
    bool ok = true;
    double value = 0;
    if (kind == QLatin1Char('M') || kind == QLatin1Char('L')) {
        ok = point(relative, &m_current);
        if (kind == QLatin1Char('M'))
            m_subpath = m_current;
    } else if (kind == QLatin1Char('H') || kind == QLatin1Char('V')) {
        ok = number(&value);
        double &coordinate = kind == QLatin1Char('H') ? m_current.rx() : m_current.ry();
        coordinate = relative ? coordinate + value : value;
    } else if (kind == QLatin1Char('Z')) {
        m_current = m_subpath;
    } else if (kind == QLatin1Char('A')) {
        ok = arc(relative);
    } else if (QStringLiteral("CSQT").contains(kind)) {
        ok = curve(kind, relative);
    } else {
        return false;
    }
    if (ok) {
        m_points << m_current;
        m_previous = kind;
    }
    return ok;
}

bool PathReader::curve(QChar kind, bool relative)
{
    const bool cubic = kind == QLatin1Char('C') || kind == QLatin1Char('S');
    const bool follows = cubic ? (m_previous == QLatin1Char('C') || m_previous == QLatin1Char('S'))
                               : (m_previous == QLatin1Char('Q') || m_previous == QLatin1Char('T'));
    // A smooth curve's first control point mirrors the previous curve's last.
    const QPointF mirrored = follows ? 2 * m_current - m_control : m_current;
    QPointF first = mirrored;
    QPointF last;
    QPointF to;
    bool ok = true;
    if (kind == QLatin1Char('C'))
        ok = point(relative, &first) && point(relative, &last);
    else if (kind == QLatin1Char('S'))
        ok = point(relative, &last);
    else if (kind == QLatin1Char('Q'))
        ok = point(relative, &first);
    if (!cubic)
        last = first;
    if (!ok || !point(relative, &to))
        return false;
    m_points << first << last;
    m_control = last;
    m_current = to;
    return true;
}

bool PathReader::arc(bool relative)
{
    double ignored = 0;
    QPointF to;
    if (!number(&ignored) || !number(&ignored) || !number(&ignored) || !flag() || !flag() || !point(relative, &to))
        return false;
    m_current = to;
    return true;
}

bool PathReader::point(bool relative, QPointF *result)
{
    double x = 0;
    double y = 0;
    if (!number(&x) || !number(&y))
        return false;
    *result = relative ? m_current + QPointF(x, y) : QPointF(x, y);
    return true;
}

bool PathReader::number(double *value)
{
    skipSeparators();
    const QRegularExpressionMatch match = SvgNumbers::pattern().match(m_data, m_at, QRegularExpression::NormalMatch,
                                                                kAnchoredUnchecked);
    if (!match.hasMatch())
        return false;
    *value = match.captured().toDouble();
    m_at = match.capturedEnd();
    return true;
}

// Arc flags are one digit each and may run into what follows ("a5 5 0 01 10 10").
bool PathReader::flag()
{
    skipSeparators();
    if (m_at >= m_data.size() || (m_data.at(m_at) != QLatin1Char('0') && m_data.at(m_at) != QLatin1Char('1')))
        return false;
    ++m_at;
    return true;
}

void PathReader::skipSeparators()
{
    while (m_at < m_data.size() && (m_data.at(m_at).isSpace() || m_data.at(m_at) == QLatin1Char(',')))
        ++m_at;
}

bool PathReader::atNumber()
{
    const QChar c = m_data.at(m_at);
    return c.isDigit() || c == QLatin1Char('-') || c == QLatin1Char('+') || c == QLatin1Char('.');
}

} // namespace

StrokeEnds StrokeEnds::fromPoints(const QList<QPointF> &points)
{
    StrokeEnds ends;
    if (points.isEmpty())
        return ends;
    ends.m_valid = true;
    ends.m_start = points.first();
    ends.m_end = points.last();
    int next = 1;
    while (next < points.size() && points.at(next) == ends.m_start)
        ++next;
    ends.m_startDirection = next < points.size() ? unit(ends.m_start - points.at(next)) : QPointF(-1, 0);
    int previous = int(points.size()) - 2;
    while (previous >= 0 && points.at(previous) == ends.m_end)
        --previous;
    ends.m_endDirection = previous >= 0 ? unit(ends.m_end - points.at(previous)) : QPointF(1, 0);
    return ends;
}

StrokeEnds StrokeEnds::fromPath(const QString &data)
{
    return fromPoints(PathReader(data).points());
}

QList<QPointF> StrokeEnds::parsePoints(const QString &text)
{
    const QList<double> numbers = SvgNumbers::parse(text);
    QList<QPointF> points;
    for (int i = 0; i + 1 < numbers.size(); i += 2)
        points << QPointF(numbers.at(i), numbers.at(i + 1));
    return points;
}
