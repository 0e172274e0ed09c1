// SPDX-License-Identifier: MIT
// Lessons made to hurt their reader: nested beyond reason, names holding
// terminal controls, paths longer than the system allows, and two packs at
// once. Every input is generated here; every case looks only at exit
// status, output and the files left behind.
#include "testsupport.h"
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Run {
    bool finished = false;
    int status = -1;
    QString out;
    QString err;
    qint64 ms = 0;
};

const QString kTool = QStringLiteral(LXDOC_BIN_DIR "/lxdoc");

QByteArray nested(const QByteArray &open, const QByteArray &close, int depth, bool closed = true)
{
    return open.repeated(depth) + (closed ? close.repeated(depth) : QByteArray());
}

QByteArray manifest(const QByteArray &pages, const QByteArray &records, const QByteArray &images = QByteArray())
{
    return "<?xml version='1.0'?>\n<manifest identifier=\"lzn\" version=\"6.0.0\">"
           "<resource identifier=\"pages\">" + pages + "</resource>"
           "<resource identifier=\"records\">" + records + "</resource>"
           "<resource identifier=\"images\">" + images + "</resource></manifest>\n";
}

const QByteArray kOnePage = manifest("<file href=\"page1.svg\"/>", "<file href=\"page1.mtrec\"/>");
const QByteArray kPage = "<svg width=\"400\" height=\"300\"><title>Sums</title></svg>";
const QByteArray kRecord = "<record class=\"page\"><create gids=\"1\" time=\"0\"/></record>";


// A lesson folder from its manifest, page and record texts.
bool writeLesson(const QString &folder, const QByteArray &manifestText, const QByteArray &page, const QByteArray &record)
{
    const QDir root(folder);
    return root.mkpath(QStringLiteral("images")) && writeFile(root.filePath(QStringLiteral("manifest.xml")), manifestText)
        && writeFile(root.filePath(QStringLiteral("page1.svg")), page)
        && writeFile(root.filePath(QStringLiteral("page1.mtrec")), record);
}

// Folders of 200-character names, one inside the other, made relative to
// each other since the whole path is too long for the system to take.
bool makeDeepPath(const QString &folder, int length)
{
    int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    const QByteArray name(200, 'd');
    for (int made = 0; fd >= 0 && made < length; made += name.size() + 1) {
        ::mkdirat(fd, name.constData(), 0755);
        const int child = ::openat(fd, name.constData(), O_RDONLY | O_DIRECTORY);
        ::close(fd);
        fd = child;
    }
    if (fd < 0)
        return false;
    const int file = ::openat(fd, "deep.png", O_WRONLY | O_CREAT, 0644);
    const bool written = file >= 0 && ::write(file, "png", 3) == 3;
    if (file >= 0)
        ::close(file);
    ::close(fd);
    return written;
}

bool hasRawControls(const QString &text)
{
    for (const QChar c : text) {
        if (c != QLatin1Char('\n') && (c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0)))
            return true;
    }
    return false;
}

} // namespace

class TestHostileInput : public QObject {
    Q_OBJECT

private:
    Run run(const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TMPDIR"), m_toolTemp);
        environment.remove(QStringLiteral("LXDOC_VERBOSE"));
        process.setProcessEnvironment(environment);
        QElapsedTimer timer;
        timer.start();
        process.start(kTool, arguments);
        Run result;
        result.finished = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
        result.ms = timer.elapsed();
        result.status = process.exitCode();
        result.out = QString::fromUtf8(process.readAllStandardOutput());
        result.err = QString::fromUtf8(process.readAllStandardError());
        return result;
    }
    QString path(const QString &name) const { return m_dir.filePath(name); }
    QStringList toolTempLeft() const
    {
        // Qt keeps its runtime folder there too; the tool's own are "lxdoc-*".
        return QDir(m_toolTemp).entryList({QStringLiteral("lxdoc-*")}, QDir::AllEntries | QDir::Hidden);
    }

    QTemporaryDir m_dir;
    QString m_toolTemp;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QVERIFY2(QFileInfo(kTool).isExecutable(), qPrintable(kTool));
        m_toolTemp = path(QStringLiteral("tmp"));
        QVERIFY(QDir().mkpath(m_toolTemp));
    }

    // QTemporaryDir cannot remove paths longer than the system limit.
    void cleanupTestCase()
    {
        QProcess::execute(QStringLiteral("rm"), {QStringLiteral("-rf"), m_dir.path()});
    }

    void cleanup()
    {
        QCOMPARE(toolTempLeft(), QStringList());
    }

    void deepLessonsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("manifestText");
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<QString>("finding");
        const QByteArray svg = "<svg width=\"400\" height=\"300\">";
        QTest::newRow("page of nested svg, 50,000 deep")
            << kOnePage << svg + nested("<svg>", "</svg>", 50000) + "</svg>" << kRecord << "page1.svg: nested deeper than";
        QTest::newRow("page of nested groups, 10,000 deep")
            << kOnePage << svg + nested("<g class=\"foreground\">", "</g>", 10000) + "</svg>" << kRecord
            << "page1.svg: nested deeper than";
        QTest::newRow("record nested 10,000 deep")
            << kOnePage << kPage << "<record class=\"page\">" + nested("<group time=\"1\">", "</group>", 10000) + "</record>"
            << "page1.mtrec: nested deeper than";
        QTest::newRow("manifest a million deep")
            << "<manifest>" + nested("<resource>", "</resource>", 1000000) + "</manifest>" << kPage << kRecord
            << "manifest.xml: nested deeper than";
        QTest::newRow("manifest a million deep, unclosed")
            << "<manifest>" + nested("<resource>", "", 1000000, false) << kPage << kRecord << "manifest.xml: nested deeper than";
        QByteArray attributes;
        for (int i = 0; i < 100000; ++i)
            attributes += " a" + QByteArray::number(i) + "=\"1\"";
        QTest::newRow("manifest with 100,000 attributes")
            << "<manifest" + attributes + "/>" << kPage << kRecord << "manifest.xml: an element has more than";
        QTest::newRow("record with 100,000 attributes")
            << kOnePage << kPage << "<record class=\"page\"><create" + attributes + "/></record>"
            << "page1.mtrec: an element has more than";
        QTest::newRow("20,000 pages naming one file")
            << manifest(QByteArray("<file href=\"page1.svg\"/>").repeated(20000), "") << kPage << kRecord
            << "manifest.xml: lists 20000 pages, more than the limit of 10000";
        QTest::newRow("manifest not XML") << QByteArray("PK\x03\x04\x00\x00 not a manifest", 21) << kPage << kRecord
                                          << "manifest.xml: not well-formed XML";
    }

    // Each command ends in time without a crash, and check names the file.
    void deepLessonsAreRefused()
    {
        QFETCH(QByteArray, manifestText);
        QFETCH(QByteArray, page);
        QFETCH(QByteArray, record);
        QFETCH(QString, finding);
        const QString lesson = path(QStringLiteral("deep"));
        QVERIFY(QDir(lesson).removeRecursively());
        QVERIFY(writeLesson(lesson, manifestText, page, record));
        const QString pictures = path(QStringLiteral("deep-render"));
        for (const QStringList &arguments : {QStringList{QStringLiteral("dump"), QStringLiteral("--json"), QStringLiteral("--records")},
                                             QStringList{QStringLiteral("info")}, QStringList{QStringLiteral("check")},
                                             QStringList{QStringLiteral("render")}}) {
            QVERIFY(QDir(pictures).removeRecursively());
            const bool render = arguments.first() == QLatin1String("render");
            const Run result = run(arguments + QStringList{lesson} + (render ? QStringList{pictures} : QStringList()));
            const QString what = arguments.first() + QStringLiteral(": ") + result.out.left(300) + result.err;
            QVERIFY2(result.finished, qPrintable(what));
            QVERIFY2(result.ms < kHangBoundMs, qPrintable(QStringLiteral("%1 took %2 ms").arg(arguments.first()).arg(result.ms)));
            if (arguments.first() == QLatin1String("check")) {
                QCOMPARE(result.status, 1);
                QVERIFY2(result.out.contains(finding), qPrintable(what));
            }
            // Refused as a whole, by every command, with the limit named.
            if (finding.contains(QLatin1String("than the limit of")) && arguments.first() != QLatin1String("check")) {
                QCOMPARE(result.status, 1);
                QVERIFY2(result.err.contains(finding.section(QStringLiteral(": "), 1)), qPrintable(what));
            }
            if (arguments.first() == QLatin1String("info") && finding.startsWith(QLatin1String("page1.mtrec")))
                QVERIFY2(result.out.contains(QLatin1String("recording cannot be read")), qPrintable(what));
            // Raised, the limit lets the lesson be read, the file once.
            if (finding.contains(QLatin1String("than the limit of")) && arguments.first() == QLatin1String("check")) {
                const Run raised = run({QStringLiteral("--limits=pages=20000"), QStringLiteral("check"), lesson});
                QVERIFY2(raised.finished && raised.ms < kHangBoundMs, qPrintable(raised.err));
                QCOMPARE(raised.out.count(QLatin1String("'page1.svg' is listed more than once")), 1);
                QVERIFY2(!raised.out.contains(QLatin1String("than the limit of")), qPrintable(raised.out));
            }
            // A refused recording is no empty one.
            if (arguments.first() == QLatin1String("dump") && finding.startsWith(QLatin1String("page1.mtrec"))) {
                QCOMPARE(result.status, 1);
                QVERIFY2(result.err.contains(QLatin1String("recording (page1.mtrec) cannot be read")), qPrintable(what));
            }
        }
    }

    void namesAreEscaped_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("escaped");
        QTest::newRow("info: title") << QStringList{"info"} << "Sums\\nlxdoc: fake";
        QTest::newRow("info: resource name") << QStringList{"info"} << "images/a\\x9b31m.png";
        QTest::newRow("dump: title") << QStringList{"dump"} << "Sums\\nlxdoc: fake";
        QTest::newRow("dump --json: title") << QStringList{"dump", "--json"} << "Sums\\\\nlxdoc: fake";
        QTest::newRow("check: unlisted member") << QStringList{"check"} << "images/\\x1b[31mRED\\x07.png";
        QTest::newRow("check: listed name") << QStringList{"check"} << "images/a\\x9b31m.png";
    }

    // No control character from a name reaches the terminal, and no name
    // can fake a line of its own.
    void namesAreEscaped()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, escaped);
        const QString lesson = path(QStringLiteral("names"));
        const QByteArray title = "<svg width=\"400\" height=\"300\"><title>Sums&#10;lxdoc: fake&#x9b;</title></svg>";
        QVERIFY(writeLesson(lesson, manifest("<file href=\"page1.svg\"/>", "", "<file href=\"images/a&#x9b;31m.png\"/>"),
                            title, kRecord));
        QVERIFY(writeFile(lesson + QStringLiteral("/images/\x1b[31mRED\x07.png"), "png"));
        const Run result = run(arguments + QStringList{lesson});
        QVERIFY(result.finished);
        const QString all = result.out + result.err;
        QVERIFY2(!hasRawControls(all), qPrintable(all));
        QVERIFY2(all.contains(escaped), qPrintable(all));
        QVERIFY2(!all.contains(QLatin1String("\nlxdoc: fake")), qPrintable(all));
    }

    void longPathsLeaveNothing_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("length");
        QTest::newRow("info, 4k deep") << "info" << 4200;
        QTest::newRow("unpack, 4k deep") << "unpack" << 4200;
        QTest::newRow("unpack, 27k deep") << "unpack" << 27000;
    }

    // The private copy goes on every way out, unpack never leaves part of a
    // lesson in the user's folder, and the error line stays short.
    void longPathsLeaveNothing()
    {
        QFETCH(QString, command);
        QFETCH(int, length);
        const QString lesson = path(QStringLiteral("long-%1").arg(length));
        QVERIFY(writeLesson(lesson, kOnePage, kPage, kRecord));
        QVERIFY(makeDeepPath(lesson + QStringLiteral("/images"), length));
        const QString archive = lesson + QStringLiteral(".lzn");
        const Run packed = run({QStringLiteral("pack"), lesson, archive});
        if (packed.status != 0)
            QSKIP(qPrintable(QStringLiteral("the plug-in cannot pack the deep tree: ") + packed.err));

        const QString target = path(QStringLiteral("unpacked"));
        QStringList arguments{command, archive};
        if (command == QLatin1String("unpack"))
            arguments << target;
        const Run result = run(arguments);
        QVERIFY(result.finished);
        QVERIFY2(result.err.size() < 400, qPrintable(result.err.left(400)));
        QCOMPARE(toolTempLeft(), QStringList());
        if (command == QLatin1String("unpack")) {
            QCOMPARE(QFileInfo::exists(target), result.status == 0);
            QCOMPARE(QDir(path(QString())).entryList({QStringLiteral(".unpacked*")}, QDir::AllEntries | QDir::Hidden),
                     QStringList());
        }
    }

    // Packs onto one archive at once all succeed, leave one whole archive
    // and nothing beside it.
    void concurrentPacks()
    {
        const QString lesson = path(QStringLiteral("shared"));
        QVERIFY(writeLesson(lesson, kOnePage, kPage, kRecord));
        const QString shelf = path(QStringLiteral("shelf"));
        QVERIFY(QDir().mkpath(shelf));
        const QString archive = shelf + QStringLiteral("/lesson.lzn");
        for (int round = 0; round < 5; ++round) {
            QList<QProcess *> processes;
            for (int i = 0; i < 4; ++i) {
                QProcess *const process = new QProcess(this);
                process->start(kTool, {QStringLiteral("pack"), lesson, archive});
                processes << process;
            }
            for (QProcess *process : processes) {
                QVERIFY(process->waitForFinished(60000));
                QVERIFY2(process->exitCode() == 0, process->readAllStandardError().constData());
                delete process;
            }
            QCOMPARE(QDir(shelf).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                     QStringList{QStringLiteral("lesson.lzn")});
        }
        const QString out = path(QStringLiteral("shared-out"));
        QCOMPARE(run({QStringLiteral("unpack"), archive, out}).status, 0);
        QVERIFY(QFileInfo::exists(out + QStringLiteral("/page1.mtrec")));
    }
};

QTEST_GUILESS_MAIN(TestHostileInput)
#include "tst_hostileinput.moc"
