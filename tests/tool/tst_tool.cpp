// SPDX-License-Identifier: MIT
// The command-line host, run as a user runs it: every case works on files in
// a temporary folder and looks only at exit status, output and files.
#include "testsupport.h"
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

#include "tool/toolrunner.h"

namespace {

// Known content of the sample lesson's first page.
const QPoint kRectPixel(200, 150);
const QString kRectFill = QStringLiteral("#1e88e5");
const QPoint kBackgroundPixel(20, 20);
const QString kBackground = QStringLiteral("#fff8e1");

// Every file below folder with a hash of its content, and every folder.
QMap<QString, QByteArray> snapshot(const QString &folder)
{
    QMap<QString, QByteArray> result;
    const QDir root(folder);
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        QByteArray hash = "dir";
        if (it.fileInfo().isFile() && file.open(QIODevice::ReadOnly))
            hash = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha1);
        result.insert(root.relativeFilePath(path), hash);
    }
    return result;
}

int distinctColours(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 4) {
        for (int x = 0; x < image.width(); x += 4)
            colours.insert(image.pixel(x, y));
    }
    return int(colours.size());
}


// A minimal lesson written by hand: a manifest with the given lists and files.
bool writeLesson(const QString &folder, const QMap<QString, QStringList> &lists, const QMap<QString, QByteArray> &files)
{
    QByteArray manifest = "<?xml version='1.0'?>\n<manifest identifier=\"lzn\" version=\"6.0.0\">\n";
    for (auto it = lists.begin(); it != lists.end(); ++it) {
        manifest += "<resource identifier=\"" + it.key().toUtf8() + "\">";
        for (const QString &entry : it.value())
            manifest += "<file href=\"" + entry.toUtf8() + "\"/>";
        manifest += "</resource>\n";
    }
    manifest += "</manifest>\n";
    const QDir root(folder);
    if (!root.mkpath(QStringLiteral(".")) || !writeFile(root.filePath(QStringLiteral("manifest.xml")), manifest))
        return false;
    for (auto it = files.begin(); it != files.end(); ++it) {
        if (!root.mkpath(QFileInfo(it.key()).path()) || !writeFile(root.filePath(it.key()), it.value()))
            return false;
    }
    return true;
}

bool editManifest(const QString &path, const QString &damage)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray text = file.readAll();
    file.close();
    if (damage == QLatin1String("outside"))
        text.replace("\"images/sample-picture.png\"", "\"../secret.png\"");
    else
        text.replace("<file href=\"page1.svg\"", "<file href=\"page1.svg\"/><file href=\"page1.svg\"");
    return writeFile(path, text);
}

// Makes one entry of the folder lead outside it, to a secret of 900 bytes.
bool pointOutside(const QDir &folder, const QString &damage, const QString &secret)
{
    if (!writeFile(secret, QByteArray("TOPSECRET").repeated(100)))
        return false;
    const QString manifest = folder.filePath(QStringLiteral("manifest.xml"));
    const QString page1 = folder.filePath(QStringLiteral("page1.svg"));
    const QString page2 = folder.filePath(QStringLiteral("page2.svg"));
    const QString picture = folder.filePath(QStringLiteral("images/sample-picture.png"));
    if (damage == QLatin1String("absolute")) {
        QFile file(manifest);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        QByteArray text = file.readAll();
        file.close();
        return writeFile(manifest, text.replace("images/sample-picture.png", QFile::encodeName(secret)));
    }
    if (damage == QLatin1String("fifo-page"))
        return QFile::remove(page2) && ::mkfifo(QFile::encodeName(page2).constData(), 0600) == 0;
    const QString linked = damage == QLatin1String("link-page") ? page1 : picture;
    return QFile::remove(linked) && QFile::link(secret, linked);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestTool : public QObject {
    Q_OBJECT

private:
    Run run(const QStringList &arguments, const QString &folder = QString()) const;
    QString unpackSample(const QString &name) const;
    QString path(const QString &name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
    QString m_sample;
    QStringList m_tempRootBefore;

private slots:
    void initTestCase();
    void cleanupTestCase();
    void demoWritesArchiveAndPages();
    void infoListsPagesAndResources();
    void dumpJsonParses();
    void dumpTreeAndPageSelection();
    void checkAcceptsSample_data();
    void checkAcceptsSample();
    void checkFindsProblems_data();
    void checkFindsProblems();
    void checkAcceptsCrossedLists();
    void renderDrawsKnownShapes();
    void renderHandWrittenPage_data();
    void renderHandWrittenPage();
    void brokenPageIsNamed_data();
    void brokenPageIsNamed();
    void emptyLesson();
    void archiveNamesAndConcurrentRuns();
    void userArchiveIsLeftAlone();
    void overviewHelp();
    void renderFitsIntoSizeAndWritesPdf();
    void packUnpackRoundTrip();
    void packReplacesOlderArchive();
    void unpackRefusesNonEmptyFolder();
    void userFolderIsLeftAlone();
    void errorsAreOneLine_data();
    void errorsAreOneLine();
    void everyCommandHasHelp_data();
    void everyCommandHasHelp();
};

Run TestTool::run(const QStringList &arguments, const QString &folder) const
{
    return runTool(arguments, folder.isEmpty() ? m_dir.path() : folder);
}

QString TestTool::unpackSample(const QString &name) const
{
    const QString folder = path(name);
    const Run unpacked = run({QStringLiteral("unpack"), m_sample, folder});
    return unpacked.status == 0 ? folder : QString();
}

void TestTool::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY2(QFileInfo(toolPath()).isExecutable(), qPrintable(toolPath()));
    m_tempRootBefore = QDir(QStringLiteral(LXDOC_BIN_DIR "/Temp")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    // Without FILE the sample goes to the working folder as "sample.lzn".
    const Run demo = run({QStringLiteral("demo")});
    QVERIFY2(demo.status == 0, qPrintable(demo.err));
    m_sample = path(QStringLiteral("sample.lzn"));
}

void TestTool::cleanupTestCase()
{
    // Every document the tool opened worked on a private copy and was
    // released: nothing is left in the library's shared temp root.
    QCOMPARE(QDir(QStringLiteral(LXDOC_BIN_DIR "/Temp")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             m_tempRootBefore);
}

void TestTool::demoWritesArchiveAndPages()
{
    QVERIFY(QFileInfo(m_sample).size() > 0);
    for (int page = 1; page <= 3; ++page)
        QVERIFY(QFile::exists(path(QStringLiteral("sample-pages/page-%1.png").arg(page))));
    QVERIFY(!QFile::exists(path(QStringLiteral("sample-pages/page-4.png"))));

    // The same lesson twice: same summary.
    const Run again = run({QStringLiteral("demo"), path(QStringLiteral("again.lzn"))});
    QCOMPARE(again.status, 0);
    QVERIFY(again.out.contains(QLatin1String("lesson ")));
    QVERIFY(QFile::exists(path(QStringLiteral("again-pages/page-1.png"))));
    const Run first = run({QStringLiteral("info"), m_sample});
    const Run second = run({QStringLiteral("info"), path(QStringLiteral("again.lzn"))});
    QCOMPARE(first.out.section(QLatin1Char('\n'), 1), second.out.section(QLatin1Char('\n'), 1));
}

void TestTool::infoListsPagesAndResources()
{
    const Run info = run({QStringLiteral("info"), m_sample});
    QCOMPARE(info.status, 0);
    const QStringList lines = info.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QVERIFY(lines.first().contains(QLatin1String("3 pages")));
    const QStringList titles{QStringLiteral("Shapes and text"), QStringLiteral("Free-hand"), QStringLiteral("Picture")};
    for (int page = 0; page < titles.size(); ++page) {
        const QString line = lines.value(page + 1);
        QVERIFY2(line.contains(QStringLiteral("page %1  id %1").arg(page + 1)), qPrintable(line));
        QVERIFY2(line.contains(titles.at(page)), qPrintable(line));
        QVERIFY2(line.contains(QLatin1String("commands")), qPrintable(line));
    }
    QVERIFY(lines.value(1).contains(QLatin1String("800x600")));
    QVERIFY(lines.value(1).contains(QLatin1String("9 objects")));
    QVERIFY(lines.value(3).contains(QLatin1String("1024x768")));
    QVERIFY(info.out.contains(QLatin1String("images: 1 file")));
    QVERIFY(info.out.contains(QLatin1String("images/sample-picture.png")));
}

void TestTool::dumpJsonParses()
{
    const Run dump = run({QStringLiteral("dump"), m_sample, QStringLiteral("--json"), QStringLiteral("--records")});
    QCOMPARE(dump.status, 0);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(dump.out.toUtf8(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QJsonArray pages = document.array();
    QCOMPARE(pages.size(), 3);

    const QJsonObject first = pages.at(0).toObject();
    QCOMPARE(first.value(QLatin1String("title")).toString(), QStringLiteral("Shapes and text"));
    const QJsonArray objects = first.value(QLatin1String("objects")).toArray();
    QStringList classes;
    for (const QJsonValue &object : objects)
        classes << object.toObject().value(QLatin1String("class")).toString();
    QCOMPARE(classes, QStringList({"rect", "ellipse", "line", "text", "line", "line", "line", "polyline", "image"}));
    const QJsonObject rect = objects.at(0).toObject();
    QCOMPARE(rect.value(QLatin1String("fill")).toString(), kRectFill);
    QCOMPARE(rect.value(QLatin1String("gid")).toInt(), 1);
    QCOMPARE(rect.value(QLatin1String("bound")).toArray().at(2).toDouble(), 240.0);
    QCOMPARE(objects.at(3).toObject().value(QLatin1String("text")).toString(), QStringLiteral("Shapes, lines and text"));

    const QJsonArray strokes = pages.at(1).toObject().value(QLatin1String("objects")).toArray();
    QCOMPARE(strokes.at(0).toObject().value(QLatin1String("points")).toInt(), 25);
    QCOMPARE(strokes.at(0).toObject().value(QLatin1String("widths")).toInt(), 25);
    QCOMPARE(strokes.at(3).toObject().value(QLatin1String("polygons")).toInt(), 2);

    const QJsonArray commands = first.value(QLatin1String("commands")).toArray();
    QCOMPARE(commands.size(), 11);
    QCOMPARE(commands.at(9).toObject().value(QLatin1String("class")).toString(), QStringLiteral("move"));
    QCOMPARE(commands.at(9).toObject().value(QLatin1String("transform")).toObject().value(QLatin1String("x")).toDouble(), 24.0);
    QCOMPARE(commands.at(10).toObject().value(QLatin1String("steps")).toArray().size(), 2);
}

void TestTool::dumpTreeAndPageSelection()
{
    const Run tree = run({QStringLiteral("dump"), m_sample, QStringLiteral("--page"), QStringLiteral("2")});
    QCOMPARE(tree.status, 0);
    QVERIFY(tree.out.startsWith(QLatin1String("page 2  id 2  \"Free-hand\"")));
    QVERIFY(!tree.out.contains(QLatin1String("page 1 ")));
    QVERIFY(tree.out.contains(QLatin1String("    stroke gid=1")));
    // Without --records there are no commands.
    QVERIFY(!tree.out.contains(QLatin1String("commands:")));

    const Run json = run({QStringLiteral("dump"), m_sample, QStringLiteral("--page"), QStringLiteral("3"), QStringLiteral("--json")});
    QCOMPARE(QJsonDocument::fromJson(json.out.toUtf8()).array().size(), 1);

    const Run missing = run({QStringLiteral("dump"), m_sample, QStringLiteral("--page"), QStringLiteral("9")});
    QVERIFY(missing.status != 0);
    QVERIFY(missing.err.contains(QLatin1String("there is no page 9")));
}

void TestTool::checkAcceptsSample_data()
{
    QTest::addColumn<bool>("unpacked");
    QTest::newRow("archive") << false;
    QTest::newRow("folder") << true;
}

void TestTool::checkAcceptsSample()
{
    QFETCH(bool, unpacked);
    const QString lesson = unpacked ? unpackSample(QStringLiteral("clean")) : m_sample;
    QVERIFY(!lesson.isEmpty());
    const Run check = run({QStringLiteral("check"), lesson});
    QVERIFY2(check.status == 0, qPrintable(check.out + check.err));
    QVERIFY(check.out.contains(QLatin1String("no problems found")));
}

void TestTool::checkFindsProblems_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("finding");
    QTest::newRow("not an archive") << "garbage" << "not a lesson archive";
    QTest::newRow("corrupt page") << "corrupt-page" << "page1.svg: not well-formed XML";
    QTest::newRow("missing page") << "missing-page" << "page2.svg: missing (listed in 'pages')";
    QTest::newRow("corrupt record") << "corrupt-record" << "page3.mtrec: not well-formed XML";
    QTest::newRow("missing resource") << "missing-resource" << "images/sample-picture.png: listed in 'images' but missing";
    QTest::newRow("unlisted resource") << "unlisted-resource" << "sounds/bell.wav: present but not listed in the manifest";
    QTest::newRow("wrong page root") << "wrong-root" << "page2.svg: the root element is <html>, expected <svg>";
    QTest::newRow("page listed twice") << "duplicate-page" << "manifest.xml: 'page1.svg' is listed more than once in 'pages'";
    QTest::newRow("entry outside") << "outside" << "../secret.png: points outside the lesson (listed in 'images')";
    QTest::newRow("absolute entry") << "absolute" << "secret.png: points outside the lesson (listed in 'images')";
    QTest::newRow("page is a link") << "link-page" << "page1.svg: is a symbolic link (not followed) (listed in 'pages')";
    QTest::newRow("page is a FIFO") << "fifo-page" << "page2.svg: is not a regular file (listed in 'pages')";
    QTest::newRow("resource is a link") << "link-resource"
                                        << "images/sample-picture.png: is a symbolic link (not followed) (listed in 'images')";
    QTest::newRow("broken manifest") << "broken-manifest" << "manifest.xml: not well-formed XML";
    QTest::newRow("no manifest") << "no-manifest" << "not a lesson folder";
}

void TestTool::checkFindsProblems()
{
    QFETCH(QString, damage);
    QFETCH(QString, finding);
    QString lesson = path(damage + QStringLiteral(".lzn"));
    if (damage == QLatin1String("garbage")) {
        QVERIFY(writeFile(lesson, "this is not a lesson archive\n"));
    } else {
        lesson = unpackSample(damage);
        QVERIFY(!lesson.isEmpty());
        const QDir folder(lesson);
        if (damage == QLatin1String("corrupt-page"))
            QVERIFY(writeFile(folder.filePath(QStringLiteral("page1.svg")), "<svg><rect></svg>"));
        else if (damage == QLatin1String("missing-page"))
            QVERIFY(QFile::remove(folder.filePath(QStringLiteral("page2.svg"))));
        else if (damage == QLatin1String("corrupt-record"))
            QVERIFY(writeFile(folder.filePath(QStringLiteral("page3.mtrec")), "<record class=\"page\">"));
        else if (damage == QLatin1String("missing-resource"))
            QVERIFY(QFile::remove(folder.filePath(QStringLiteral("images/sample-picture.png"))));
        else if (damage == QLatin1String("unlisted-resource"))
            QVERIFY(writeFile(folder.filePath(QStringLiteral("sounds/bell.wav")), "RIFF"));
        else if (damage == QLatin1String("wrong-root"))
            QVERIFY(writeFile(folder.filePath(QStringLiteral("page2.svg")), "<html/>"));
        else if (damage == QLatin1String("duplicate-page") || damage == QLatin1String("outside"))
            QVERIFY(editManifest(folder.filePath(QStringLiteral("manifest.xml")), damage));
        else if (damage == QLatin1String("broken-manifest"))
            QVERIFY(writeFile(folder.filePath(QStringLiteral("manifest.xml")), "<manifest><resource>"));
        else if (damage == QLatin1String("no-manifest"))
            QVERIFY(QFile::remove(folder.filePath(QStringLiteral("manifest.xml"))));
        else
            QVERIFY(pointOutside(folder, damage, path(QStringLiteral("secret.png"))));
    }
    QElapsedTimer timer;
    timer.start();
    const Run check = run({QStringLiteral("check"), lesson});
    QVERIFY(timer.elapsed() < kHangBoundMs);
    QVERIFY(check.status != 0);
    QVERIFY2((check.out + check.err).contains(finding), qPrintable(check.out + check.err));
    // Neither check nor info shows anything of a file outside the lesson.
    const Run info = run({QStringLiteral("info"), lesson});
    for (const QString &output : {check.out + check.err, info.out + info.err})
        QVERIFY2(!output.contains(QLatin1String("TOPSECRET")) && !output.contains(QLatin1String("900 bytes")),
                 qPrintable(output));
}

void TestTool::checkAcceptsCrossedLists()
{
    // The document lists attachments under "fillblocks" too, and keeps
    // flashes in the folder "flash": neither is a problem.
    const QString lesson = path(QStringLiteral("crossed"));
    QVERIFY(writeLesson(lesson,
                        {{QStringLiteral("pages"), {}}, {QStringLiteral("records"), {}},
                         {QStringLiteral("fillblocks"), {QStringLiteral("attachments/notes.txt"), QStringLiteral("fillblocks/quiz.xml")}},
                         {QStringLiteral("attachments"), {QStringLiteral("attachments/notes.txt")}},
                         {QStringLiteral("flashes"), {QStringLiteral("flash/movie.swf")}}},
                        {{QStringLiteral("attachments/notes.txt"), "notes"}, {QStringLiteral("fillblocks/quiz.xml"), "<quiz/>"},
                         {QStringLiteral("flash/movie.swf"), "FWS"}}));
    const Run check = run({QStringLiteral("check"), lesson});
    QVERIFY2(check.status == 0, qPrintable(check.out));
}

void TestTool::renderHandWrittenPage_data()
{
    QTest::addColumn<QByteArray>("page");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("pixel");
    QTest::addColumn<QString>("colour");
    const QByteArray grid = "<svg width=\"400\" height=\"300\"><rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>"
                            "<grid grid-horizontal=\"50\" grid-vertical=\"50\" stroke=\"#000000\" opacity=\"1\" stroke-width=\"4\"/>"
                            "<g class=\"foreground\"><rect x=\"0\" y=\"0\" width=\"120\" height=\"300\" fill=\"#00ff00\"/></g></svg>";
    const QByteArray frame = "<svg width=\"400\" height=\"300\"><g class=\"foreground\"><g bound=\"100.00,100.00, 200.00,100.00\" "
                             "transform=\"translate(100.00,100.00)\"><rect width=\"100%\" height=\"100%\" fill=\"#ffff00\"/></g></g></svg>";
    QTest::newRow("default size, percent background")
        << QByteArray("<svg><rect x=\"0\" y=\"0\" width=\"100%\" height=\"100%\" fill=\"#ff0000\"/></svg>")
        << QSize(1024, 768) << QPoint(1000, 700) << "#ff0000";
    QTest::newRow("size without viewBox")
        << QByteArray("<svg width=\"400\" height=\"300\"><g class=\"foreground\"><rect x=\"100\" y=\"100\" width=\"50\" "
                      "height=\"50\" fill=\"#0000ff\"/></g></svg>")
        << QSize(400, 300) << QPoint(120, 120) << "#0000ff";
    QTest::newRow("grid line") << grid << QSize(400, 300) << QPoint(250, 10) << "#000000";
    QTest::newRow("grid under objects") << grid << QSize(400, 300) << QPoint(50, 10) << "#00ff00";
    QTest::newRow("frame fills its bound") << frame << QSize(400, 300) << QPoint(290, 190) << "#ffff00";
    QTest::newRow("frame stops at its bound") << frame << QSize(400, 300) << QPoint(310, 150) << "#ffffff";
    QTest::newRow("picture without xlink declaration")
        << QByteArray("<svg width=\"400\" height=\"300\"><g class=\"foreground\"><image x=\"0\" y=\"0\" width=\"100\" "
                      "height=\"100\" xlink:href=\"images/p.png\"/></g></svg>")
        << QSize(400, 300) << QPoint(50, 50) << "#123456";
    QTest::newRow("foreign markup ignored")
        << QByteArray("<svg width=\"400\" height=\"300\" xmlns:ed=\"urn:editor\" ed:mode=\"1\"><ed:thing/><g class=\"foreground\">"
                      "<rect width=\"100\" height=\"100\" fill=\"#ff00ff\" ed:note=\"2\"/></g></svg>")
        << QSize(400, 300) << QPoint(50, 50) << "#ff00ff";
}

void TestTool::renderHandWrittenPage()
{
    QFETCH(QByteArray, page);
    QFETCH(QSize, size);
    QFETCH(QPoint, pixel);
    QFETCH(QString, colour);
    const QString lesson = path(QStringLiteral("hand-") + QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-')));
    QImage picture(20, 20, QImage::Format_RGB32);
    picture.fill(QColor(0x12, 0x34, 0x56));
    QVERIFY(writeLesson(lesson, {{QStringLiteral("pages"), {QStringLiteral("page1.svg")}}, {QStringLiteral("images"), {QStringLiteral("images/p.png")}}},
                        {{QStringLiteral("page1.svg"), page}}));
    QVERIFY(QDir(lesson).mkpath(QStringLiteral("images")));
    QVERIFY(picture.save(QDir(lesson).filePath(QStringLiteral("images/p.png"))));
    const Run render = run({QStringLiteral("render"), lesson, lesson + QStringLiteral("-out")});
    QVERIFY2(render.status == 0, qPrintable(render.err));
    const QImage image(lesson + QStringLiteral("-out/page-1.png"));
    QCOMPARE(image.size(), size);
    QCOMPARE(image.pixelColor(pixel).name(), colour);
}

void TestTool::brokenPageIsNamed_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");
    QTest::newRow("info") << "info" << 0 << "page 1: cannot be read (page1.svg)";
    QTest::newRow("dump") << "dump" << 1 << "page 1 (page1.svg) cannot be read: not well-formed XML";
    QTest::newRow("render") << "render" << 1 << "lxdoc: cannot render: page 1 (page1.svg) cannot be read: not well-formed XML";
}

void TestTool::brokenPageIsNamed()
{
    QFETCH(QString, command);
    QFETCH(int, status);
    QFETCH(QString, message);
    const QString lesson = path(QStringLiteral("broken-page"));
    QVERIFY(writeLesson(lesson, {{QStringLiteral("pages"), {QStringLiteral("page1.svg")}}},
                        {{QStringLiteral("page1.svg"), "<svg><g></svg>"}}));
    QStringList arguments{command, lesson};
    if (command == QLatin1String("render"))
        arguments << path(QStringLiteral("broken-out"));
    const Run result = run(arguments);
    QCOMPARE(result.status, status);
    QVERIFY2((result.out + result.err).contains(message), qPrintable(result.out + result.err));
}

void TestTool::emptyLesson()
{
    const QString lesson = path(QStringLiteral("empty"));
    QVERIFY(writeLesson(lesson, {{QStringLiteral("pages"), {}}, {QStringLiteral("records"), {}}}, {}));
    const Run info = run({QStringLiteral("info"), lesson});
    QCOMPARE(info.status, 0);
    QVERIFY(info.out.startsWith(QLatin1String("lesson ")));
    QVERIFY(info.out.contains(QLatin1String(": 0 pages")));
    QVERIFY(info.out.contains(QLatin1String("resources: 0 files")));
    QCOMPARE(run({QStringLiteral("render"), lesson, path(QStringLiteral("empty-out"))}).status, 0);
    const Run pdf = run({QStringLiteral("render"), lesson, path(QStringLiteral("empty-out")), QStringLiteral("--pdf"), path(QStringLiteral("empty.pdf"))});
    QVERIFY(pdf.status != 0);
    QVERIFY(pdf.err.contains(QLatin1String("the lesson has no pages")));
    QVERIFY(!QFile::exists(path(QStringLiteral("empty.pdf"))));
}

void TestTool::archiveNamesAndConcurrentRuns()
{
    const QString upper = path(QStringLiteral("LESSON.LZN"));
    const QString resitem = path(QStringLiteral("lesson.resitem"));
    QVERIFY(QFile::copy(m_sample, upper));
    QVERIFY(QFile::copy(m_sample, resitem));
    const QString expected = run({QStringLiteral("info"), m_sample}).out.section(QLatin1Char('\n'), 1);
    QCOMPARE(run({QStringLiteral("info"), upper}).out.section(QLatin1Char('\n'), 1), expected);
    // Runs on the same archive at once must not share a working folder.
    QProcess first;
    QProcess second;
    first.start(toolPath(), {QStringLiteral("info"), resitem});
    second.start(toolPath(), {QStringLiteral("info"), resitem});
    QVERIFY(first.waitForFinished(60000) && second.waitForFinished(60000));
    QCOMPARE(first.exitCode(), 0);
    QCOMPARE(second.exitCode(), 0);
    QCOMPARE(QString::fromUtf8(first.readAllStandardOutput()).section(QLatin1Char('\n'), 1), expected);
    QCOMPARE(QString::fromUtf8(second.readAllStandardOutput()).section(QLatin1Char('\n'), 1), expected);
}

void TestTool::userArchiveIsLeftAlone()
{
    const QByteArray before = readFile(m_sample);
    const QDateTime modified = QFileInfo(m_sample).lastModified();
    for (const QString &command : {QStringLiteral("info"), QStringLiteral("check"), QStringLiteral("dump")})
        QCOMPARE(run({command, m_sample}).status, 0);
    QCOMPARE(readFile(m_sample), before);
    QCOMPARE(QFileInfo(m_sample).lastModified(), modified);
}

void TestTool::overviewHelp()
{
    const Run overview = run({QStringLiteral("help")});
    QCOMPARE(overview.status, 0);
    for (const char *command : {"demo", "info", "dump", "check", "render", "pack", "unpack", "recover", "salvage",
                                "import", "export"})
        QVERIFY(overview.out.contains(QStringLiteral("  %1 ").arg(QLatin1String(command))));
    const Run help = run({QStringLiteral("help"), QStringLiteral("render")});
    QCOMPARE(help.status, 0);
    QVERIFY(help.out.contains(QLatin1String("--pdf")));
}

void TestTool::renderDrawsKnownShapes()
{
    const QString out = path(QStringLiteral("rendered"));
    const Run render = run({QStringLiteral("render"), m_sample, out});
    QVERIFY2(render.status == 0, qPrintable(render.err));
    // Not a terminal: no progress, and no Qt or library chatter either.
    QVERIFY2(render.err.isEmpty(), qPrintable(render.err));
    for (int page = 1; page <= 3; ++page) {
        const QImage image(QDir(out).filePath(QStringLiteral("page-%1.png").arg(page)));
        QVERIFY(!image.isNull());
        QVERIFY2(distinctColours(image) > 3, qPrintable(QStringLiteral("page %1 looks blank").arg(page)));
    }
    const QImage first(QDir(out).filePath(QStringLiteral("page-1.png")));
    QCOMPARE(first.size(), QSize(800, 600));
    QCOMPARE(first.pixelColor(kRectPixel).name(), kRectFill);
    QCOMPARE(first.pixelColor(kBackgroundPixel).name(), kBackground);
    // The grid is drawn: the line at x = 40 differs from the background.
    QVERIFY(first.pixelColor(40, 20).name() != kBackground);
    // The picture is embedded: its sky colour shows inside its frame.
    const QImage third(QDir(out).filePath(QStringLiteral("page-3.png")));
    QCOMPARE(third.size(), QSize(1024, 768));
    QCOMPARE(third.pixelColor(340, 200).name(), QStringLiteral("#90caf9"));
}

void TestTool::renderFitsIntoSizeAndWritesPdf()
{
    const QString out = path(QStringLiteral("small"));
    const QString pdf = path(QStringLiteral("sample.pdf"));
    const Run render = run({QStringLiteral("render"), m_sample, out, QStringLiteral("--size"), QStringLiteral("400x400"),
                            QStringLiteral("--pdf"), pdf});
    QVERIFY2(render.status == 0, qPrintable(render.err));
    const QImage first(QDir(out).filePath(QStringLiteral("page-1.png")));
    QCOMPARE(first.size(), QSize(400, 300));
    QCOMPARE(first.pixelColor(kRectPixel / 2).name(), kRectFill);
    QVERIFY(readFile(pdf).startsWith("%PDF"));
    QVERIFY(!QFile::exists(pdf + QStringLiteral(".part")));

    const Run bad = run({QStringLiteral("render"), m_sample, out, QStringLiteral("--size"), QStringLiteral("big")});
    QCOMPARE(bad.status, 2);
}

void TestTool::packUnpackRoundTrip()
{
    const QString first = unpackSample(QStringLiteral("round-1"));
    QVERIFY(!first.isEmpty());
    const QString repacked = path(QStringLiteral("repacked.lzn"));
    const Run pack = run({QStringLiteral("pack"), first, repacked});
    QVERIFY2(pack.status == 0, qPrintable(pack.err));
    const QString second = path(QStringLiteral("round-2"));
    QCOMPARE(run({QStringLiteral("unpack"), repacked, second}).status, 0);
    const QMap<QString, QByteArray> before = snapshot(first);
    QVERIFY(before.contains(QStringLiteral("manifest.xml")));
    QCOMPARE(snapshot(second), before);
    QCOMPARE(run({QStringLiteral("info"), repacked}).out.section(QLatin1Char('\n'), 1),
             run({QStringLiteral("info"), m_sample}).out.section(QLatin1Char('\n'), 1));

    const Run notLesson = run({QStringLiteral("pack"), path(QStringLiteral("small")), path(QStringLiteral("x.lzn"))});
    QVERIFY(notLesson.status != 0);
    QVERIFY(notLesson.err.contains(QLatin1String("not a lesson folder")));
    QVERIFY(!QFile::exists(path(QStringLiteral("x.lzn"))));
}

void TestTool::packReplacesOlderArchive()
{
    const QString folder = unpackSample(QStringLiteral("to-pack"));
    QVERIFY(!folder.isEmpty());
    const QString target = path(QStringLiteral("older.lzn"));
    QVERIFY(writeFile(target, "PK\x03\x04 an older, broken archive"));
    QCOMPARE(run({QStringLiteral("pack"), folder, target}).status, 0);
    QVERIFY(!QFile::exists(target + QStringLiteral(".part")));
    QCOMPARE(run({QStringLiteral("check"), target}).status, 0);

    // A failed pack leaves the older archive as it was.
    const QByteArray packed = readFile(target);
    QVERIFY(run({QStringLiteral("pack"), path(QStringLiteral("no-such-folder")), target}).status != 0);
    QCOMPARE(readFile(target), packed);
}

void TestTool::unpackRefusesNonEmptyFolder()
{
    const QString folder = path(QStringLiteral("occupied"));
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(writeFile(QDir(folder).filePath(QStringLiteral("notes.txt")), "mine"));
    const Run unpack = run({QStringLiteral("unpack"), m_sample, folder});
    QVERIFY(unpack.status != 0);
    QVERIFY(unpack.err.contains(QLatin1String("not an empty folder")));
    QCOMPARE(snapshot(folder).keys(), QStringList{QStringLiteral("notes.txt")});
}

void TestTool::userFolderIsLeftAlone()
{
    const QString folder = unpackSample(QStringLiteral("users-own"));
    QVERIFY(!folder.isEmpty());
    // Opened in place, the document would make this folder again and delete
    // the whole lesson on release.
    QDir(folder).rmdir(QStringLiteral("previews"));
    QVERIFY(writeFile(QDir(folder).filePath(QStringLiteral("page9.svg")), "<svg/>"));
    const QMap<QString, QByteArray> before = snapshot(folder);
    QCOMPARE(run({QStringLiteral("info"), folder}).status, 0);
    const Run check = run({QStringLiteral("check"), folder});
    QCOMPARE(check.status, 0);
    QVERIFY(check.out.contains(QLatin1String("note: page9.svg: present but not listed")));
    QCOMPARE(run({QStringLiteral("dump"), folder, QStringLiteral("--records")}).status, 0);
    QCOMPARE(run({QStringLiteral("render"), folder, path(QStringLiteral("users-pages"))}).status, 0);
    QCOMPARE(snapshot(folder), before);
}

void TestTool::errorsAreOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing file") << QStringList{"info", "nowhere.lzn"} << 1 << "lxdoc: cannot open 'nowhere.lzn': no such file or folder";
    QTest::newRow("other file") << QStringList{"info", "notes.txt"} << 1 << "lxdoc: cannot open 'notes.txt': not a lesson archive";
    QTest::newRow("corrupt archive") << QStringList{"dump", "garbage.lzn"} << 1 << "lxdoc: cannot open 'garbage.lzn': not a lesson archive";
    QTest::newRow("unwritable folder") << QStringList{"render", "sample.lzn", "notes.txt/out"} << 1 << "lxdoc: cannot render: cannot write to the folder";
    QTest::newRow("demo into a missing folder") << QStringList{"demo", "no-such-folder/x.lzn"} << 1 << "lxdoc: cannot write 'no-such-folder/x.lzn': No such file or directory";
    QTest::newRow("page zero") << QStringList{"dump", "sample.lzn", "--page", "0"} << 2 << "lxdoc: dump: --page takes a page number";
    QTest::newRow("unknown command") << QStringList{"shrink"} << 2 << "lxdoc: unknown command 'shrink'";
    QTest::newRow("missing argument") << QStringList{"info"} << 2 << "lxdoc: info: expected 1 argument, got 0";
    QTest::newRow("unknown option") << QStringList{"check", "--fast", "sample.lzn"} << 2 << "lxdoc: check: Unknown option 'fast'.";
    QTest::newRow("import into the appended lesson") << QStringList{"import", "notes.txt", "sample.lzn", "--append", "sample.lzn"} << 2 << "lxdoc: import: OUTPUT must be another file";
    QTest::newRow("import at no resolution") << QStringList{"import", "notes.txt", "x.lzn", "--dpi", "0"} << 2 << "lxdoc: import: --dpi takes a number";
    QTest::newRow("unknown drawing limit") << QStringList{"render", "sample.lzn", "out", "--limit", "speed=9"} << 2 << "lxdoc: render: --limit takes NAME=NUMBER, NAME one of side,";
    QTest::newRow("drawing limit of no size") << QStringList{"export", "--html", "sample.lzn", "web", "--limit", "drawing=0"} << 2 << "lxdoc: export: --limit drawing takes a positive number";
    QTest::newRow("export without a form") << QStringList{"export", "sample.lzn", "web"} << 2 << "lxdoc: export: name the form, --html";
    QTest::newRow("export into a used folder") << QStringList{"export", "--html", "sample.lzn", "sample-pages"} << 1 << "lxdoc: cannot export into 'sample-pages': the folder is not empty";
}

void TestTool::errorsAreOneLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, message);
    QVERIFY(writeFile(path(QStringLiteral("notes.txt")), "not a lesson"));
    QVERIFY(writeFile(path(QStringLiteral("garbage.lzn")), QByteArray(300, 'x')));
    const Run result = run(arguments);
    QCOMPARE(result.status, status);
    QVERIFY2(result.err.startsWith(message), qPrintable(result.err));
    // A usage error adds the command's short usage on a line of its own.
    QCOMPARE(result.err.count(QLatin1Char('\n')), status == 2 ? 2 : 1);
    QVERIFY(result.out.isEmpty());
}

void TestTool::everyCommandHasHelp_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command : {"demo", "info", "dump", "check", "render", "pack", "unpack", "import", "export"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void TestTool::everyCommandHasHelp()
{
    QFETCH(QString, command);
    const Run help = run({command, QStringLiteral("--help")});
    QCOMPARE(help.status, 0);
    QVERIFY2(help.out.startsWith(QStringLiteral("Usage: lxdoc %1 [options]").arg(command)), qPrintable(help.out));
    // Asking for help runs nothing.
    QVERIFY(!QFile::exists(path(QStringLiteral("sample-pages/page-4.png"))));
}

QTEST_GUILESS_MAIN(TestTool)
#include "tst_tool.moc"
