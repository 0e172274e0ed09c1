#include "document/lessonpath.h"

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

QTEST_GUILESS_MAIN(TestLessonPath)
#include "tst_lessonpath.moc"
