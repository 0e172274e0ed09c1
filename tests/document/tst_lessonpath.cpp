// SPDX-License-Identifier: MIT
#include "testsupport.h"
#include "document/lessonpath.h"
#include "document/qlxdocument.h"
#include "ilxfrontpage.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class TestLessonPath : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void clean_data();
    void clean();
    void inspect_data();
    void inspect();
    void fifoDoesNotBlock();
    void documentReadsOnlyInside_data();
    void documentReadsOnlyInside();
    void newPageNeverFollowsLink();

private:
    QTemporaryDir m_root;
    QString m_lesson;
};

void TestLessonPath::initTestCase()
{
    QVERIFY(m_root.isValid());
    m_lesson = m_root.filePath(QStringLiteral("lesson"));
    QVERIFY(QDir().mkpath(m_lesson + QStringLiteral("/images")));
    const auto write = [](const QString &path) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
    };
    QVERIFY(write(m_lesson + QStringLiteral("/page1.svg")));
    QVERIFY(write(m_lesson + QStringLiteral("/images/a.png")));
    QVERIFY(write(m_root.filePath(QStringLiteral("secret.svg"))));
    QVERIFY(QFile::link(m_root.filePath(QStringLiteral("secret.svg")), m_lesson + QStringLiteral("/out.svg")));
    QVERIFY(QFile::link(m_lesson + QStringLiteral("/page1.svg"), m_lesson + QStringLiteral("/in.svg")));
    QVERIFY(QFile::link(m_root.path(), m_lesson + QStringLiteral("/up")));
    QCOMPARE(::mkfifo(QFile::encodeName(m_lesson + QStringLiteral("/fifo.svg")).constData(), 0600), 0);
}

void TestLessonPath::clean_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("cleaned");
    QTest::newRow("plain") << "page1.svg" << "page1.svg";
    QTest::newRow("folder") << "images/a.png" << "images/a.png";
    QTest::newRow("dot steps") << "./images//./a.png" << "images/a.png";
    QTest::newRow("dot-dot inside") << "images/../page1.svg" << "page1.svg";
    QTest::newRow("non-ascii") << QString::fromUtf8("bilder/Übung.png") << QString::fromUtf8("bilder/Übung.png");
    QTest::newRow("leaves") << "../page1.svg" << "";
    QTest::newRow("leaves later") << "images/../../x.svg" << "";
    QTest::newRow("deep escape") << "../../../../tmp/victim.svg" << "";
    QTest::newRow("absolute") << "/etc/passwd" << "";
    QTest::newRow("file url") << "file:///etc/passwd" << "";
    QTest::newRow("http url") << "http://example.org/a.png" << "";
    QTest::newRow("drive") << "C:a.png" << "";
    QTest::newRow("backslash") << "..\\..\\x.svg" << "";
    QTest::newRow("nul") << QString(QStringLiteral("a") + QChar(0) + QStringLiteral(".svg")) << "";
    QTest::newRow("empty") << "" << "";
    QTest::newRow("only dots") << "./." << "";
}

void TestLessonPath::clean()
{
    QFETCH(QString, name);
    QFETCH(QString, cleaned);
    QCOMPARE(LessonPath::clean(name), cleaned);
    QCOMPARE(LessonPath::inside(m_lesson, name).isEmpty(), cleaned.isEmpty());
}

void TestLessonPath::inspect_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("verdict");
    QTest::newRow("page") << "page1.svg" << int(LessonPath::Regular);
    QTest::newRow("image") << "images/a.png" << int(LessonPath::Regular);
    QTest::newRow("missing") << "page2.svg" << int(LessonPath::Missing);
    QTest::newRow("escape") << "../secret.svg" << int(LessonPath::Outside);
    QTest::newRow("link out") << "out.svg" << int(LessonPath::Link);
    // Links are never followed, even ones that stay inside.
    QTest::newRow("link in") << "in.svg" << int(LessonPath::Link);
    QTest::newRow("link step") << "up/secret.svg" << int(LessonPath::Link);
    QTest::newRow("folder") << "images" << int(LessonPath::NotRegular);
    QTest::newRow("fifo") << "fifo.svg" << int(LessonPath::NotRegular);
}

void TestLessonPath::inspect()
{
    QFETCH(QString, name);
    QFETCH(int, verdict);
    QCOMPARE(int(LessonPath::inspect(m_lesson, name)), verdict);
    QFile file;
    QCOMPARE(LessonPath::open(&file, m_lesson, name), verdict == LessonPath::Regular);
    if (file.isOpen())
        QCOMPARE(file.readAll(), QByteArray("x"));
}

void TestLessonPath::fifoDoesNotBlock()
{
    // A FIFO nobody writes to would hold a plain open() forever.
    QCOMPARE(LessonPath::openRegularPath(m_lesson + QStringLiteral("/fifo.svg")), -1);
    QCOMPARE(LessonPath::openRegularPath(m_lesson + QStringLiteral("/out.svg")), -1);
    const int fd = LessonPath::openRegularPath(m_lesson + QStringLiteral("/page1.svg"));
    QVERIFY(fd >= 0);
    ::close(fd);
}

void TestLessonPath::documentReadsOnlyInside_data()
{
    QTest::addColumn<QString>("entry");
    const QString secret = m_root.filePath(QStringLiteral("secret.svg"));
    QTest::newRow("escape") << "../secret.svg";
    QTest::newRow("absolute") << secret;
    QTest::newRow("file url") << QStringLiteral("file://") + secret;
    QTest::newRow("link out") << "out.svg";
    QTest::newRow("link step") << "up/secret.svg";
    QTest::newRow("fifo") << "fifo.svg";
    QTest::newRow("device") << "../../../../../../dev/zero";
}

// A page the manifest lists outside the folder, through a link or as
// something other than a regular file is missing: no page, no wait, and the
// file it names is neither read nor written.
void TestLessonPath::documentReadsOnlyInside()
{
    QFETCH(QString, entry);
    const QString manifest = m_lesson + QStringLiteral("/manifest.xml");
    QFile file(manifest);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QStringLiteral("<manifest><resource identifier=\"pages\"><file href=\"%1\"/></resource>"
                              "<resource identifier=\"records\"/></manifest>\n").arg(entry.toHtmlEscaped()).toUtf8());
    file.close();
    QElapsedTimer timer;
    timer.start();
    QLXDocument document;
    QVERIFY(document.openDocument(m_lesson));
    int id = -1;
    QCOMPARE(document.getPageByIndex(0, id), nullptr);
    QCOMPARE(id, -1);
    QVERIFY(document.saveFile(QString(), false));
    QVERIFY(timer.elapsed() < kHangBoundMs);
    QFile secret(m_root.filePath(QStringLiteral("secret.svg")));
    QVERIFY(secret.open(QIODevice::ReadOnly));
    QCOMPARE(secret.readAll(), QByteArray("x"));
}

void TestLessonPath::newPageNeverFollowsLink()
{
    const QString target = m_root.filePath(QStringLiteral("planted.svg"));
    QVERIFY(QFile::link(target, m_lesson + QStringLiteral("/page7.svg")));
    QLXDocument document;
    QVERIFY(document.openDocument(m_lesson));
    QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
    ILXFrontPage *const page = document.getPageById(7);
    QVERIFY(page);
    page->release();
    QVERIFY(!QFileInfo::exists(target));
    QVERIFY(QFileInfo(m_lesson + QStringLiteral("/page7.svg")).isSymLink());
}

QTEST_GUILESS_MAIN(TestLessonPath)
#include "tst_lessonpath.moc"
