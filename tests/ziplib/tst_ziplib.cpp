// The archive plug-in on its own, loaded as the document loads it.

#include "../../src/document/archivetool.h"
#include "testsupport.h"

#include <QDateTime>
#include <QDirIterator>
#include <QLibrary>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <unistd.h>

namespace {

// Files and folders below a folder: relative name -> contents, folders with a
// trailing '/'. Links are left out, as the plug-in leaves them out.
using Tree = QMap<QString, QByteArray>;

Tree readTree(const QString &root, QMap<QString, qint64> *times = nullptr)
{
    Tree tree;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        if (info.isSymLink())
            continue;
        const QString name = QDir(root).relativeFilePath(info.filePath()) + QString(info.isDir() ? "/" : "");
        tree[name] = info.isDir() ? QByteArray() : readBytes(info.filePath());
        if (times)
            (*times)[name] = info.lastModified().toSecsSinceEpoch();
    }
    return tree;
}

void writeTree(const QString &root, const Tree &tree)
{
    const QDateTime old(QDate(2015, 6, 1), QTime(9, 30, 17), Qt::UTC);
    int step = 0;
    for (auto it = tree.begin(); it != tree.end(); ++it) {
        const QString path = root + '/' + it.key();
        const bool folder = it.key().endsWith('/');
        QDir().mkpath(folder ? path : QFileInfo(path).path());
        QVERIFY(folder || writeFile(path, it.value()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly) || folder);
        file.setFileTime(old.addSecs(3600 * ++step), QFileDevice::FileModificationTime);
    }
}

Tree lessonTree()
{
    QByteArray binary(3 << 20, '\0');
    for (char &byte : binary)
        byte = char(QRandomGenerator::global()->generate());
    return Tree{{"manifest.xml", "<manifest><pages>page1.svg</pages></manifest>\n"},
                {"page1.svg", QByteArray("<svg/>\n").repeated(5000)},
                {"images/photo.PNG", binary},
                {"images/empty.txt", QByteArray()},
                {"sounds/", QByteArray()},
                {"deep/er/still/", QByteArray()},
                {".hidden", "h"},
                {QString::fromUtf8("attachments/Übung ✓.txt"), "unicode"}};
}

QString pythonPath()
{
    // Version-manager shims take seconds per start: ask once for the real interpreter.
    static const QString path = [] {
        const QString shim = QStandardPaths::findExecutable("python3");
        QProcess process;
        if (!shim.isEmpty())
            process.start(shim, {"-c", "import sys; print(sys.executable)"});
        process.waitForFinished();
        const QString real = QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
        return real.isEmpty() ? shim : real;
    }();
    return path;
}

QString findTool(const QString &name)
{
    return name == "python3" ? pythonPath() : QStandardPaths::findExecutable(name);
}

bool run(const QString &program, const QStringList &arguments, const QString &cwd = QString())
{
    QProcess process;
    process.setWorkingDirectory(cwd);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    return process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

// Builds hostile archives: "z" is the open ZipFile, path the archive.
const char PythonPrelude[] = R"(
import sys, zipfile, struct, warnings
warnings.simplefilter('ignore')
path, outside = sys.argv[1], sys.argv[2]
def typed(z, name, data, mode):
    i = zipfile.ZipInfo(name); i.create_system = 3; i.external_attr = mode << 16; z.writestr(i, data)
def headers(data):
    for sig, flags, size in ((b'PK\x03\x04', 6, 22), (b'PK\x01\x02', 8, 24)):
        at = data.find(sig)
        while at >= 0:
            yield at + flags, at + size
            at = data.find(sig, at + 4)
def patch(old=b'', new=b'', flag=0, size=None):
    data = bytearray(open(path, 'rb').read().replace(old, new) if old else open(path, 'rb').read())
    for f, s in headers(bytes(data)):
        data[f:f + 2] = struct.pack('<H', struct.unpack('<H', data[f:f + 2])[0] | flag)
        if size is not None:
            data[s:s + 4] = struct.pack('<I', size)
    open(path, 'wb').write(bytes(data))
z = zipfile.ZipFile(path, 'w', zipfile.ZIP_DEFLATED)
)";

// Other readers rely on this layout: media stored, text deflated, folders
// listed, names flagged as UTF-8.
const char PythonReads[] = R"(
import zipfile
z = zipfile.ZipFile('../a.zip'); i = {e.filename: e for e in z.infolist()}
assert z.testzip() is None
assert i['images/photo.PNG'].compress_type == zipfile.ZIP_STORED
assert i['page1.svg'].compress_type == zipfile.ZIP_DEFLATED
assert 'sounds/' in i and 'deep/er/still/' in i and i['attachments/Übung ✓.txt'].flag_bits & 0x800
z.extractall()
)";

const char PythonWrites[] = R"(
import os, zipfile
with zipfile.ZipFile('../a.zip', 'w', zipfile.ZIP_DEFLATED) as z:
    for base, dirs, files in os.walk('.'):
        for name in dirs + files:
            z.write(os.path.join(base, name))
)";

} // namespace

class TestZipLib : public QObject {
    Q_OBJECT

    QLibrary m_library{QStringLiteral(LXDOC_BIN_DIR "/ziplib.so")};
    ArchiveTool *m_tool = nullptr;
    QTemporaryDir m_dir;
    // A lesson folder and its archive, shared by the tests that only read them.
    const QString m_source = m_dir.filePath("source");
    const QString m_lesson = m_dir.filePath("lesson.lzn");

    bool pack(const QString &folder, const QString &archive)
    {
        // The document's calling order.
        m_tool->beginArchive(archive, false);
        const bool ok = m_tool->packFolder(folder, archive);
        m_tool->finishArchive();
        return ok;
    }
    bool unpack(const QString &archive, const QString &folder)
    {
        QDir().mkpath(folder);
        return m_tool->unpackArchive(archive, folder);
    }

private slots:
    void initTestCase()
    {
        const auto factory = reinterpret_cast<ArchiveToolFactory>(m_library.resolve("get_interface"));
        QVERIFY2(factory, qPrintable(m_library.errorString()));
        m_tool = factory();
        QVERIFY(m_tool);
        writeTree(m_source, lessonTree());
        QVERIFY(pack(m_source, m_lesson));
    }

    void cleanupTestCase()
    {
        if (m_tool)
            m_tool->releaseTool();
    }

    void entryPoint()
    {
        QCOMPARE(m_tool->toolVersion(), 1);
        QVERIFY(m_tool->beginArchive(m_dir.filePath("x.lzn"), false) && m_tool->finishArchive());
        QVERIFY(!m_tool->unpackArchive(m_dir.filePath("absent.lzn"), m_dir.path()));
        QVERIFY(m_tool->lastError().startsWith("unpacking failed: cannot open the archive"));
    }

    void roundTripKeepsBytesTimesAndEmptyFolders()
    {
        const QString source = m_dir.filePath("round/source");
        writeTree(source, lessonTree());
        QVERIFY(QFile::link(m_dir.path(), source + "/images/outside"));
        QVERIFY(pack(source, source + "/self.lzn")); // its own output is left out
        QVERIFY(pack(source, source + "/self.lzn"));
        QVERIFY2(unpack(source + "/self.lzn", m_dir.filePath("round/out")), qPrintable(m_tool->lastError()));
        QVERIFY(QFile::remove(source + "/self.lzn"));
        QMap<QString, qint64> before, after;
        QCOMPARE(readTree(m_dir.filePath("round/out"), &after), readTree(source, &before));
        QCOMPARE(after, before);
    }

    // Archives made by zip and Python's zipfile unpack here, and ours unpack there.
    void interop_data()
    {
        QTest::addColumn<bool>("ours");
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("zip -r") << false << "zip" << QStringList{"-qr", "../a.zip", "."};
        QTest::newRow("python writes") << false << "python3" << QStringList{"-c", PythonWrites};
        QTest::newRow("unzip") << true << "unzip" << QStringList{"-q", "../a.zip", "-d", "."};
        QTest::newRow("python reads") << true << "python3" << QStringList{"-c", QString::fromUtf8(PythonReads)};
    }

    void interop()
    {
        QFETCH(bool, ours);
        QFETCH(QString, program);
        QFETCH(QStringList, arguments);
        if (findTool(program).isEmpty())
            QSKIP("tool missing");
        QTemporaryDir dir;
        const QString source = dir.filePath("source"), out = dir.filePath("out"), zip = dir.filePath("a.zip");
        QVERIFY(QDir().mkpath(out));
        if (ours) {
            QVERIFY(QFile::copy(m_lesson, zip) && run(findTool(program), arguments, out));
        } else {
            writeTree(source, lessonTree());
            QVERIFY(run(findTool(program), arguments, source));
            QVERIFY2(unpack(zip, out), qPrintable(m_tool->lastError()));
        }
        QCOMPARE(readTree(out), readTree(ours ? m_source : source));
    }

    void hostileArchivesAreRefused_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("reason");
        QTest::newRow("parent") << "z.writestr('ok.txt', 'x'); z.writestr('../evil.txt', 'x')" << "points outside";
        QTest::newRow("nested parent") << "z.writestr('a/../../evil.txt', 'x')" << "points outside";
        QTest::newRow("absolute") << "z.writestr(outside + '/abs.txt', 'x')" << "absolute path";
        QTest::newRow("symlink") << "typed(z, 'images', outside, 0o120777); z.writestr('images/x.txt', 'x')"
                                 << "symbolic link";
        QTest::newRow("device") << "typed(z, 'tty', '', 0o020644)" << "device, pipe or socket";
        QTest::newRow("duplicate") << "z.writestr('a.txt', '1'); z.writestr('a.txt', '2')" << "duplicate entry";
        QTest::newRow("duplicate folder") << "z.writestr('d/', ''); z.writestr('./d/', '')" << "duplicate entry";
        QTest::newRow("file under file") << "z.writestr('a', '1'); z.writestr('a/b', '2')" << "lies below the file";
        QTest::newRow("encrypted") << "z.writestr('secret.txt', 'x'); z.close(); patch(flag=1)" << "is encrypted";
        QTest::newRow("bad utf-8") << "z.writestr('BADNAME', 'x'); z.close(); patch(b'BADNAME', b'\\xff\\xfe/\\xc0\\xaf.x', 0x800)"
                                   << "not valid UTF-8";
        QTest::newRow("ratio bomb") << "z.writestr('zero.bin', bytes(32 << 20), zipfile.ZIP_BZIP2)" << "1000 times";
        QTest::newRow("total bomb") << "z.writestr('pad.bin', __import__('os').urandom(5 << 20), zipfile.ZIP_STORED);"
                                       "z.writestr('a.bin', 'a'); z.writestr('b.bin', 'b'); z.close(); patch(size=3 << 30)"
                                    << "4 GiB";
        QTest::newRow("lying size") << "z.writestr('zero.bin', bytes(1 << 20)); z.close(); patch(size=1000)"
                                    << "more data than its header says";
    }

    void hostileArchivesAreRefused()
    {
        QFETCH(QString, script);
        QFETCH(QString, reason);
        if (pythonPath().isEmpty())
            QSKIP("python3 missing");
        QTemporaryDir dir;
        QDir().mkpath(dir.filePath("outside"));
        const QString archive = dir.filePath("hostile.zip");
        QVERIFY(run(pythonPath(), {"-c", PythonPrelude + script + "\nz.close()", archive, dir.filePath("outside")}));
        QVERIFY(!unpack(archive, dir.filePath("target/lesson")));
        QVERIFY2(m_tool->lastError().contains(reason), qPrintable(m_tool->lastError()));
        QVERIFY(QFile::remove(archive));
        QCOMPARE(readTree(dir.path()), (Tree{{"outside/", {}}, {"target/", {}}, {"target/lesson/", {}}}));
    }

    void targetContentIsNeverReplaced_data()
    {
        QTest::addColumn<QString>("existing");
        QTest::addColumn<bool>("succeeds");
        QTest::newRow("link to outside") << "link" << false;
        QTest::newRow("file") << "images/photo.PNG" << false;
        QTest::newRow("folder is merged into") << "images/" << true;
    }

    void targetContentIsNeverReplaced()
    {
        QFETCH(QString, existing);
        QFETCH(bool, succeeds);
        QTemporaryDir dir;
        const QString target = dir.filePath("target");
        QVERIFY(QDir().mkpath(target) && QDir().mkpath(dir.filePath("outside")));
        if (existing == "link")
            QVERIFY(QFile::link(dir.filePath("outside"), target + "/images"));
        else
            writeTree(target, Tree{{existing, "mine"}, {"other.txt", "kept"}});
        const Tree before = readTree(dir.path());
        QCOMPARE(unpack(m_lesson, target), succeeds);
        Tree expected = readTree(m_source);
        expected.insert("other.txt", "kept");
        if (!succeeds)
            QVERIFY2(m_tool->lastError().contains("already holds"), qPrintable(m_tool->lastError()));
        QCOMPARE(succeeds ? readTree(target) : readTree(dir.path()), succeeds ? expected : before);
    }

    void damagedInputIsRefused_data()
    {
        QTest::addColumn<int>("keep"); // percent of a good archive kept; < 0: the content instead
        QTest::addColumn<int>("flipAt");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty file") << -1 << -1 << QByteArray();
        QTest::newRow("text file") << -1 << -1 << QByteArray("%PDF-1.4 not an archive\n").repeated(100);
        QTest::newRow("truncated to half") << 50 << -1 << QByteArray();
        QTest::newRow("directory end cut") << 99 << -1 << QByteArray();
        QTest::newRow("corrupt data") << 100 << 50 << QByteArray();
    }

    void damagedInputIsRefused()
    {
        QFETCH(int, keep);
        QFETCH(int, flipAt);
        QFETCH(QByteArray, content);
        QTemporaryDir dir;
        QByteArray text;
        for (int i = 0; i < 40000; ++i)
            text += QByteArray::number(QRandomGenerator::global()->generate()) + ' ';
        writeTree(dir.filePath("source"), Tree{{"page1.svg", text}});
        QVERIFY(pack(dir.filePath("source"), dir.filePath("good.zip")));
        QByteArray data = keep < 0 ? content : readBytes(dir.filePath("good.zip"));
        data.truncate(keep < 0 ? data.size() : data.size() * keep / 100);
        if (flipAt >= 0)
            data[data.size() * flipAt / 100] = char(data[data.size() * flipAt / 100] ^ 0x5a);
        QVERIFY(writeFile(dir.filePath("bad.zip"), data));
        QVERIFY(!unpack(dir.filePath("bad.zip"), dir.filePath("out")));
        QVERIFY(!m_tool->lastError().isEmpty());
        QCOMPARE(entries(dir.filePath("out")), QStringList());
    }

    void failedPackKeepsPreviousArchive_data()
    {
        QTest::addColumn<QString>("breakage");
        QTest::newRow("missing folder") << "missing";
        QTest::newRow("name not UTF-8") << "name";
        QTest::newRow("unwritable archive folder") << "readonly";
    }

    void failedPackKeepsPreviousArchive()
    {
        QFETCH(QString, breakage);
        if (breakage == "readonly" && ::geteuid() == 0)
            QSKIP("permissions do not bind root");
        QTemporaryDir dir;
        const QString source = breakage == "missing" ? dir.filePath("gone") : dir.filePath("source");
        const QString store = dir.filePath("store"), archive = store + "/a.lzn";
        const QByteArray badName = QFile::encodeName(source + "/images/").append("\xff\xfe.png");
        writeTree(dir.filePath("source"), lessonTree());
        QVERIFY(QDir().mkpath(store) && pack(dir.filePath("source"), archive));
        const Tree before = readTree(store);
        if (breakage == "name")
            QVERIFY(::close(::open(badName.constData(), O_CREAT | O_WRONLY, 0644)) == 0);
        if (breakage == "readonly")
            QVERIFY(QFile::setPermissions(store, QFile::ReadOwner | QFile::ExeOwner));
        QVERIFY(!pack(source, archive));
        QVERIFY(!m_tool->lastError().isEmpty());
        ::unlink(badName.constData());
        QFile::setPermissions(store, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(readTree(store), before);
    }
};

QTEST_GUILESS_MAIN(TestZipLib)
#include "tst_ziplib.moc"
