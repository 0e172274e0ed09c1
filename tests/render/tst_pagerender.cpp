// SPDX-License-Identifier: MIT
// Pages made through the library's interfaces, drawn by `lxdoc render`, and
// compared pixel by pixel with the same geometry drawn by QPainter directly.
// Two pictures agree when at most kTolerance pixels differ by more than
// kChannelSlack in some colour channel: antialiased edges may differ by a
// shade, a missing cap, head or misplaced picture differs by hundreds of
// pixels.

#include "testsupport.h"
#include "lxdoc.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <functional>

namespace {

const QSize kPage(200, 150);
const int kChannelSlack = 64;
const int kTolerance = 40;
const QColor kInk(0x20, 0x40, 0xa0);
const QColor kSecret(0xff, 0x00, 0xff);

using Build = std::function<void(ILXFrontPage *page, const QString &picture)>;
using Paint = std::function<void(QPainter &painter, const QImage &picture)>;

struct Released {
    void operator()(ILXObject *object) const { object->release(); }
};
using Object = std::unique_ptr<ILXObject, Released>;

Object add(ILXFrontPage *page, const char *element)
{
    return Object(page->newLXObject(QString::fromLatin1(element)));
}

void setNumbers(ILXObject *object, const QList<QPair<const char *, float>> &numbers)
{
    for (const auto &number : numbers)
        object->setLXObjectAttribute(QString::fromLatin1(number.first), number.second);
}

// "Round" (LineCapNone) is how the board stores a bare end.
void styleStroke(ILXObject *object, float width, Qt::PenCapStyle cap, LineCapStyle start = LineCapNone,
                 LineCapStyle end = LineCapNone)
{
    object->setStroke(kInk);
    object->setStrokeWidth(width);
    object->setFill(false, QColor());
    object->setStrokeLineCap(cap);
    object->setMarkerStart(start);
    object->setMarkerEnd(end);
}

Object addLine(ILXFrontPage *page, const QLineF &line, float width, Qt::PenCapStyle cap)
{
    Object object = add(page, "line");
    setNumbers(object.get(), {{"x1", float(line.x1())}, {"y1", float(line.y1())},
                              {"x2", float(line.x2())}, {"y2", float(line.y2())}});
    styleStroke(object.get(), width, cap);
    return object;
}

void paintLine(QPainter &painter, const QLineF &line, float width, Qt::PenCapStyle cap)
{
    painter.setPen(QPen(kInk, width, Qt::SolidLine, cap));
    painter.drawLine(line);
}

// A decoration drawn the way the board shows it, in a frame whose x axis
// points away from the stroke at its end; u is the stroke width (at least 2).
void paintDecoration(QPainter &painter, const QPointF &at, const QPointF &away, double u, LineCapStyle kind)
{
    painter.save();
    painter.translate(at);
    painter.rotate(std::atan2(away.y(), away.x()) * 180 / M_PI);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kInk);
    if (kind == LineCapArrow)
        painter.drawPolygon(QPolygonF({QPointF(0, -1.5 * u), QPointF(3 * u, 0), QPointF(0, 1.5 * u)}));
    else if (kind == LineCapSquare)
        painter.drawRect(QRectF(-1.5 * u, -1.5 * u, 3 * u, 3 * u));
    else
        painter.drawEllipse(QPointF(), 1.5 * u, 1.5 * u);
    painter.restore();
}

QImage picture()
{
    // Left half red, right half blue: a flip or a crop shows.
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(20, 0, 20, 20, Qt::blue);
    return image;
}

Object addImage(ILXFrontPage *page, const QRectF &box, const char *hrefName, const QString &href, const QString &aspect)
{
    Object object = add(page, "image");
    setNumbers(object.get(), {{"x", float(box.x())}, {"y", float(box.y())},
                              {"width", float(box.width())}, {"height", float(box.height())}});
    object->setLXObjectAttribute(QString::fromLatin1(hrefName), href);
    if (!aspect.isEmpty())
        object->setLXObjectAttribute(QStringLiteral("preserveAspectRatio"), aspect);
    return object;
}

int differingPixels(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y);
            const QColor q = b.pixelColor(x, y);
            if (std::abs(p.red() - q.red()) > kChannelSlack || std::abs(p.green() - q.green()) > kChannelSlack
                || std::abs(p.blue() - q.blue()) > kChannelSlack)
                ++count;
        }
    }
    return count;
}

int pixelsOf(const QImage &image, const QColor &colour)
{
    QImage plain(image.size(), QImage::Format_RGB32);
    plain.fill(colour);
    return image.width() * image.height() - differingPixels(plain, image);
}

// Long strokes zigzagging from edge to edge: the antialiasing rasteriser's
// work grows faster than the points do, so such a page could take minutes.
QByteArray zigzagPage(int strokes, int points)
{
    QByteArray page = "<svg width=\"800\" height=\"600\">";
    for (int stroke = 0; stroke < strokes; ++stroke) {
        page += "<polyline fill=\"none\" stroke=\"#2040a0\" stroke-width=\"8\" points=\"";
        for (int i = 0; i < points; ++i)
            page += QByteArray::number((i * 37 + stroke * 11) % 800) + ',' + ((i + stroke) % 2 ? "600 " : "0 ");
        page += "\"/>";
    }
    return page + "</svg>";
}

} // namespace

Q_DECLARE_METATYPE(Build)
Q_DECLARE_METATYPE(Paint)

class TestPageRender : public QObject {
    Q_OBJECT

private:
    // Builds a one-page lesson through the library and renders it: the
    // rendered first page, or a null image with the tool's stderr in error.
    QImage render(const Build &build);
    QImage renderLesson(const QString &lesson, const QStringList &options = {}, QString *error = nullptr);
    QString lessonFile(const Build &build);
    QProcess *runTool(const QStringList &arguments);

    QTemporaryDir m_dir;
    QString m_picture;
    QString m_secret;
    int m_lessons = 0;

private slots:
    void initTestCase();
    void drawsBoardEncodings_data();
    void drawsBoardEncodings();
    void frameStaysBehindText();
    void hostilePageEndsQuickly_data();
    void hostilePageEndsQuickly();
    void limitsNamedAndRaisable_data();
    void limitsNamedAndRaisable();
};

void TestPageRender::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_picture = m_dir.filePath(QStringLiteral("p.png"));
    QVERIFY(picture().save(m_picture));
    QImage secret(40, 40, QImage::Format_RGB32);
    secret.fill(kSecret);
    m_secret = m_dir.filePath(QStringLiteral("outside/secret.png"));
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("outside")));
    QVERIFY(secret.save(m_secret));
}

QString TestPageRender::lessonFile(const Build &build)
{
    const QString archive = m_dir.filePath(QStringLiteral("lesson-%1.lzn").arg(++m_lessons));
    ILXDocument *document = get_interface();
    [&] {
        QVERIFY(document->init(QString(), false));
        QVERIFY(document->newFile(m_dir.filePath(QStringLiteral("work-%1").arg(m_lessons)), true));
        QString copy;
        QVERIFY(document->getLXResMgr()->addImageFile(m_picture, copy));
        ILXFrontPage *page = document->insertFrontPage(0, 1);
        QVERIFY(page);
        page->setPageSize(kPage);
        page->setPageBgColor(Qt::white);
        page->setForeground(true);
        build(page, QDir(document->getDocPath()).relativeFilePath(copy));
        QVERIFY(page->saveFile());
        page->release();
        QVERIFY(document->saveFile(archive, true));
    }();
    document->release(false);
    return archive;
}

QProcess *TestPageRender::runTool(const QStringList &arguments)
{
    auto *tool = new QProcess(this);
    tool->start(QStringLiteral(LXDOC_BIN_DIR "/lxdoc"), arguments);
    tool->waitForFinished(int(kHangBoundMs));
    return tool;
}

QImage TestPageRender::render(const Build &build)
{
    return renderLesson(lessonFile(build));
}

QImage TestPageRender::renderLesson(const QString &lesson, const QStringList &options, QString *error)
{
    const QString out = lesson + QStringLiteral("-out");
    QProcess *tool = runTool(QStringList{QStringLiteral("render"), lesson, out} + options);
    if (error)
        *error = QString::fromUtf8(tool->readAllStandardError());
    // Large renderings are looked at in page pixels; the shapes compared are
    // far larger than one.
    const QImage drawn(QDir(out).filePath(QStringLiteral("page-1.png")));
    return drawn.scaled(drawn.size().boundedTo(kPage)).convertToFormat(QImage::Format_RGB32);
}

void TestPageRender::drawsBoardEncodings_data()
{
    QTest::addColumn<Build>("build");
    QTest::addColumn<Paint>("paint");
    const QLineF across(50, 75, 150, 75);
    for (const Qt::PenCapStyle cap : {Qt::RoundCap, Qt::FlatCap, Qt::SquareCap}) {
        QTest::addRow("line cap %d", int(cap))
            << Build([=](ILXFrontPage *page, const QString &) { addLine(page, across, 30, cap); })
            << Paint([=](QPainter &painter, const QImage &) { paintLine(painter, across, 30, cap); });
    }
    const QLineF line(30, 75, 130, 75);
    QTest::newRow("arrow at the end of a line")
        << Build([=](ILXFrontPage *page, const QString &) { addLine(page, line, 8, Qt::FlatCap)->setMarkerEnd(LineCapArrow); })
        << Paint([=](QPainter &painter, const QImage &) {
               paintLine(painter, line, 8, Qt::FlatCap);
               paintDecoration(painter, line.p2(), QPointF(1, 0), 8, LineCapArrow);
           });
    QTest::newRow("square and dot on a polyline's first and last segment")
        << Build([](ILXFrontPage *page, const QString &) {
               Object object = add(page, "polyline");
               QList<QPointF> points{{40, 110}, {100, 50}, {160, 110}};
               object->setPoints(points, false);
               styleStroke(object.get(), 6, Qt::FlatCap, LineCapSquare, LineCapRound);
           })
        << Paint([](QPainter &painter, const QImage &) {
               painter.setPen(QPen(kInk, 6, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
               painter.drawPolyline(QPolygonF({QPointF(40, 110), QPointF(100, 50), QPointF(160, 110)}));
               paintDecoration(painter, QPointF(40, 110), QPointF(-1, 1), 6, LineCapSquare);
               paintDecoration(painter, QPointF(160, 110), QPointF(1, 1), 6, LineCapRound);
           });
    QTest::newRow("arrow along a curve's last tangent, start left bare")
        << Build([](ILXFrontPage *page, const QString &) {
               Object object = add(page, "path");
               object->setLXObjectAttribute(QStringLiteral("d"), QStringLiteral("M 30 100 C 30 20 150 20 150 90"));
               styleStroke(object.get(), 5, Qt::FlatCap, LineCapNone, LineCapArrow);
           })
        << Paint([](QPainter &painter, const QImage &) {
               QPainterPath path(QPointF(30, 100));
               path.cubicTo(30, 20, 150, 20, 150, 90);
               painter.setPen(QPen(kInk, 5, Qt::SolidLine, Qt::FlatCap));
               painter.drawPath(path);
               paintDecoration(painter, QPointF(150, 90), QPointF(0, 1), 5, LineCapArrow);
           });
    QTest::newRow("href picture keeps its proportions")
        << Build([](ILXFrontPage *page, const QString &name) { addImage(page, QRectF(20, 20, 120, 120), "href", name, QString()); })
        << Paint([](QPainter &painter, const QImage &image) { painter.drawImage(QRectF(20, 50, 120, 60), image); });
    QTest::newRow("xlink:href picture sliced from its top left")
        << Build([](ILXFrontPage *page, const QString &name) {
               addImage(page, QRectF(20, 20, 60, 120), "xlink:href", name, QStringLiteral("xMinYMin slice"));
           })
        << Paint([](QPainter &painter, const QImage &image) {
               painter.setClipRect(QRectF(20, 20, 60, 120));
               painter.drawImage(QRectF(20, 20, 240, 120), image);
           });
    QTest::newRow("picture stretched when told so")
        << Build([](ILXFrontPage *page, const QString &name) { addImage(page, QRectF(20, 20, 160, 100), "href", name, QStringLiteral("none")); })
        << Paint([](QPainter &painter, const QImage &image) { painter.drawImage(QRectF(20, 20, 160, 100), image); });
}

void TestPageRender::drawsBoardEncodings()
{
    QFETCH(Build, build);
    QFETCH(Paint, paint);
    const QImage drawn = render(build);
    QCOMPARE(drawn.size(), kPage);
    QImage reference(kPage, QImage::Format_RGB32);
    reference.fill(Qt::white);
    QPainter painter(&reference);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    paint(painter, picture());
    painter.end();
    const int differing = differingPixels(drawn, reference);
    if (differing > kTolerance) {
        drawn.save(m_dir.filePath(QStringLiteral("drawn.png")));
        reference.save(m_dir.filePath(QStringLiteral("reference.png")));
    }
    QVERIFY2(differing <= kTolerance, qPrintable(QStringLiteral("%1 pixels differ").arg(differing)));
}

void TestPageRender::frameStaysBehindText()
{
    const auto textObject = [](bool frameFirst) {
        return Build([=](ILXFrontPage *page, const QString &) {
            Object object = add(page, "g");
            object->setBound(QRectF(20, 20, 160, 110));
            object->setTransform(QPointF(20, 20), QSizeF(1, 1), 0, false, false, QPointF());
            Qt::PenStyle solid = Qt::SolidLine;
            const QString text = QStringLiteral("<svg><text x=\"10\" y=\"80\" font-size=\"80\" fill=\"#000000\">MW</text></svg>");
            if (frameFirst)
                object->setTextFrame(kInk, 2, solid, true, Qt::yellow);
            object->setSvgText(text);
            if (!frameFirst)
                object->setTextFrame(kInk, 2, solid, true, Qt::yellow);
        });
    };
    const QImage frameAfter = render(textObject(false));
    QVERIFY(!frameAfter.isNull());
    QVERIFY2(pixelsOf(frameAfter, Qt::black) > 200, "the text is hidden");
    QCOMPARE(frameAfter, render(textObject(true)));
}

void TestPageRender::hostilePageEndsQuickly_data()
{
    QTest::addColumn<Build>("build");
    QTest::addColumn<QString>("size");
    const QString secret = m_secret;
    const auto picture = [](const QString &href) {
        return Build([=](ILXFrontPage *page, const QString &) {
            addImage(page, QRectF(0, 0, 200, 150), "href", href, QStringLiteral("none"));
            addImage(page, QRectF(0, 0, 200, 150), "xlink:href", href, QStringLiteral("none"));
        });
    };
    QTest::newRow("absolute picture") << picture(secret) << QString();
    QTest::newRow("picture up and out") << picture(QStringLiteral("images/../../../../../../../../../..") + secret) << QString();
    QTest::newRow("file URL picture") << picture(QStringLiteral("file://") + secret) << QString();
    QTest::newRow("embedded SVG naming the outside")
        << picture(QStringLiteral("data:image/svg+xml;base64,")
                   + QString::fromLatin1(QByteArray("<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink'>"
                                                    "<image width='200' height='150' xlink:href='" + secret.toUtf8() + "'/></svg>").toBase64()))
        << QString();
    const auto shape = [](const char *element, const char *name, const QString &value) {
        return Build([=](ILXFrontPage *page, const QString &) {
            Object object = add(page, element);
            setNumbers(object.get(), {{"x1", 0}, {"y1", 0}, {"x2", 100}, {"y2", 100}, {"width", 100}, {"height", 100}});
            object->setStroke(kSecret);
            object->setFill(true, kSecret);
            object->setStrokeWidth(4);
            object->setLXObjectAttribute(QString::fromLatin1(name), value);
        });
    };
    const QString big = QStringLiteral("4000x4000");
    QTest::newRow("infinite line end") << shape("line", "x2", QStringLiteral("1e999")) << big;
    QTest::newRow("not-a-number width") << shape("rect", "width", QStringLiteral("NaN")) << big;
    QTest::newRow("absurd transform") << shape("rect", "transform", QStringLiteral("scale(1e300)")) << big;
    QTest::newRow("absurd stroke width") << shape("line", "stroke-width", QStringLiteral("1e200")) << big;
    QString points;
    for (int i = 0; points.size() < 50 * 1024 * 1024; ++i)
        points += QStringLiteral("%1,%2 ").arg(i % 7919).arg(i % 104729);
    QTest::newRow("50 MB of points") << shape("polyline", "points", points) << big;
}

void TestPageRender::hostilePageEndsQuickly()
{
    QFETCH(Build, build);
    QFETCH(QString, size);
    const QString lesson = lessonFile(build);
    QElapsedTimer timer;
    timer.start();
    QString error;
    const QImage drawn = renderLesson(lesson, size.isEmpty() ? QStringList() : QStringList{QStringLiteral("--size"), size}, &error);
    QVERIFY2(!drawn.isNull(), qPrintable(error));
    QVERIFY2(timer.elapsed() < kHangBoundMs, qPrintable(QStringLiteral("took %1 ms").arg(timer.elapsed())));
    QCOMPARE(pixelsOf(drawn, kSecret), 0);
}

void TestPageRender::limitsNamedAndRaisable_data()
{
    QTest::addColumn<QByteArray>("page");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("reason"); // empty: drawn
    const QByteArray wide("<svg width=\"30000\" height=\"10\"/>");
    QTest::newRow("nested 2,000 deep")
        << QByteArray("<svg width=\"200\" height=\"150\">" + QByteArray("<g>").repeated(2000) + QByteArray("</g>").repeated(2000) + "</svg>")
        << QStringList() << QByteArray("nested deeper than 256");
    QTest::newRow("output too large")
        << QByteArray("<svg width=\"200\" height=\"150\"/>") << QStringList{"--size", "20000x20000"}
        << QByteArray("more than the limit of 67108864 (--limit pixels)");
    QTest::newRow("page side too long") << wide << QStringList() << QByteArray("the limit of a side is 20000, --limit side");
    QTest::newRow("page side allowed by --limit") << wide << QStringList{"--limit", "side=40000"} << QByteArray();
    QTest::newRow("zigzag strokes") << zigzagPage(20, 1000) << QStringList{"--size", "1600x1600"}
                                    << QByteArray("more than the limit of 40000000 (--limit drawing)");
    QTest::newRow("a few zigzag strokes drawn") << zigzagPage(2, 40) << QStringList{"--size", "1600x1600"} << QByteArray();
    QTest::newRow("drawing limit lowered") << zigzagPage(2, 40) << QStringList{"--limit", "drawing=1000,pixels=1e9"}
                                           << QByteArray("more than the limit of 1000 (--limit drawing)");
}

// The page is written by hand into an unpacked lesson: the library would
// not build such a page.
void TestPageRender::limitsNamedAndRaisable()
{
    QFETCH(QByteArray, page);
    QFETCH(QStringList, options);
    QFETCH(QByteArray, reason);
    const QString folder = m_dir.filePath(QStringLiteral("refused-%1").arg(++m_lessons));
    QCOMPARE(runTool({QStringLiteral("unpack"), lessonFile([](ILXFrontPage *, const QString &) {}), folder})->exitCode(), 0);
    QFile file(QDir(folder).filePath(QStringLiteral("page1.svg")));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(page);
    file.close();
    QElapsedTimer timer;
    timer.start();
    const QString out = folder + QStringLiteral("-out");
    QProcess *tool = runTool(QStringList{QStringLiteral("render"), folder, out} + options);
    QVERIFY(timer.elapsed() < kHangBoundMs);
    const QByteArray error = tool->readAllStandardError();
    QCOMPARE(tool->exitCode(), reason.isEmpty() ? 0 : 1);
    QVERIFY2(error.contains(reason), error.constData());
    QCOMPARE(QFile::exists(QDir(out).filePath(QStringLiteral("page-1.png"))), reason.isEmpty());
}

QTEST_MAIN(TestPageRender)
#include "tst_pagerender.moc"
