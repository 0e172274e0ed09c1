#include "object/qpropertytransfer.h"

#include <QtTest>

namespace {
enum Codec { Join, Cap, Marker, Format, Dash };
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
    void codecs_data();
    void codecs();
    void transformWrite();
    void transformRead_data();
    void transformRead();
};

void TestPropertyTransfer::codecs_data()
{
    QTest::addColumn<int>("codec");
    QTest::addColumn<int>("direction");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *tag, Codec c, Direction d, int value, const QString &text) {
        QTest::newRow(tag) << int(c) << int(d) << value << text;
    };
    row("join miter", Join, Both, Qt::MiterJoin, "miter");
    row("join bevel", Join, Both, Qt::BevelJoin, "bevel");
    row("join round", Join, Both, Qt::RoundJoin, "round");
    row("join svg miter", Join, ToText, Qt::SvgMiterJoin, "round");
    row("cap flat", Cap, Both, Qt::FlatCap, "flat");
    row("cap square", Cap, Both, Qt::SquareCap, "square");
    row("cap round is found", Cap, Both, Qt::RoundCap, "found");
    row("cap empty", Cap, FromText, Qt::RoundCap, "");
    row("marker none", Marker, Both, LineCapNone, "Round");
    row("marker arrow", Marker, Both, LineCapArrow, "ArrowAnchor");
    row("marker square", Marker, Both, LineCapSquare, "SquareAnchor");
    row("marker round", Marker, Both, LineCapRound, "RoundAnchor");
    row("marker diamond", Marker, Both, LineCapDiamond, "DiamondAnchor");
    row("marker wrong case", Marker, FromText, LineCapNone, "roundanchor");
    row("format lzn", Format, Both, PageFormatLzn, "lzn");
    row("format doc", Format, Both, PageFormatDoc, "doc");
    row("format ppt", Format, Both, PageFormatPpt, "ppt");
    row("format excel", Format, Both, PageFormatExcel, "excel");
    row("format pdf", Format, Both, PageFormatPdf, "pdf");
    // No format is stored as one U+0000 character, not as the empty text.
    row("format none", Format, Both, PageFormatNone, QString(QChar(0)));
    row("format upper case", Format, FromText, PageFormatNone, "EXCEL");
    row("dash", Dash, Both, Qt::DashLine, "9,3");
    row("dot", Dash, Both, Qt::DotLine, "3,3");
    row("dash dot", Dash, Both, Qt::DashDotLine, "9,3,3,3");
    row("dash dot dot", Dash, Both, Qt::DashDotDotLine, "9,3,3,3,3,3");
    row("solid", Dash, ToText, Qt::SolidLine, "");
    row("custom", Dash, ToText, Qt::CustomDashLine, "");
    row("zero pair is dot", Dash, FromText, Qt::DotLine, "0,0");
    row("odd pair", Dash, FromText, Qt::SolidLine, "9,4");
    row("middle ignored", Dash, FromText, Qt::DashDotLine, "9,7,7,3");
    row("one part", Dash, FromText, Qt::SolidLine, "5");
    row("empty", Dash, FromText, Qt::SolidLine, "");
}

void TestPropertyTransfer::codecs()
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

void TestPropertyTransfer::transformWrite()
{
    QString text;
    QVERIFY(QPropertyTransfer::transformQt2Svg({10, 20}, {1.5, 2}, 30, true, false, {50, 40}, text));
    QCOMPARE(text, QStringLiteral("translate(10.00,20.00)translate(50.00,40.00)scale(-1.50,2.00)"
                                  "translate(-50.00,-40.00)rotate(30.00,50.00,40.00)"));
}

void TestPropertyTransfer::transformRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QPointF>("pos");
    QTest::addColumn<QSizeF>("scale");
    QTest::addColumn<float>("angle");
    QTest::addColumn<bool>("flipH");
    QTest::addColumn<bool>("flipV");
    const QPointF keptPos(-1, -1);
    const QSizeF keptScale(7, 7);
    for (int flips = 0; flips < 4; ++flips) {
        QString text; // the centre written here is not read back
        QPropertyTransfer::transformQt2Svg({-3.25, 7}, {0.5, 3}, -45.5f, flips & 1, flips & 2,
                                           {50, 40}, text);
        QTest::addRow("round trip %d", flips)
            << text << QPointF(-3.25, 7) << QSizeF(0.5, 3) << -45.5f << bool(flips & 1)
            << bool(flips & 2);
    }
    QTest::newRow("translate only") << "translate(4,5)" << QPointF(4, 5) << keptScale << 99.0f
                                    << false << false;
    QTest::newRow("any opening bracket") << "translate[4,5)scale<2,-3)rotate{6,0,0)"
                                         << QPointF(4, 5) << QSizeF(2, 3) << 6.0f << false << true;
    // After a missing keyword the search starts at the last character, so
    // nothing later is found.
    QTest::newRow("scale without translate")
        << "scale(2,3)rotate(45,0,0)" << keptPos << keptScale << 99.0f << false << false;
    QTest::newRow("rotate only") << "rotate(45,0,0)" << keptPos << keptScale << 99.0f << false
                                 << false;
    QTest::newRow("no scale stops rotate")
        << "translate(1,2)rotate(45,0,0)" << QPointF(1, 2) << keptScale << 99.0f << false << false;
    QTest::newRow("malformed numbers") << "translate(x,y)scale(a,b)rotate(c,0,0)" << QPointF(0, 0)
                                       << QSizeF(0, 0) << 0.0f << false << false;
}

void TestPropertyTransfer::transformRead()
{
    QFETCH(QString, text);
    QPointF pos(-1, -1);
    QSizeF scale(7, 7);
    float angle = 99.0f;
    bool flipH = false;
    bool flipV = false;
    QVERIFY(QPropertyTransfer::transformSvg2Qt(text, pos, scale, angle, flipH, flipV));
    QTEST(pos, "pos");
    QTEST(scale, "scale");
    QTEST(angle, "angle");
    QTEST(flipH, "flipH");
    QTEST(flipV, "flipV");
}

QTEST_APPLESS_MAIN(TestPropertyTransfer)
#include "tst_propertytransfer.moc"
