// SPDX-License-Identifier: MIT
// How the document copes with an archive plug-in that is missing or fails.
// Built once per case into a folder of its own, beside the fake "ziplib.so"
// of that case (none for the missing plug-in).

#include "document/scopeddocument.h"
#include "ilxresmgr.h"
#include "manifest/manifestreader.h"
#include "testsupport.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

#if defined(FAKE_CASE_NONE)
const bool kLoads = false;
#else
const bool kLoads = true;
#endif
#if defined(FAKE_CASE_FAIL)
const bool kGivesTool = true;
#else
const bool kGivesTool = false;
#endif

#if defined(FAKE_CASE_NOSYMBOL)
const QStringList kFactoryCalls;
#else
const QStringList kFactoryCalls = {"get_interface"};
#endif

// What the fake logs around one use: loaded, asked for a tool, the calls on
// the tool, and unloaded again.
QStringList oneUse(const QStringList &toolCalls)
{
    if (!kLoads)
        return QStringList();
    QStringList calls = QStringList("load") + kFactoryCalls;
    if (kGivesTool)
        calls << toolCalls << "release";
    return calls << "unload";
}

void expectLoadFailure()
{
    if (!kLoads)
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("\\Acreate ziplib: dlopen\\(\\): .*ziplib\\.so.*\\n\\z"));
}

void expectNoOtherWarning()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 3, 0)
    QTest::failOnWarning(QRegularExpression(".*"));
#endif
}

} // namespace

class TestPluginFailure : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString tmp(const QString &name) const { return m_dir.filePath(name); }
    QString tempRoot() const { return QCoreApplication::applicationDirPath() + "/Temp/"; }

    QStringList takeLog()
    {
        const QStringList calls = QString::fromUtf8(readBytes(tmp("calls.log"))).split('\n', Qt::SkipEmptyParts);
        QFile::remove(tmp("calls.log"));
        return calls;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        qputenv("FAKE_ZIPLIB_LOG", tmp("calls.log").toLocal8Bit());
        QVERIFY(QFile::exists(QCoreApplication::applicationDirPath() + "/ziplib.so") == kLoads);
        QDir(tempRoot()).removeRecursively();
    }

    void init() { takeLog(); }

    void openingAnArchiveFails()
    {
        const QString archive = tmp("lesson.lzn");
        QVERIFY(writeFile(archive, QByteArray()));
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        expectLoadFailure();
        if (kGivesTool)
            QTest::ignoreMessage(QtWarningMsg, "unzip folder failed");
        expectNoOtherWarning();
        QVERIFY(!doc->openFile(archive));
        QCOMPARE(takeLog(), oneUse({"unpack"}));
        // The unpack folder is left behind, empty.
        const QString folder = tempRoot() + "lesson";
        QVERIFY(QFileInfo(folder).isDir() && entries(folder).isEmpty() && !doc->getLXResMgr());
        QVERIFY(QDir(folder).removeRecursively());
    }

    void saving()
    {
        ScopedDocument doc;
        const QString folder = tmp("work");
        QVERIFY(doc->newFile(folder, true));
        const QString photo = tmp("photo.png");
        QString copy;
        QVERIFY(writeFile(photo) && doc->getLXResMgr()->addImageFile(photo, copy));
        expectNoOtherWarning();
        QVERIFY(doc->saveFile(tmp("out.lzn"), false));
        QCOMPARE(takeLog(), QStringList()); // saving without packing never loads the plug-in

        for (int save = 0; save < 2; ++save) {
            expectLoadFailure();
            if (kGivesTool)
                QTest::ignoreMessage(QtWarningMsg, "zip folder failed");
            expectNoOtherWarning();
            // A failed packing still counts as saved; only a plug-in that
            // cannot be used fails the save.
            QCOMPARE(doc->saveFile(tmp("out.lzn"), true), kGivesTool);
        }
        QCOMPARE(takeLog(), oneUse({"begin", "pack", "finish"}) + oneUse({"begin", "pack", "finish"}));
        QCOMPARE(manifestList(folder + "/manifest.xml", "images"), QStringList("images/photo.png"));
        QVERIFY(QFileInfo::exists(folder + "/images/photo.png"));
    }
};

QTEST_MAIN(TestPluginFailure)
#include "tst_pluginfailure.moc"
