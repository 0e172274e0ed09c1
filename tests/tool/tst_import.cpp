// SPDX-License-Identifier: MIT
// lxdoc import: PDF pages and pictures become locked full-page images, in
// order, and a failure leaves no archive behind.
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/resource.h>

#include "testsupport.h"
#include "tool/toolrunner.h"

namespace {

bool writePdf(const QString &path, int pages, const QPageSize &size = QPageSize(QPageSize::A4))
{
    QPdfWriter writer(path);
    writer.setPageSize(size);
    writer.setResolution(72);
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    for (int page = 1; page <= pages; ++page) {
        if (page > 1)
            writer.newPage();
        painter.drawText(QPointF(72, 72), QStringLiteral("Worksheet page %1").arg(page));
        painter.fillRect(QRectF(72, 100, 200, 100), QColor::fromHsv(page * 37 % 360, 200, 220));
    }
    return painter.end();
}

bool writePicture(const QString &path, QSize size, const char *format)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(0x1e, 0x88, 0xe5));
    return image.save(path, format);
}

double childCpuSeconds()
{
    struct rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct PageSummary {
    QString title;
    QSize size;
    bool lockedPicture = false;
};

} // namespace

class TestImport : public QObject {
    Q_OBJECT

private:
    Run run(const QStringList &arguments, int timeout = 120000) const { return runTool(arguments, m_dir.path(), timeout); }
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QList<PageSummary> pages(const QString &lesson) const;

    QTemporaryDir m_dir;

private slots:
    void initTestCase();
    void importsPages_data();
    void importsPages();
    void appendLeavesLessonAlone();
    void pdfTravelsAsAttachment();
    void failureLeavesNothing_data();
    void failureLeavesNothing();
    void largePdfStaysBounded();
};

QList<PageSummary> TestImport::pages(const QString &lesson) const
{
    QList<PageSummary> result;
    const Run dump = run({QStringLiteral("dump"), lesson, QStringLiteral("--json")});
    const QJsonArray list = QJsonDocument::fromJson(dump.out.toUtf8()).array();
    for (const QJsonValue &value : list) {
        const QJsonObject page = value.toObject();
        PageSummary summary;
        summary.title = page.value(QStringLiteral("title")).toString();
        summary.size = QSize(page.value(QStringLiteral("width")).toInt(), page.value(QStringLiteral("height")).toInt());
        const QJsonArray objects = page.value(QStringLiteral("objects")).toArray();
        const QJsonObject picture = objects.first().toObject();
        summary.lockedPicture = objects.size() == 1 && picture.value(QStringLiteral("class")) == QLatin1String("image")
            && picture.value(QStringLiteral("locked")).toBool();
        result << summary;
    }
    return result;
}

void TestImport::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(writePdf(path(QStringLiteral("sheet.pdf")), 3));
    QVERIFY(writePdf(path(QStringLiteral("wide.pdf")), 1, QPageSize(QSizeF(400, 100), QPageSize::Point)));
    // QPdfWriter writes no outline; Poppler reads this one without a cross-reference table.
    QVERIFY(writeFile(path(QStringLiteral("outline.pdf")),
                      "%PDF-1.4\n1 0 obj << /Type /Catalog /Pages 2 0 R /Outlines 5 0 R >> endobj\n"
                      "2 0 obj << /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >> endobj\n"
                      "3 0 obj << /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] >> endobj\n"
                      "4 0 obj << /Type /Page /Parent 2 0 R /MediaBox [0 0 200 100] >> endobj\n"
                      "5 0 obj << /Type /Outlines /First 6 0 R /Last 6 0 R /Count 1 >> endobj\n"
                      "6 0 obj << /Title (Fractions) /Parent 5 0 R /Dest [4 0 R /Fit] >> endobj\n"
                      "trailer << /Root 1 0 R >>\n%%EOF\n"));
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("photos")));
    // Sizes tell the pages apart: page N is N00 pixels wide.
    for (int number : {10, 2, 1})
        QVERIFY(writePicture(path(QStringLiteral("photos/page%1.png").arg(number)), QSize(number * 100, 200), "PNG"));
    QVERIFY(writeFile(path(QStringLiteral("photos/readme.txt")), "not a picture"));
    QVERIFY(writePicture(path(QStringLiteral("board.jpg")), QSize(300, 400), "JPEG"));
    QVERIFY(writePicture(path(QStringLiteral("scan.bmp")), QSize(600, 300), "BMP"));
}

void TestImport::importsPages_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<QList<QSize>>("sizes");
    QTest::newRow("pdf, long side 1024") << QStringList{"sheet.pdf"} << QStringList{"Page 1", "Page 2", "Page 3"}
                                         << QList<QSize>{{724, 1024}, {724, 1024}, {724, 1024}};
    QTest::newRow("pdf outline names its page") << QStringList{"outline.pdf"} << QStringList{"Page 1", "Fractions"}
                                                << QList<QSize>{{1024, 512}, {1024, 512}};
    QTest::newRow("folder in natural order") << QStringList{"photos"} << QStringList{"Page 1", "Page 2", "Page 3"}
                                             << QList<QSize>{{512, 1024}, {1024, 1024}, {1024, 205}};
    QTest::newRow("pictures and pdf mixed, fitted") << QStringList{"board.jpg", "wide.pdf", "scan.bmp", "--size", "800x600"}
                                                    << QStringList{"Page 1", "Page 2", "Page 3"}
                                                    << QList<QSize>{{450, 600}, {800, 200}, {800, 400}};
}

void TestImport::importsPages()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, titles);
    QFETCH(QList<QSize>, sizes);
    const QString lesson = path(QStringLiteral("%1.lzn").arg(QTest::currentDataTag()));
    const Run import = run(QStringList{QStringLiteral("import")} + arguments + QStringList{lesson});
    QVERIFY2(import.status == 0, qPrintable(import.err));
    const QList<PageSummary> result = pages(lesson);
    QCOMPARE(result.size(), titles.size());
    for (int index = 0; index < result.size(); ++index) {
        QCOMPARE(result.at(index).title, titles.at(index));
        QCOMPARE(result.at(index).size, sizes.at(index));
        QVERIFY(result.at(index).lockedPicture);
    }
    // The lesson is one the library reads back without complaint.
    QCOMPARE(run({QStringLiteral("check"), lesson}).status, 0);
}

void TestImport::appendLeavesLessonAlone()
{
    const QString base = path(QStringLiteral("base.lzn"));
    QCOMPARE(run({QStringLiteral("demo"), base}).status, 0);
    const QByteArray before = readBytes(base);
    const QString combined = path(QStringLiteral("combined.lzn"));
    const Run import = run({QStringLiteral("import"), QStringLiteral("board.jpg"), combined, QStringLiteral("--append"), base});
    QVERIFY2(import.status == 0, qPrintable(import.err));
    QCOMPARE(readBytes(base), before);
    const QList<PageSummary> result = pages(combined);
    QCOMPARE(result.size(), 4);
    QCOMPARE(result.at(0).title, QStringLiteral("Shapes and text"));
    QCOMPARE(result.at(3).title, QStringLiteral("Page 4"));
    QVERIFY(result.at(3).lockedPicture);
    QCOMPARE(run({QStringLiteral("check"), combined}).status, 0);
}

void TestImport::pdfTravelsAsAttachment()
{
    const QString lesson = path(QStringLiteral("attached.lzn"));
    QCOMPARE(run({QStringLiteral("import"), QStringLiteral("sheet.pdf"), lesson}).status, 0);
    const QString folder = path(QStringLiteral("attached"));
    QCOMPARE(run({QStringLiteral("unpack"), lesson, folder}).status, 0);
    QCOMPARE(readBytes(QDir(folder).filePath(QStringLiteral("attachments/sheet.pdf"))),
             readBytes(path(QStringLiteral("sheet.pdf"))));
}

void TestImport::failureLeavesNothing_data()
{
    QTest::addColumn<QStringList>("sources");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing file") << QStringList{"nowhere.pdf"} << "cannot import 'nowhere.pdf': no such file";
    QTest::newRow("damaged pdf") << QStringList{"sheet.pdf", "damaged.pdf"} << "cannot import 'damaged.pdf': not a PDF file";
    QTest::newRow("encrypted pdf") << QStringList{"locked.pdf"} << "cannot import 'locked.pdf': the PDF is encrypted";
    QTest::newRow("not a picture") << QStringList{"photos/readme.txt"} << "cannot import 'photos/readme.txt': not a PDF or a picture";
    QTest::newRow("truncated picture") << QStringList{"board.jpg", "broken.png"} << "cannot import 'broken.png'";
    QTest::newRow("empty folder") << QStringList{"empty"} << "cannot import 'empty': the folder holds no pictures";
}

void TestImport::failureLeavesNothing()
{
    QFETCH(QStringList, sources);
    QFETCH(QString, message);
    QVERIFY(writeFile(path(QStringLiteral("damaged.pdf")), "%PDF-1.4\n1 0 obj << /Type /Catalog >> garbage"));
    // An encryption dictionary Poppler cannot open without a password.
    QVERIFY(writeFile(path(QStringLiteral("locked.pdf")),
                      "%PDF-1.4\n1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj\n"
                      "2 0 obj << /Type /Pages /Kids [] /Count 0 >> endobj\n"
                      "3 0 obj << /Filter /Standard /V 1 /R 2 /O <00> /U <00> /P -4 >> endobj\n"
                      "trailer << /Root 1 0 R /Encrypt 3 0 R /ID [<01> <01>] >>\n%%EOF\n"));
    QByteArray png = readBytes(path(QStringLiteral("photos/page1.png")));
    png.chop(png.size() / 2);
    QVERIFY(writeFile(path(QStringLiteral("broken.png")), png));
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("empty")));
    const QString lesson = path(QStringLiteral("failed.lzn"));
    const Run import = run(QStringList{QStringLiteral("import")} + sources + QStringList{lesson});
    QCOMPARE(import.status, 1);
    QVERIFY2(import.err.contains(message), qPrintable(import.err));
    QCOMPARE(import.err.count(QLatin1Char('\n')), 1);
    QVERIFY(!QFile::exists(lesson));
}

// Prints the figures kept in bench/README.md; fails only when memory grows
// with the page count instead of staying near one page's worth.
void TestImport::largePdfStaysBounded()
{
    const int pageCount = 300;
    const QString pdf = path(QStringLiteral("large.pdf"));
    QVERIFY(writePdf(pdf, pageCount));
    const double cpuBefore = childCpuSeconds();
    QElapsedTimer timer;
    timer.start();
    const Run import = run({QStringLiteral("import"), pdf, path(QStringLiteral("large.lzn"))}, 1150000);
    const double seconds = timer.elapsed() / 1000.0;
    QVERIFY2(import.status == 0, qPrintable(import.err));
    const double cpu = childCpuSeconds() - cpuBefore;
    struct rusage usage {};
    getrusage(RUSAGE_CHILDREN, &usage);
    // The largest of the finished children, which is this import.
    const double peakMb = usage.ru_maxrss / 1024.0;
    qInfo("imported %d PDF pages at 150 dpi: %.1f pages/s (%.1f per CPU second), peak memory %.0f MB", pageCount,
          pageCount / seconds, pageCount / cpu, peakMb);
#ifdef __SANITIZE_ADDRESS__
    // AddressSanitizer's shadow memory and quarantine come on top.
    const double boundMb = 900;
#else
    const double boundMb = 300;
#endif
    QVERIFY2(peakMb < boundMb, "import memory grows with the document");
}

QTEST_MAIN(TestImport)
#include "tst_import.moc"
