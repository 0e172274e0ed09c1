// SPDX-License-Identifier: MIT
// How "lxdoc" behaves as a command-line tool: path forms, standard streams,
// outputs it replaces, usage errors, signals, and what it prints for scripts.
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "testsupport.h"
#include "tool/toolrunner.h"

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A page with what the sample lesson lacks: a float opacity, a percent
// length, a group with a child, a flipped placement; and its recording.
const QByteArray kMixedPage =
    "<svg width=\"400\" height=\"300\"><rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>"
    "<g class=\"foreground\"><rect gid=\"1\" x=\"10\" y=\"10\" width=\"50%\" height=\"40\" fill=\"#ff0000\" opacity=\"0.8\" "
    "stroke-width=\"1.7\"/><g gid=\"2\" bound=\"10.50,20.25,100.00,50.00\" transform=\"translate(10.50,20.25) scale(-1,1)\">"
    "<ellipse cx=\"5\" cy=\"5\" rx=\"3\" ry=\"3\" opacity=\"0.3\"/></g></g></svg>";
const QByteArray kMixedRecord =
    "<record class=\"page\"><create gid=\"1\" time=\"0\"/><move gid=\"2\" time=\"100\" transform=\"translate(0.10,0.20)\"/></record>";

QByteArray manifestListing(const QStringList &pages, const QStringList &records)
{
    QByteArray manifest = "<manifest identifier=\"lzn\" version=\"6.0.0\"><resource identifier=\"pages\">";
    for (const QString &page : pages)
        manifest += "<file href=\"" + page.toUtf8() + "\"/>";
    manifest += "</resource><resource identifier=\"records\">";
    for (const QString &record : records)
        manifest += "<file href=\"" + record.toUtf8() + "\"/>";
    return manifest + "</resource></manifest>";
}

// A lesson of count plain pages of the given size.
bool writePlainLesson(const QString &folder, int count, const QByteArray &size)
{
    QStringList pages;
    if (!QDir().mkpath(folder))
        return false;
    for (int id = 1; id <= count; ++id) {
        pages << QStringLiteral("page%1.svg").arg(id);
        if (!writeFile(QDir(folder).filePath(pages.last()), "<svg " + size + "><rect width=\"100%\" height=\"100%\" fill=\"#336699\"/></svg>"))
            return false;
    }
    return writeFile(QDir(folder).filePath(QStringLiteral("manifest.xml")), manifestListing(pages, {}));
}

// Qt may keep its own runtime folder in the same temporary folder.
QStringList runFolders(const QString &temp)
{
    return QDir(temp).entryList({QStringLiteral("lxdoc-*")}, QDir::Dirs | QDir::Hidden, QDir::Name);
}

// The id of a process that has ended.
qint64 deadPid()
{
    QProcess gone;
    gone.start(QStringLiteral("/bin/true"), QStringList());
    const qint64 pid = gone.waitForStarted() ? gone.processId() : 0;
    gone.waitForFinished();
    return pid;
}

QString withoutSlash(QString path)
{
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

} // namespace

class TestCli : public QObject {
    Q_OBJECT

private:
    ToolRun run(const QStringList &arguments, ToolCall call = ToolCall()) const;
    QString path(const QString &name) const { return m_dir.filePath(name); }
    ToolCall withTemp(const QString &temp) const;

    QTemporaryDir m_dir;
    QString m_sample;
    QString m_folder;
    QByteArray m_info;

private slots:
    void initTestCase();
    void pathForms_data();
    void pathForms();
    void usageErrors_data();
    void usageErrors();
    void version();
    void standardStreams_data();
    void standardStreams();
    void outputReplacement_data();
    void outputReplacement();
    void stdoutWriteError();
    void nonUtf8Name();
    void warningsAndPlatform_data();
    void warningsAndPlatform();
    void interruptedRunCleansUp_data();
    void interruptedRunCleansUp();
    void leftoversOfKilledRuns();
    void progressOnTerminal_data();
    void progressOnTerminal();
    void renderOutputs();
    void dumpJsonNumbersAndSchema();
};

ToolRun TestCli::run(const QStringList &arguments, ToolCall call) const
{
    if (call.folder.isEmpty())
        call.folder = m_dir.path();
    return runTool(arguments, call);
}

ToolCall TestCli::withTemp(const QString &temp) const
{
    ToolCall call;
    call.environment.insert(QStringLiteral("TMPDIR"), temp);
    return call;
}

void TestCli::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_sample = path(QStringLiteral("sample.lzn"));
    m_folder = path(QStringLiteral("lesson"));
    QCOMPARE(run({QStringLiteral("demo"), m_sample}).status, 0);
    QCOMPARE(run({QStringLiteral("unpack"), m_sample, m_folder}).status, 0);
    m_info = run({QStringLiteral("info"), m_sample}).out.section(QLatin1Char('\n'), 1).toUtf8();
    QVERIFY(m_info.contains("Shapes and text"));
}

void TestCli::pathForms_data()
{
    QTest::addColumn<QString>("lesson");
    QTest::addColumn<bool>("archive");
    const QStringList forms{QStringLiteral("plain"), QStringLiteral("./dotted"), QStringLiteral("sub/nested"),
                            QStringLiteral("with space/a lesson"), QStringLiteral("leçons/Übung ß")};
    for (const QString &form : forms) {
        QTest::newRow(qPrintable(form + QStringLiteral(" folder"))) << form + QStringLiteral("-dir") << false;
        QTest::newRow(qPrintable(form + QStringLiteral(" archive"))) << form + QStringLiteral(".lzn") << true;
    }
    QTest::newRow("trailing slash folder") << "slashed/" << false;
}

void TestCli::pathForms()
{
    QFETCH(QString, lesson);
    QFETCH(bool, archive);
    // Relative names, as typed, from the test folder.
    const QString made = path(withoutSlash(lesson));
    QVERIFY(QDir().mkpath(QFileInfo(made).path()));
    if (archive)
        QVERIFY(QFile::copy(m_sample, made));
    else
        QCOMPARE(run({QStringLiteral("unpack"), m_sample, made}).status, 0);
    const QString stem = withoutSlash(lesson).replace(QStringLiteral(".lzn"), QString());
    const QList<QStringList> commands{
        {QStringLiteral("info"), lesson},
        {QStringLiteral("dump"), lesson, QStringLiteral("--records")},
        {QStringLiteral("check"), lesson},
        {QStringLiteral("render"), lesson, stem + QStringLiteral(" pages/")},
        archive ? QStringList{QStringLiteral("unpack"), lesson, stem + QStringLiteral("-out/")}
                : QStringList{QStringLiteral("pack"), lesson, stem + QStringLiteral(" packed.lzn")},
    };
    for (const QStringList &arguments : commands) {
        const ToolRun result = run(arguments);
        QVERIFY2(result.status == 0, qPrintable(arguments.join(QLatin1Char(' ')) + QStringLiteral(": ") + result.err));
    }
    QCOMPARE(run({QStringLiteral("info"), lesson}).out.section(QLatin1Char('\n'), 1).toUtf8(), m_info);
    QVERIFY(QFile::exists(path(stem + QStringLiteral(" pages/page-3.png"))));
    QVERIFY(QFile::exists(path(archive ? stem + QStringLiteral("-out/manifest.xml") : stem + QStringLiteral(" packed.lzn"))));
}

void TestCli::usageErrors_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("usage");
    QTest::newRow("no command") << QStringList{} << "no command given" << "lxdoc COMMAND [options] ARGS";
    QTest::newRow("unknown command") << QStringList{"shrink"} << "unknown command 'shrink' (see 'lxdoc --help')" << "lxdoc COMMAND [options] ARGS";
    QTest::newRow("unknown help topic") << QStringList{"help", "bogus"} << "help: no such command 'bogus'" << "lxdoc help [COMMAND]";
    QTest::newRow("optional argument") << QStringList{"demo", "a.lzn", "b.lzn"} << "demo: expected 0 or 1 argument, got 2" << "lxdoc demo [options] [FILE]";
    QTest::newRow("one argument") << QStringList{"info"} << "info: expected 1 argument, got 0" << "lxdoc info [options] FILE";
    QTest::newRow("two arguments") << QStringList{"pack", "x"} << "pack: expected 2 arguments, got 1" << "lxdoc pack [options] FOLDER FILE";
    QTest::newRow("limit not a number") << QStringList{"--limits", "pages=many", "info", "x"}
                                        << "--limits: 'pages=many' is not NAME=NUMBER with a known name and a positive number "
                                           "(names: pages, depth, attributes, entries, ratio)"
                                        << "lxdoc COMMAND [options] ARGS";
    QTest::newRow("unknown option") << QStringList{"-q", "check", "--fast", "x"} << "check: Unknown option 'fast'." << "lxdoc check [options] FILE";
}

void TestCli::usageErrors()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QFETCH(QString, usage);
    const ToolRun result = run(arguments);
    QCOMPARE(result.status, 2);
    QVERIFY(result.out.isEmpty());
    QCOMPARE(result.err, QStringLiteral("lxdoc: %1\nUsage: %2\n").arg(message, usage));
}

void TestCli::version()
{
    const ToolRun version = run({QStringLiteral("--version")});
    QCOMPARE(version.status, 0);
    QVERIFY2(QRegularExpression(QStringLiteral("^lxdoc \\d+\\.\\d+\\.\\d+\n$")).match(version.out).hasMatch(), qPrintable(version.out));
    QCOMPARE(run({QStringLiteral("version")}).out, version.out);
}

void TestCli::standardStreams_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("info") << QStringList{"info", "-"} << "Shapes and text";
    QTest::newRow("dump") << QStringList{"dump", "-", "--page", "2"} << "stroke gid=1";
    QTest::newRow("check") << QStringList{"check", "-"} << "no problems found";
    QTest::newRow("render") << QStringList{"render", "-", "from-stdin"} << "rendered 3 page(s)";
    QTest::newRow("unpack") << QStringList{"unpack", "-", "stdin-unpacked"} << "";
}

void TestCli::standardStreams()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const ToolRun packed = run({QStringLiteral("pack"), m_folder, QStringLiteral("-")});
    QCOMPARE(packed.status, 0);
    QVERIFY(packed.bytes.startsWith("PK\x03\x04"));
    QVERIFY(!QFile::exists(path(QStringLiteral("-"))));
    ToolCall call;
    call.input = packed.bytes;
    const ToolRun result = run(arguments, call);
    QVERIFY2(result.status == 0, qPrintable(result.err));
    QVERIFY2(result.out.contains(expected), qPrintable(result.out));
}

void TestCli::outputReplacement_data()
{
    QTest::addColumn<QString>("existing");
    QTest::addColumn<bool>("force");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");
    QTest::newRow("text file kept") << "text" << false << 1 << "cannot write 'out.lzn': it exists and is not a lesson archive";
    QTest::newRow("text file forced") << "text" << true << 0 << "";
    QTest::newRow("archive keeps its mode") << "archive" << false << 0 << "";
    QTest::newRow("link written through") << "link" << false << 0 << "";
    QTest::newRow("user's part file kept") << "part" << false << 0 << "";
    QTest::newRow("folder refused") << "folder" << true << 1 << "cannot write 'out.lzn': it is a folder";
    QTest::newRow("missing folder") << "nowhere" << false << 1 << "cannot write 'nowhere/out.lzn': No such file or directory";
}

void TestCli::outputReplacement()
{
    QFETCH(QString, existing);
    QFETCH(bool, force);
    QFETCH(int, status);
    QFETCH(QString, error);
    const QTemporaryDir place(path(QStringLiteral("out-XXXXXX")));
    const QDir folder(place.path());
    const QString target = folder.filePath(QStringLiteral("out.lzn"));
    const QString file = existing == QLatin1String("link") ? folder.filePath(QStringLiteral("real.lzn")) : target;
    if (existing == QLatin1String("text"))
        QVERIFY(writeFile(file, "my notes\n"));
    else if (existing == QLatin1String("folder"))
        QVERIFY(folder.mkdir(QStringLiteral("out.lzn")));
    else if (existing == QLatin1String("part"))
        QVERIFY(writeFile(target + QStringLiteral(".part"), "mine"));
    // What a killed run left beside the target goes; the user's own does not.
    QVERIFY(writeFile(file + QStringLiteral(".lxdoc-%1-AbC123.part").arg(deadPid()), "killed"));
    if (existing == QLatin1String("archive") || existing == QLatin1String("link")) {
        QVERIFY(writeFile(file, "PK\x05\x06 an older archive"));
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner));
        // Only root may give a file away, and keep it given on replacing.
        if (::getuid() == 0)
            QCOMPARE(::chown(QFile::encodeName(file).constData(), 65534, 65534), 0);
    }
    if (existing == QLatin1String("link"))
        QVERIFY(QFile::link(QStringLiteral("real.lzn"), target));
    const QByteArray before = readBytes(file);
    QStringList arguments{QStringLiteral("pack"), m_folder, existing == QLatin1String("nowhere") ? QStringLiteral("nowhere/out.lzn") : QStringLiteral("out.lzn")};
    if (force)
        arguments << QStringLiteral("--force");
    ToolCall call;
    call.folder = place.path();
    const ToolRun result = run(arguments, call);
    QCOMPARE(result.status, status);
    QVERIFY2(result.err.startsWith(error.isEmpty() ? QString() : QStringLiteral("lxdoc: ") + error), qPrintable(result.err));
    if (status != 0) {
        QCOMPARE(readBytes(file), before);
    } else {
        QVERIFY(readBytes(file).startsWith("PK\x03\x04"));
        QCOMPARE(QFileInfo(target).isSymLink(), existing == QLatin1String("link"));
    }
    struct stat info;
    if (existing == QLatin1String("archive") || existing == QLatin1String("link")) {
        QCOMPARE(::stat(QFile::encodeName(file).constData(), &info), 0);
        QCOMPARE(info.st_mode & 0777, mode_t(0600));
        if (::getuid() == 0)
            QCOMPARE(info.st_uid, uid_t(65534));
    }
    if (existing == QLatin1String("part"))
        QCOMPARE(readBytes(target + QStringLiteral(".part")), QByteArray("mine"));
    // No temporary file is left beside the target when anything was written.
    for (const QString &name : entries(place.path()))
        QVERIFY2(status != 0 || name == QLatin1String("out.lzn") || name == QLatin1String("real.lzn") || name == QLatin1String("out.lzn.part"), qPrintable(name));
}

void TestCli::stdoutWriteError()
{
    ToolCall call;
    call.outputFile = QStringLiteral("/dev/full");
    const ToolRun result = run({QStringLiteral("info"), m_sample}, call);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.err, QStringLiteral("lxdoc: cannot write the standard output: No space left on device\n"));
}

void TestCli::nonUtf8Name()
{
    // Qt cannot name such a file, so the shell makes it and passes it on.
    const QString script = QStringLiteral("bad=$(printf 'x\\377.lzn'); cp sample.lzn \"$bad\" || exit 9; "
                                          "\"$0\" info \"$(printf '%1\\377.lzn')\"; status=$?; rm \"$bad\"; exit $status");
    QProcess shell;
    shell.setWorkingDirectory(m_dir.path());
    for (const QString &prefix : {QStringLiteral("x"), QStringLiteral("y")}) {
        shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script.arg(prefix), toolPath()});
        QVERIFY(shell.waitForFinished(60000));
        QCOMPARE(shell.exitCode(), 1);
        const QString err = QString::fromUtf8(shell.readAllStandardError());
        QVERIFY2(err.contains(prefix == QLatin1String("x") ? QLatin1String("not valid UTF-8") : QLatin1String("no such file")), qPrintable(err));
    }
}

void TestCli::warningsAndPlatform_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("flag");
    QTest::addColumn<bool>("chatter");
    QTest::newRow("quiet by default") << "" << "" << "" << false;
    QTest::newRow("LXDOC_VERBOSE=1") << "LXDOC_VERBOSE" << "1" << "" << true;
    QTest::newRow("LXDOC_VERBOSE=0") << "LXDOC_VERBOSE" << "0" << "" << false;
    QTest::newRow("--verbose") << "" << "" << "--verbose" << true;
    QTest::newRow("-v after -q") << "" << "" << "-v" << true;
    // Platforms that need a display, without one: the tool never uses them.
    QTest::newRow("empty platform") << "QT_QPA_PLATFORM" << "" << "" << false;
    QTest::newRow("xcb platform") << "QT_QPA_PLATFORM" << "xcb" << "" << false;
    QTest::newRow("wayland platform") << "QT_QPA_PLATFORM" << "wayland" << "" << false;
}

void TestCli::warningsAndPlatform()
{
    QFETCH(QString, variable);
    QFETCH(QString, value);
    QFETCH(QString, flag);
    QFETCH(bool, chatter);
    const QString broken = path(QStringLiteral("broken"));
    QVERIFY(QDir().mkpath(broken));
    QVERIFY(writeFile(QDir(broken).filePath(QStringLiteral("manifest.xml")), manifestListing({QStringLiteral("page1.svg")}, {})));
    QVERIFY(writeFile(QDir(broken).filePath(QStringLiteral("page1.svg")), "<svg><g></svg>"));
    ToolCall call;
    call.environment.remove(QStringLiteral("LXDOC_VERBOSE"));
    call.environment.remove(QStringLiteral("DISPLAY"));
    call.environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    if (!variable.isEmpty())
        call.environment.insert(variable, value);
    QStringList arguments{QStringLiteral("-q"), QStringLiteral("info"), broken};
    if (!flag.isEmpty())
        arguments << flag;
    const ToolRun result = run(arguments, call);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.err.contains(QLatin1String("lxdoc: (qt) ")), chatter);
}

void TestCli::interruptedRunCleansUp_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << int(SIGINT);
    QTest::newRow("SIGTERM") << int(SIGTERM);
}

void TestCli::interruptedRunCleansUp()
{
    QFETCH(int, signal);
    const QString lesson = path(QStringLiteral("large"));
    if (!QFile::exists(lesson))
        QVERIFY(writePlainLesson(lesson, 200, "width=\"4000\" height=\"3000\""));
    const QTemporaryDir temp(path(QStringLiteral("tmp-XXXXXX")));
    const ToolCall call = withTemp(temp.path());
    QProcess process;
    process.setProcessEnvironment(call.environment);
    process.start(toolPath(), {QStringLiteral("render"), lesson, path(QStringLiteral("large-%1").arg(signal))});
    QVERIFY(process.waitForStarted());
    // Wait until the run has made its private copy and started drawing.
    QTRY_VERIFY_WITH_TIMEOUT(runFolders(temp.path()).size() >= 2, 60000);
    QVERIFY(::kill(pid_t(process.processId()), signal) == 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + signal);
    QCOMPARE(runFolders(temp.path()), QStringList());
}

void TestCli::leftoversOfKilledRuns()
{
    const QTemporaryDir temp(path(QStringLiteral("tmp-XXXXXX")));
    const QString dead = QStringLiteral("lxdoc-%1-AbC123").arg(deadPid());
    const QString alive = QStringLiteral("lxdoc-%1-AbC123").arg(QCoreApplication::applicationPid());
    const QString other = QStringLiteral("lxdoc-notes");
    for (const QString &name : {dead, alive, other}) {
        QVERIFY(QDir(temp.path()).mkpath(name + QStringLiteral("/lesson")));
        QVERIFY(writeFile(QDir(temp.path()).filePath(name + QStringLiteral("/lesson/manifest.xml"))));
    }
    QCOMPARE(run({QStringLiteral("info"), m_sample}, withTemp(temp.path())).status, 0);
    QCOMPARE(runFolders(temp.path()), QStringList({alive, other}));
}

void TestCli::progressOnTerminal_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("shown");
    QTest::newRow("pack") << "pack lesson terminal.lzn" << "packing 1/2";
    QTest::newRow("unpack") << "unpack sample.lzn terminal-unpacked" << "unpacking 1/2";
    QTest::newRow("check") << "check sample.lzn" << "checking 2/2";
    QTest::newRow("quiet") << "-q check sample.lzn" << "";
}

void TestCli::progressOnTerminal()
{
    QFETCH(QString, command);
    QFETCH(QString, shown);
    // script(1) gives the tool a terminal for stdout and stderr.
    QProcess script;
    script.setWorkingDirectory(m_dir.path());
    script.start(QStringLiteral("script"), {QStringLiteral("-qec"), toolPath() + QLatin1Char(' ') + command, QStringLiteral("/dev/null")});
    if (!script.waitForStarted())
        QSKIP("script(1) is not installed");
    QVERIFY(script.waitForFinished(60000));
    QCOMPARE(script.exitCode(), 0);
    const QByteArray output = script.readAllStandardOutput();
    QCOMPARE(output.contains("\r\033[K"), !shown.isEmpty());
    QVERIFY2(output.contains(shown.toUtf8()), output.constData());
}

void TestCli::renderOutputs()
{
    const QString lesson = path(QStringLiteral("twelve"));
    QVERIFY(writePlainLesson(lesson, 12, "width=\"40\" height=\"30\""));
    const QString out = path(QStringLiteral("twelve-pages"));
    const ToolRun first = run({QStringLiteral("-q"), QStringLiteral("render"), lesson, out});
    QCOMPARE(first.status, 0);
    QVERIFY2(first.out.isEmpty(), qPrintable(first.out));
    QStringList names;
    for (int page = 1; page <= 12; ++page)
        names << QStringLiteral("page-%1.png").arg(page, 2, 10, QLatin1Char('0'));
    QCOMPARE(entries(out), names);

    // A folder that holds files is written into only when forced, and then
    // it no longer holds pages of another rendering.
    QVERIFY(writeFile(QDir(out).filePath(QStringLiteral("page-13.png"))));
    QVERIFY(writeFile(QDir(out).filePath(QStringLiteral("notes.txt"))));
    const ToolRun refused = run({QStringLiteral("render"), lesson, out});
    QCOMPARE(refused.status, 1);
    QVERIFY2(refused.err.contains(QLatin1String("--force")), qPrintable(refused.err));
    QCOMPARE(run({QStringLiteral("render"), lesson, out, QStringLiteral("--force")}).status, 0);
    QCOMPARE(entries(out), QStringList{QStringLiteral("notes.txt")} + names);

    // Every output is checked before anything is drawn.
    const QString fresh = path(QStringLiteral("fresh-pages"));
    QVERIFY(writeFile(path(QStringLiteral("notes.pdf")), "not a PDF"));
    for (const QString &pdf : {QStringLiteral("nowhere/x.pdf"), QStringLiteral("notes.pdf")}) {
        const ToolRun result = run({QStringLiteral("render"), lesson, fresh, QStringLiteral("--pdf"), pdf});
        QCOMPARE(result.status, 1);
        QVERIFY(!QFile::exists(QDir(fresh).filePath(names.first())));
    }
    QCOMPARE(readBytes(path(QStringLiteral("notes.pdf"))), QByteArray("not a PDF"));
}

void TestCli::dumpJsonNumbersAndSchema()
{
    const QString mixed = path(QStringLiteral("mixed"));
    QVERIFY(QDir().mkpath(mixed));
    QVERIFY(writeFile(QDir(mixed).filePath(QStringLiteral("manifest.xml")),
                      manifestListing({QStringLiteral("page1.svg")}, {QStringLiteral("page1.mtrec")})));
    QVERIFY(writeFile(QDir(mixed).filePath(QStringLiteral("page1.svg")), kMixedPage));
    QVERIFY(writeFile(QDir(mixed).filePath(QStringLiteral("page1.mtrec")), kMixedRecord));
    QStringList outputs;
    for (const QString &lesson : {m_sample, mixed}) {
        const ToolRun dump = run({QStringLiteral("dump"), lesson, QStringLiteral("--json"), QStringLiteral("--records")});
        QCOMPARE(dump.status, 0);
        QVERIFY(!QJsonDocument::fromJson(dump.bytes).isNull());
        // Floats widened to double would show long tails of digits.
        QVERIFY2(!QRegularExpression(QStringLiteral("\\d\\.\\d{6,}")).match(dump.out).hasMatch(), qPrintable(dump.out));
        outputs << QDir(m_dir.path()).filePath(QFileInfo(lesson).baseName() + QStringLiteral(".json"));
        QVERIFY(writeFile(outputs.last(), dump.bytes));
    }
    QVERIFY(readBytes(outputs.last()).contains("\"opacity\": 0.8"));
    QVERIFY(readBytes(outputs.last()).contains("\"width\": \"50%\""));

    const QString check = QStringLiteral("import json, sys, jsonschema\n"
                                         "schema = json.load(open(sys.argv[1]))\n"
                                         "for name in sys.argv[2:]:\n"
                                         "    jsonschema.validate(json.load(open(name)), schema)\n");
    QProcess python;
    python.start(QStringLiteral("python3"), QStringList{QStringLiteral("-c"), check,
                                                        QStringLiteral(LXDOC_TEST_DATA "/../../docs/lxdoc-dump.schema.json")} + outputs);
    if (!python.waitForStarted())
        QSKIP("python3 is not installed");
    QVERIFY(python.waitForFinished(60000));
    const QByteArray complaint = python.readAllStandardError();
    if (complaint.contains("No module named 'jsonschema'"))
        QSKIP("python3-jsonschema is not installed");
    QVERIFY2(python.exitCode() == 0, complaint.constData());
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
