// The command-line host, run as a user runs it: every case works on files in
// a temporary folder and looks only at exit status, output and files.
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Run {
    int status = -1;
    QString out;
    QString err;
};

// Known content of the sample lesson's first page.
const QPoint kRectPixel(200, 150);
const QString kRectFill = QStringLiteral("#1e88e5");
const QPoint kBackgroundPixel(20, 20);
const QString kBackground = QStringLiteral("#fff8e1");

QString toolPath()
{
    return QStringLiteral(LXDOC_BIN_DIR "/lxdoc");
}

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

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
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

private slots:
    void initTestCase();
    void demoWritesArchiveAndPages();
    void infoListsPagesAndResources();
    void dumpJsonParses();
    void dumpTreeAndPageSelection();
    void checkAcceptsSample_data();
    void checkAcceptsSample();
    void checkFindsProblems_data();
    void checkFindsProblems();
    void renderDrawsKnownShapes();
    void renderFitsIntoSizeAndWritesPdf();
    void packUnpackRoundTrip();
    void unpackRefusesNonEmptyFolder();
    void userFolderIsLeftAlone();
    void errorsAreOneLine_data();
    void errorsAreOneLine();
    void everyCommandHasHelp_data();
    void everyCommandHasHelp();
};

Run TestTool::run(const QStringList &arguments, const QString &folder) const
{
    QProcess process;
    process.setWorkingDirectory(folder.isEmpty() ? m_dir.path() : folder);
    process.start(toolPath(), arguments);
    Run result;
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.status = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
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
    // Without FILE the sample goes to the working folder as "sample.lzn".
    const Run demo = run({QStringLiteral("demo")});
    QVERIFY2(demo.status == 0, qPrintable(demo.err));
    m_sample = path(QStringLiteral("sample.lzn"));
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
    QVERIFY(lines.value(1).contains(QLatin1String("4 objects")));
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
    QCOMPARE(classes, QStringList({"rect", "ellipse", "line", "text"}));
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
    QCOMPARE(commands.size(), 6);
    QCOMPARE(commands.at(4).toObject().value(QLatin1String("class")).toString(), QStringLiteral("move"));
    QCOMPARE(commands.at(4).toObject().value(QLatin1String("transform")).toObject().value(QLatin1String("x")).toDouble(), 24.0);
    QCOMPARE(commands.at(5).toObject().value(QLatin1String("steps")).toArray().size(), 2);
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
        else if (damage == QLatin1String("broken-manifest"))
            QVERIFY(writeFile(folder.filePath(QStringLiteral("manifest.xml")), "<manifest><resource>"));
        else if (damage == QLatin1String("no-manifest"))
            QVERIFY(QFile::remove(folder.filePath(QStringLiteral("manifest.xml"))));
    }
    const Run check = run({QStringLiteral("check"), lesson});
    QVERIFY(check.status != 0);
    QVERIFY2((check.out + check.err).contains(finding), qPrintable(check.out + check.err));
}

void TestTool::renderDrawsKnownShapes()
{
    const QString out = path(QStringLiteral("rendered"));
    const Run render = run({QStringLiteral("render"), m_sample, out});
    QVERIFY2(render.status == 0, qPrintable(render.err));
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
    QTest::newRow("unknown command") << QStringList{"shrink"} << 2 << "lxdoc: unknown command 'shrink'";
    QTest::newRow("missing argument") << QStringList{"info"} << 2 << "lxdoc: info: expected 1 argument(s), got 0";
    QTest::newRow("unknown option") << QStringList{"check", "--fast", "sample.lzn"} << 2 << "lxdoc: check: Unknown option 'fast'.";
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
    QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
    QVERIFY(result.out.isEmpty());
}

void TestTool::everyCommandHasHelp_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command : {"demo", "info", "dump", "check", "render", "pack", "unpack"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void TestTool::everyCommandHasHelp()
{
    QFETCH(QString, command);
    const Run help = run({command, QStringLiteral("--help")});
    QCOMPARE(help.status, 0);
    QVERIFY2(help.out.contains(QStringLiteral("[options] %1").arg(command)), qPrintable(help.out));
    // Asking for help runs nothing.
    QVERIFY(!QFile::exists(path(QStringLiteral("sample-pages/page-4.png"))));
}

QTEST_GUILESS_MAIN(TestTool)
#include "tst_tool.moc"
