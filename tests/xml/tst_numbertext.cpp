// SPDX-License-Identifier: MIT
#include "xml/numbertext.h"

#include <QRandomGenerator>
#include <QStringList>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

// Same float, bit for bit (so -0 and 0 differ, and NaN equals NaN).
bool sameFloat(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

bool samePoints(const QList<QPointF> &a, const QList<QPointF> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const QPointF &p, const QPointF &q) { return std::memcmp(&p, &q, sizeof p) == 0; });
}

// The readings the files were designed around, with Qt's string classes.
QList<QPointF> qtPoints(const QString &text)
{
    QList<QPointF> points;
    for (const QString &part : text.split(u' ', Qt::KeepEmptyParts))
        points.append(QPointF(part.section(u',', 0, 0).toFloat(), part.section(u',', 1, 1).toFloat()));
    return points;
}

void addTextRows(std::initializer_list<const char *> texts)
{
    QTest::addColumn<QString>("text");
    for (const char *text : texts)
        QTest::newRow(text[0] ? text : "(empty)") << QString::fromUtf8(text);
}

} // namespace

class TestNumberText : public QObject {
    Q_OBJECT

private slots:
    void readsLikeQt_data()
    {
        addTextRows({"0", "-7", "123456789", "1234567890", "2147483647", "-2147483648", "2147483648",
                     "99999999999", "007", "-0", "0.5", "-.5", "1.", "3.00000", "1.23457e+06", "1E3",
                     "1e-3", "+1", "+1.5", " 1", "1 ", "1,5", "1.2.3", "--1", "-", ".", "", "abc", "1a",
                     "0x10", "nan", "NaN", "inf", "-inf", "infinity", "123456789012345678901234", "0.000000000000000000001",
                     "340282366920938463463374607431768211456", "1e39", "-1e39", "1e-50", "0.1", "0.3",
                     "16777217", "16777217.5", "3.4028235e38", "0.1000000000000000055511151231257827",
                     "12345.678901234567890", "1\u00a0", "\u0661", "1_000"});
    }
    void readsLikeQt()
    {
        QFETCH(QString, text);
        QCOMPARE(NumberText::toInt(text), text.toInt(nullptr, 10));
        const float actual = NumberText::toFloat(text);
        QVERIFY2(sameFloat(actual, text.toFloat()),
                 qPrintable(QStringLiteral("%1 != %2").arg(double(actual)).arg(double(text.toFloat()))));
    }

    void readsRandomPlainNumbersLikeQt()
    {
        QRandomGenerator random(20240607);
        const auto digits = [&random](QString &text, int count) {
            for (int d = 0; d < count; ++d)
                text += QChar(u'0' + int(random.bounded(10)));
        };
        for (int i = 0; i < 20000; ++i) {
            QString text = random.bounded(2) ? QStringLiteral("-") : QString();
            digits(text, int(random.bounded(1, 12)));
            const int fractionDigits = int(random.bounded(0, 12));
            if (fractionDigits > 0)
                digits(text += u'.', fractionDigits);
            QCOMPARE(NumberText::toInt(text), text.toInt(nullptr, 10));
            QVERIFY2(sameFloat(NumberText::toFloat(text), text.toFloat()), qPrintable(text));
            // The same number inside lists: first, middle and last in them.
            const QString list = text + u',' + text + u' ' + text + u',' + text;
            QList<QPointF> points;
            NumberText::appendPoints(points, list);
            QVERIFY2(samePoints(points, qtPoints(list)), qPrintable(list));
            QList<float> floats;
            NumberText::appendFloats(floats, list);
            QVERIFY2(floats.size() == 3 && sameFloat(floats[0], text.toFloat()) && sameFloat(floats[2], text.toFloat()),
                     qPrintable(list));
        }
    }

    void fixedLikeAsprintf_data()
    {
        QTest::addColumn<double>("value");
        const double values[] = {
            0.0, -0.0, -0.001, -0.004999, -0.005, 0.005, 0.015, 0.125, 0.375, 2.675, 1.005, -12.345,
            99.995, 999999.999, 1e15, -1e15, 1e20, -1e300, 1e-300, 123456789.125, 1234567.0,
            std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min(), double(1.1f),
            double(-3.3f), double(0.1f), std::numeric_limits<double>::infinity(),
            -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(),
        };
        for (double value : values)
            QTest::newRow(qPrintable(QString::number(value, 'g', 17))) << value;
    }
    void fixedLikeAsprintf()
    {
        QFETCH(double, value);
        QString text = QStringLiteral("x");
        NumberText::appendFixed2(text, value);
        QCOMPARE(text, QLatin1Char('x') + QString::asprintf("%.2f", value));
        if (std::isfinite(value) && std::abs(value) < 1e9)
            QCOMPARE(NumberText::fixed5(value), QString::asprintf("%0.5f", value));
    }

    void fixed2RandomLikeAsprintf()
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

    void floatAttribute_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("3") << 3.0f << "3";
        QTest::newRow("-2.25") << -2.25f << "-2.25";
        QTest::newRow("1234567") << 1234567.0f << "1.23457e+06";
        QTest::newRow("123456") << 123456.0f << "123456";
        QTest::newRow("0.0001") << 0.0001f << "0.0001";
        QTest::newRow("0.00001") << 0.00001f << "1e-05";
        QTest::newRow("1/3") << 1.0f / 3.0f << "0.333333";
    }
    void floatAttribute()
    {
        QFETCH(float, value);
        QTEST(NumberText::floatAttribute(value), "expected");
    }

    void appendInt()
    {
        for (int value : {0, -987654, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
            QString text = QStringLiteral("=");
            NumberText::appendInt(text, value);
            QCOMPARE(text, QLatin1Char('=') + QString::number(value));
        }
    }

    void lists_data()
    {
        addTextRows({"", ",", "1,2,3", "1,2,", ",1", "1,,2", "-5,x,7.5", " 1, 2", "3.00,4.50", "1e2,+3",
                     "2147483648,1", "nan,inf", "1.,-", "2.5 ,1", "123456789012345.6,1"});
        QTest::newRow("nul inside") << QStringLiteral("0.1") + QChar(0) + QStringLiteral(",2");
    }
    void lists()
    {
        QFETCH(QString, text);
        QList<int> ints{99};
        QList<float> floats{99.0f};
        NumberText::appendInts(ints, text);
        NumberText::appendFloats(floats, text);
        const QStringList parts = text.split(u',', Qt::KeepEmptyParts);
        QCOMPARE(ints.size(), parts.size() + 1);
        QCOMPARE(floats.size(), parts.size() + 1);
        for (int i = 0; i < parts.size(); ++i) {
            QCOMPARE(ints[i + 1], parts[i].toInt(nullptr, 10));
            QVERIFY(sameFloat(floats[i + 1], parts[i].toFloat()));
        }
    }

    void points_data()
    {
        addTextRows({"", "1.50,2.25", "1.00,2.00 3.00,4.00", "1,2  3,4", "1,2 ", "5", "1,2,3", ",7",
                     "a,b c", "-1.25,-0.00 -3,4", "1,2\t3,4", "4195.12414,-13.57 0.1,1024.33",
                     "1234567890.123456,0.0000000000000001", "1e3,2.5E-1", "1.,2 3,-", "-,1 .5,2",
                     "123456789012345,1 1234567890123456,1", "0.12345678901234,1.234567890123456",
                     "1,2,", " ", "-0,-0.0"});
        QTest::newRow("nul inside") << QStringLiteral("1,2") + QChar(0) + QStringLiteral("3,4 5,6");
    }
    void points()
    {
        QFETCH(QString, text);
        QList<QPointF> points{QPointF(9, 9)};
        NumberText::appendPoints(points, text);
        QCOMPARE(points, QList<QPointF>{QPointF(9, 9)} + qtPoints(text));
        QVERIFY(samePoints(points, QList<QPointF>{QPointF(9, 9)} + qtPoints(text)));
    }

    void listTexts()
    {
        QCOMPARE(NumberText::pointsText({}), QString());
        QCOMPARE(NumberText::pointsText({QPointF(1, 2.5), QPointF(-0.125, 1000)}),
                 QStringLiteral("1.00,2.50 -0.13,1000.00")); // ties round away from zero
        QCOMPARE(NumberText::intsText({}), QString());
        QCOMPARE(NumberText::intsText({3, -4, 0}), QStringLiteral("3,-4,0"));
        QCOMPARE(NumberText::floatsText({}), QString());
        QCOMPARE(NumberText::floatsText({0.5f, -2.0f, 1.0f / 3.0f}), QStringLiteral("0.50,-2.00,0.33"));
    }
};

QTEST_APPLESS_MAIN(TestNumberText)
#include "tst_numbertext.moc"
