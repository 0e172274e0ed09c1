// SPDX-License-Identifier: MIT
#include "object/qpropertytransfer.h"

#include <QtTest>

namespace {
enum Codec { Join, Cap, Marker, Format, Dash };
const char *const codecNames[] = {"join", "cap", "marker", "format", "dash"};
const char *const directionNames[] = {"write", "read", "both"};
enum Direction { ToText, FromText, Both };

// Writes value (dash: style, pen width 3) to text through the codec under test.
QString write(int codec, int value)
{
    QString text = QStringLiteral("old");
    bool ok = false;
    switch (codec) {
    case Join: ok = QPropertyTransfer::penJoinQt2Svg(Qt::PenJoinStyle(value), text); break;
    case Cap: ok = QPropertyTransfer::penCapQt2Svg(Qt::PenCapStyle(value), text); break;
    case Marker: ok = QPropertyTransfer::lineCapQt2Svg(LineCapStyle(value), text); break;
    case Format: ok = QPropertyTransfer::formatID2PageFormat(PageFormat(value), text); break;
    default: ok = QPropertyTransfer::dashQt2Svg(Qt::PenStyle(value), 3, text); break;
    }
    return ok ? text : QStringLiteral("failed");
}

int read(int codec, const QString &text, bool &ok)
{
    Qt::PenJoinStyle join = Qt::SvgMiterJoin;
    Qt::PenCapStyle cap = Qt::MPenCapStyle;
    LineCapStyle marker = LineCapStyle(-1);
    PageFormat format = PageFormat(-1);
    Qt::PenStyle style = Qt::MPenStyle;
    switch (codec) {
    case Join: ok = QPropertyTransfer::penJoinSvg2Qt(text, join); return join;
    case Cap: ok = QPropertyTransfer::penCapSvg2Qt(text, cap); return cap;
    case Marker: ok = QPropertyTransfer::lineCapSvg2Qt(text, marker); return marker;
    case Format: ok = QPropertyTransfer::pageFormat2FormatID(text, format); return format;
    default: ok = QPropertyTransfer::dashSvg2Qt(text, style); return style;
    }
}
} // namespace

class TestPropertyTransfer : public QObject {
    Q_OBJECT

private slots:
    void codecs_data()
    {
        QTest::addColumn<int>("codec");
        QTest::addColumn<int>("direction");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("text");
        const auto rows = [](Codec c, Direction d, std::initializer_list<std::pair<int, QString>> pairs) {
            for (const auto &[value, text] : pairs)
                QTest::addRow("%s %s %d '%s'", codecNames[c], directionNames[d], value, qPrintable(text))
                    << int(c) << int(d) << value << text;
        };
        rows(Join, Both, {{Qt::MiterJoin, "miter"}, {Qt::BevelJoin, "bevel"}, {Qt::RoundJoin, "round"}});
        rows(Join, ToText, {{Qt::SvgMiterJoin, "round"}});
        rows(Cap, Both, {{Qt::FlatCap, "flat"}, {Qt::SquareCap, "square"}, {Qt::RoundCap, "found"}});
        rows(Cap, FromText, {{Qt::RoundCap, ""}});
        rows(Marker, Both, {{LineCapNone, "Round"}, {LineCapArrow, "ArrowAnchor"}, {LineCapSquare, "SquareAnchor"},
                            {LineCapRound, "RoundAnchor"}, {LineCapDiamond, "DiamondAnchor"}});
        rows(Marker, FromText, {{LineCapNone, "roundanchor"}});
        // No format is stored as one U+0000 character, not as the empty text.
        rows(Format, Both, {{PageFormatLzn, "lzn"}, {PageFormatDoc, "doc"}, {PageFormatPpt, "ppt"},
                            {PageFormatExcel, "excel"}, {PageFormatPdf, "pdf"}, {PageFormatNone, QString(QChar(0))}});
        rows(Format, FromText, {{PageFormatNone, "EXCEL"}});
        rows(Dash, Both, {{Qt::DashLine, "9,3"}, {Qt::DotLine, "3,3"}, {Qt::DashDotLine, "9,3,3,3"},
                          {Qt::DashDotDotLine, "9,3,3,3,3,3"}, {Qt::SolidLine, ""}});
        rows(Dash, ToText, {{Qt::CustomDashLine, ""}});
        rows(Dash, FromText, {{Qt::DotLine, "0,0"}, {Qt::SolidLine, "9,4"}, {Qt::DashDotLine, "9,7,7,3"}, {Qt::SolidLine, "5"}});
    }
    void codecs()
    {
        QFETCH(int, codec);
        QFETCH(int, direction);
        QFETCH(int, value);
        QFETCH(QString, text);
        if (direction != FromText)
            QCOMPARE(write(codec, value), text);
        if (direction != ToText) {
            bool ok = false;
            QCOMPARE(read(codec, text, ok), value);
            // Only an unknown page format id reports failure.
            QCOMPARE(ok, codec != Format || value != PageFormatNone);
        }
    }

    void transformWrite()
    {
        QString text;
        QVERIFY(QPropertyTransfer::transformQt2Svg({10, 20}, {1.5, 2}, 30, true, false, {50, 40}, text));
        QCOMPARE(text, QStringLiteral("translate(10.00,20.00)translate(50.00,40.00)scale(-1.50,2.00)"
                                      "translate(-50.00,-40.00)rotate(30.00,50.00,40.00)"));
    }

    void transformRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QPointF>("pos");
        QTest::addColumn<QSizeF>("scale");
        QTest::addColumn<float>("angle");
        QTest::addColumn<int>("flips");
        const QPointF keptPos(-1, -1);
        const QSizeF keptScale(7, 7);
        for (int flips = 0; flips < 4; ++flips) {
            QString text; // the centre written here is not read back
            QPropertyTransfer::transformQt2Svg({-3.25, 7}, {0.5, 3}, -45.5f, flips & 1, flips & 2, {50, 40}, text);
            QTest::addRow("round trip %d", flips) << text << QPointF(-3.25, 7) << QSizeF(0.5, 3) << -45.5f << flips;
        }
        QTest::newRow("translate only") << "translate(4,5)" << QPointF(4, 5) << keptScale << 99.0f << 0;
        QTest::newRow("any opening bracket")
            << "translate[4,5)scale<2,-3)rotate{6,0,0)" << QPointF(4, 5) << QSizeF(2, 3) << 6.0f << 2;
        // After a missing keyword the search starts at the last character, so
        // nothing later is found.
        QTest::newRow("scale without translate") << "scale(2,3)rotate(45,0,0)" << keptPos << keptScale << 99.0f << 0;
        QTest::newRow("no scale stops rotate") << "translate(1,2)rotate(45,0,0)" << QPointF(1, 2) << keptScale << 99.0f << 0;
        QTest::newRow("malformed numbers")
            << "translate(x,y)scale(a,b)rotate(c,0,0)" << QPointF(0, 0) << QSizeF(0, 0) << 0.0f << 0;
    }
    void transformRead()
    {
        QFETCH(QString, text);
        QPointF pos(-1, -1);
        QSizeF scale(7, 7);
        float angle = 99.0f;
        bool flipH = false, flipV = false;
        QVERIFY(QPropertyTransfer::transformSvg2Qt(text, pos, scale, angle, flipH, flipV));
        QTEST(pos, "pos");
        QTEST(scale, "scale");
        QTEST(angle, "angle");
        QTEST(int(flipH) | int(flipV) << 1, "flips");
    }
};

QTEST_APPLESS_MAIN(TestPropertyTransfer)
#include "tst_propertytransfer.moc"
