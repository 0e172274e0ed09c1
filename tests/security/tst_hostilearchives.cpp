// SPDX-License-Identifier: MIT
// A lesson archive from a stranger is opened through the document exactly as
// the host opens one. Whatever the archive holds, nothing may be written, linked
// or changed outside the folder it is unpacked into; archives that try are
// refused as a whole, and honest archives (any language in their names) open.

#include "testsupport.h"
#include "archivemaker.h"
#include "treesnapshot.h"

#include "document/qlxdocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

namespace {

enum class Outcome { Refused, Opens };

const QByteArray victimText("the teacher's own notes\n");

qint64 folderBytes(const QString &folder)
{
    qint64 total = 0;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        total += it.fileInfo().size();
    }
    return total;
}

QStringList linksInside(const QString &folder)
{
    QStringList links;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        struct stat st;
        if (::lstat(QFile::encodeName(path).constData(), &st) == 0 && !S_ISDIR(st.st_mode)
            && !S_ISREG(st.st_mode))
            links << path;
    }
    return links;
}

// Files that could run, and anything set-id or sticky.
QStringList privilegedInside(const QString &folder)
{
    QStringList found;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        struct stat st;
        if (::lstat(QFile::encodeName(path).constData(), &st) == 0
            && ((st.st_mode & 07000) || (S_ISREG(st.st_mode) && (st.st_mode & 0111))))
            found << path;
    }
    return found;
}

} // namespace

Q_DECLARE_METATYPE(Outcome)

class TestHostileArchives : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void openArchive_data();
    void openArchive();

private:
    QString m_tempRoot;
};

void TestHostileArchives::initTestCase()
{
    QVERIFY2(QFileInfo::exists(QCoreApplication::applicationDirPath() + QStringLiteral("/ziplib.so")),
             "ziplib.so must lie beside the test");
    QLXDocument document;
    QVERIFY(document.init(QString(), false));
    m_tempRoot = QDir::cleanPath(document.getTempPath());
    QVERIFY(QFileInfo(m_tempRoot).isDir());
}

void TestHostileArchives::openArchive_data()
{
    QTest::addColumn<QString>("recipe");
    QTest::addColumn<Outcome>("outcome");
    // A file the archive names, relative to the unpack folder, that must be
    // there after an honest open.
    QTest::addColumn<QString>("expected");

    const auto refused = [](const char *recipe) {
        QTest::newRow(recipe) << QString::fromLatin1(recipe) << Outcome::Refused << QString();
    };
    QTest::newRow("lesson") << "lesson" << Outcome::Opens << "page1.svg";
    QTest::newRow("utf8-names") << "utf8-names" << Outcome::Opens << QStringLiteral("images/Größe_αβ_é.png");
    // libarchive reads a pipe's mode bits in a ZIP as a plain file: what lands
    // is an ordinary empty file, never a pipe (checked below).
    QTest::newRow("fifo") << "fifo" << Outcome::Opens << "images/pipe";
    // Names without the UTF-8 flag are code page 437, whatever the tool meant.
    QTest::newRow("cp437-names") << "cp437-names" << Outcome::Opens << QStringLiteral("images/Größe.png");
    QTest::newRow("latin1-names") << "latin1-names" << Outcome::Opens << QStringLiteral("images/Gr÷▀e.png");
    QTest::newRow("infozip-latin1") << "infozip-latin1" << Outcome::Opens << QStringLiteral("images/cafΘ.png");
    // Unpacked without execute, set-id or sticky bits (checked below).
    QTest::newRow("setuid-exec") << "setuid-exec" << Outcome::Opens << "images/run.sh";
    for (const char *recipe : {"dotdot", "dotdot-deep", "dotdot-sentinel", "absolute", "symlink-out",
                               "symlink-relative", "symlink-manifest", "char-device", "tar-hardlink",
                               "tar-symlink", "tar-device", "duplicate", "file-and-folder", "bomb", "lying-size",
                               "truncated", "truncated-tail", "corrupt-data", "bad-crc", "not-zip", "empty",
                               "flagged-encrypted", "encrypted", "long-name"})
        refused(recipe);
}

void TestHostileArchives::openArchive()
{
    QFETCH(QString, recipe);
    QFETCH(Outcome, outcome);
    QFETCH(QString, expected);

    // <work>/outer/inner holds the archive beside a sentinel folder, so that
    // escapes of one or two levels, absolute names and links all have a
    // target that is watched.
    QTemporaryDir work;
    QVERIFY(work.isValid());
    const QString inner = work.path() + QStringLiteral("/outer/inner");
    const QString sentinel = inner + QStringLiteral("/sentinel");
    const QString victim = sentinel + QStringLiteral("/victim.txt");
    QVERIFY(QDir().mkpath(sentinel));
    {
        QFile file(victim);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(victimText);
    }
    const QString caseName = QStringLiteral("hostile_") + QString(recipe).replace(QLatin1Char('-'), QLatin1Char('_'));
    const QString archive = inner + QLatin1Char('/') + caseName + QStringLiteral(".lzn");
    const QString made = archivemaker::make(recipe, archive, sentinel, victim);
    if (made.startsWith(QStringLiteral("python3 is not installed")))
        QSKIP("python3 is needed to make the archives");
    QVERIFY2(made.isEmpty(), qPrintable(made));

    const QString unpack = m_tempRoot + QLatin1Char('/') + caseName;
    QDir(unpack).removeRecursively();
    const QString binDir = QFileInfo(m_tempRoot).absolutePath();
    const TreeSnapshot binBefore(binDir);
    const TreeSnapshot workBefore(work.path());

    QLXDocument *document = new QLXDocument;
    document->init(QString(), false);
    if (outcome == Outcome::Refused)
        QTest::ignoreMessage(QtWarningMsg, "unzip folder failed");
    QElapsedTimer timer;
    timer.start();
    const bool opened = document->openFile(archive);
    QCOMPARE(opened, outcome == Outcome::Opens);
    QVERIFY2(timer.elapsed() < kHangBoundMs, qPrintable(QString::number(timer.elapsed())));

    // Whatever happened, it happened inside the unpack folder only.
    const QStringList outside = TreeSnapshot(binDir).changesSince(binBefore, {unpack})
        + TreeSnapshot(work.path()).changesSince(workBefore, {});
    QVERIFY2(outside.isEmpty(), qPrintable(outside.join(QLatin1Char('\n'))));
    QFile victimFile(victim);
    QVERIFY(victimFile.open(QIODevice::ReadOnly));
    QCOMPARE(victimFile.readAll(), victimText);
    QVERIFY2(linksInside(unpack).isEmpty(), qPrintable(linksInside(unpack).join(QLatin1Char('\n'))));
    QVERIFY2(privilegedInside(unpack).isEmpty(), qPrintable(privilegedInside(unpack).join(QLatin1Char('\n'))));
    // A refused bomb must not have filled the disk first.
    QVERIFY(folderBytes(unpack) < (qint64(64) << 20));

    if (opened) {
        QCOMPARE(QDir::cleanPath(document->getDocPath()), unpack);
        QVERIFY2(QFileInfo::exists(unpack + QLatin1Char('/') + expected), qPrintable(expected));
        QVERIFY(QFileInfo::exists(unpack + QStringLiteral("/manifest.xml")));
        QCOMPARE(document->getPagesCount(), 1);
    }
    document->release(false);
    QDir(unpack).removeRecursively();
    // Releasing removes the working folder and nothing else.
    const QStringList afterRelease = TreeSnapshot(binDir).changesSince(binBefore, {unpack});
    QVERIFY2(afterRelease.isEmpty(), qPrintable(afterRelease.join(QLatin1Char('\n'))));
    QCOMPARE(TreeSnapshot(work.path()).changesSince(workBefore, {}), QStringList());
}

QTEST_GUILESS_MAIN(TestHostileArchives)
#include "tst_hostilearchives.moc"
