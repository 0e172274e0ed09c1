#include "xml/numbertext.h"

#include <QRandomGenerator>
#include <QStringList>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

// Same float, bit for bit (so -0 and 0 differ, and NaN equals NaN).
bool sameFloat(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

// The readings the files were designed around, with Qt's string classes.
QList<QPointF> qtPoints(const QString &text)
{
    QList<QPointF> points;
    const QStringList parts = text.split(u' ', Qt::KeepEmptyParts);
    for (const QString &part : parts)
        points.append(QPointF(part.section(u',', 0, 0).toFloat(), part.section(u',', 1, 1).toFloat()));
    return points;
}

QList<int> qtInts(const QString &text)
{
    QList<int> values;
    const QStringList parts = text.split(u',', Qt::KeepEmptyParts);
    for (const QString &part : parts)
        values.append(part.toInt(nullptr, 10));
    return values;
}

QList<float> qtFloats(const QString &text)
{
    QList<float> values;
    const QStringList parts = text.split(u',', Qt::KeepEmptyParts);
    for (const QString &part : parts)
        values.append(part.toFloat());
    return values;
}

} // namespace

class TestNumberText : public QObject {
    Q_OBJECT

private slots:
    void readsLikeQt_data();
    void readsLikeQt();
    void readsRandomPlainNumbersLikeQt();
    void fixed2LikeAsprintf_data();
    void fixed2LikeAsprintf();
    void fixed2RandomLikeAsprintf();
    void fixed5_data();
    void fixed5();
    void floatAttribute_data();
    void floatAttribute();
    void appendInt();
    void lists_data();
    void lists();
    void points_data();
    void points();
    void listTexts();
};

void TestNumberText::readsLikeQt_data()
{
    QTest::addColumn<QString>("text");
    const char *const texts[] = {
        "0", "7", "-7", "123456789", "-123456789", "1234567890", "2147483647", "-2147483648",
        "2147483648", "99999999999", "007", "-007", "-0", "0.5", "-0.5", ".5", "-.5", "1.",
        "1.25", "3.00000", "-0.25000", "1234570", "1.23457e+06", "1e3", "1E3", "1e-3", "+1",
        "+1.5", " 1", "1 ", " 1.5 ", "1,5", "1.2.3", "--1", "-", ".", "", "abc", "1a",
        "0x10", "nan", "NaN", "inf", "-inf", "infinity", "123456789012345678901234",
        "0.000000000000000000001", "340282366920938463463374607431768211456",
        "1e39", "-1e39", "1e-50", "0.1", "0.2", "0.3", "16777217", "16777217.5",
        "3.4028235e38", "0.1000000000000000055511151231257827", "12345.678901234567890",
        "1\u00a0", "\u0661", "١٢", "1_000", "1'000",
    };
    for (const char *text : texts)
        QTest::newRow(text[0] ? text : "(empty)") << QString::fromUtf8(text);
}

void TestNumberText::readsLikeQt()
{
    QFETCH(QString, text);
    QCOMPARE(NumberText::toInt(text), text.toInt(nullptr, 10));
    const float expected = text.toFloat();
    const float actual = NumberText::toFloat(text);
    QVERIFY2(sameFloat(actual, expected),
             qPrintable(QStringLiteral("%1 != %2").arg(double(actual)).arg(double(expected))));
}

void TestNumberText::readsRandomPlainNumbersLikeQt()
{
    QRandomGenerator random(20240607);
    for (int i = 0; i < 20000; ++i) {
        const int intDigits = int(random.bounded(1, 12));
        const int fractionDigits = int(random.bounded(0, 12));
        QString text = random.bounded(2) ? QStringLiteral("-") : QString();
        for (int d = 0; d < intDigits; ++d)
            text += QChar(u'0' + int(random.bounded(10)));
        if (fractionDigits > 0) {
            text += u'.';
            for (int d = 0; d < fractionDigits; ++d)
                text += QChar(u'0' + int(random.bounded(10)));
        }
        QCOMPARE(NumberText::toInt(text), text.toInt(nullptr, 10));
        QVERIFY2(sameFloat(NumberText::toFloat(text), text.toFloat()), qPrintable(text));
    }
}

void TestNumberText::fixed2LikeAsprintf_data()
{
    QTest::addColumn<double>("value");
    const double values[] = {
        0.0, -0.0, -0.001, -0.004999, -0.005, 0.005, 0.015, 0.025, 0.125, 0.375, 2.675,
        1.005, 1.0, -1.0, 12.345, -12.345, 99.995, 999999.999, 1e14, 1e15, -1e15, 1e20,
        -1e300, 1e-300, 123456789.125, std::numeric_limits<double>::max(),
        std::numeric_limits<double>::denorm_min(), double(1.1f), double(-3.3f), double(0.1f),
        std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN(),
    };
    for (double value : values)
        QTest::newRow(qPrintable(QString::number(value, 'g', 17))) << value;
}

void TestNumberText::fixed2LikeAsprintf()
{
    QFETCH(double, value);
    QString text = QStringLiteral("x");
    NumberText::appendFixed2(text, value);
    QCOMPARE(text, QLatin1Char('x') + QString::asprintf("%.2f", value));
}

void TestNumberText::fixed2RandomLikeAsprintf()
{
    QRandomGenerator random(7);
    for (int i = 0; i < 20000; ++i) {
        // Coordinates of strokes: floats in page range, near-halves that
        // test the rounding direction, and eighths, the exact ties.
        const double value = i % 3 == 0 ? double(float(random.generateDouble() * 4000.0 - 2000.0))
            : i % 3 == 1                 ? double(random.bounded(-200000, 200000)) / 1000.0 + 0.005
                                         : double(random.bounded(-80000, 80000)) / 8.0;
        QString text;
        NumberText::appendFixed2(text, value);
        QCOMPARE(text, QString::asprintf("%.2f", value));
    }
}

void TestNumberText::fixed5_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("1.5") << 1.5 << "1.50000";
    QTest::newRow("-0.25") << -0.25 << "-0.25000";
    QTest::newRow("3") << 3.0 << "3.00000";
    QTest::newRow("float 0.1") << double(0.1f) << "0.10000";
    QTest::newRow("1234567") << 1234567.0 << "1234567.00000";
}

void TestNumberText::fixed5()
{
    QFETCH(double, value);
    QFETCH(QString, expected);
    QCOMPARE(NumberText::fixed5(value), expected);
    QCOMPARE(NumberText::fixed5(value), QString::asprintf("%0.5f", value));
}

void TestNumberText::floatAttribute_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("3") << 3.0f << "3";
    QTest::newRow("0.5") << 0.5f << "0.5";
    QTest::newRow("1234567") << 1234567.0f << "1.23457e+06";
    QTest::newRow("-2.25") << -2.25f << "-2.25";
    QTest::newRow("0.1") << 0.1f << "0.1";
    QTest::newRow("123456") << 123456.0f << "123456";
    QTest::newRow("0.0001") << 0.0001f << "0.0001";
    QTest::newRow("0.00001") << 0.00001f << "1e-05";
    QTest::newRow("1/3") << 1.0f / 3.0f << "0.333333";
}

void TestNumberText::floatAttribute()
{
    QFETCH(float, value);
    QFETCH(QString, expected);
    QCOMPARE(NumberText::floatAttribute(value), expected);
}

void TestNumberText::appendInt()
{
    for (int value : {0, 1, -1, 42, -987654, std::numeric_limits<int>::max(),
                      std::numeric_limits<int>::min()}) {
        QString text = QStringLiteral("=");
        NumberText::appendInt(text, value);
        QCOMPARE(text, QLatin1Char('=') + QString::asprintf("%d", value));
    }
}

void TestNumberText::lists_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"", ",", "1", "1,2,3", "1,2,", ",1", "1,,2", "-5,x,7.5", " 1, 2",
                             "3.00,4.50", "1e2,+3", "2147483648,1", "nan,inf"})
        QTest::newRow(text[0] ? text : "(empty)") << QString::fromLatin1(text);
}

void TestNumberText::lists()
{
    QFETCH(QString, text);
    QList<int> ints{99};
    NumberText::appendInts(ints, text);
    QCOMPARE(ints, QList<int>{99} + qtInts(text));

    QList<float> floats{99.0f};
    NumberText::appendFloats(floats, text);
    const QList<float> expected = QList<float>{99.0f} + qtFloats(text);
    QCOMPARE(floats.size(), expected.size());
    for (int i = 0; i < floats.size(); ++i)
        QVERIFY(sameFloat(floats[i], expected[i]));
}

void TestNumberText::points_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("count");
    QTest::newRow("empty gives one origin") << "" << 1;
    QTest::newRow("one") << "1.50,2.25" << 1;
    QTest::newRow("two") << "1.00,2.00 3.00,4.00" << 2;
    QTest::newRow("double blank adds origin") << "1,2  3,4" << 3;
    QTest::newRow("trailing blank") << "1,2 " << 2;
    QTest::newRow("missing y") << "5" << 1;
    QTest::newRow("third field ignored") << "1,2,3" << 1;
    QTest::newRow("empty x") << ",7" << 1;
    QTest::newRow("garbage") << "a,b c" << 2;
    QTest::newRow("negative") << "-1.25,-0.00 -3,4" << 2;
    QTest::newRow("tab is no separator") << "1,2\t3,4" << 1;
    // Values a float cannot hold: each coordinate is rounded to float.
    QTest::newRow("inexact") << "4195.12414,-13.57 0.1,1024.33" << 2;
    QTest::newRow("sixteen digits") << "1234567890.123456,0.0000000000000001" << 1;
    QTest::newRow("exponent") << "1e3,2.5E-1" << 1;
}

void TestNumberText::points()
{
    QFETCH(QString, text);
    QFETCH(int, count);
    QList<QPointF> points{QPointF(9, 9)};
    NumberText::appendPoints(points, text);
    QCOMPARE(points, QList<QPointF>{QPointF(9, 9)} + qtPoints(text));
    QCOMPARE(points.size(), count + 1);
}

void TestNumberText::listTexts()
{
    QCOMPARE(NumberText::pointsText({}), QString());
    QCOMPARE(NumberText::pointsText({QPointF(1, 2.5), QPointF(-0.125, 1000)}),
             QStringLiteral("1.00,2.50 -0.13,1000.00")); // ties round away from zero
    QCOMPARE(NumberText::intsText({}), QString());
    QCOMPARE(NumberText::intsText({3, -4, 0}), QStringLiteral("3,-4,0"));
    QCOMPARE(NumberText::floatsText({}), QString());
    QCOMPARE(NumberText::floatsText({0.5f, -2.0f, 1.0f / 3.0f}), QStringLiteral("0.50,-2.00,0.33"));

    // What is written reads back as the same two decimals.
    const QList<QPointF> points{QPointF(12.34, -5.5), QPointF(0, 7)};
    QList<QPointF> back;
    NumberText::appendPoints(back, NumberText::pointsText(points));
    QCOMPARE(back.size(), 2);
    QCOMPARE(float(back[0].x()), 12.34f);
    QCOMPARE(back[0].y(), -5.5);
}

QTEST_APPLESS_MAIN(TestNumberText)
#include "tst_numbertext.moc"
