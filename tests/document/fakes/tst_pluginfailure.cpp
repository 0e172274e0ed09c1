// How the document copes with an archive plug-in that is missing or fails.
// Built once per case into a folder of its own, beside the fake "ziplib.so"
// of that case (none for the missing plug-in).

#include "document/scopeddocument.h"
#include "ilxresmgr.h"
#include "manifest/manifestreader.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace {

#if defined(FAKE_CASE_NONE)
const bool kLoads = false;
const bool kGivesTool = false;
#elif defined(FAKE_CASE_FAIL)
const bool kLoads = true;
const bool kGivesTool = true;
#else
const bool kLoads = true;
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
        calls << toolCalls << QStringLiteral("release");
    return calls << QStringLiteral("unload");
}

void expectLoadFailure()
{
    if (!kLoads)
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral("\\Acreate ziplib: dlopen\\(\\): .*ziplib\\.so.*\\n\\z")));
}

void expectNoOtherWarning()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 3, 0)
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
#endif
}

} // namespace

class TestPluginFailure : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString tmp(const QString &name) const { return m_dir.filePath(name); }
    QString tempRoot() const { return QCoreApplication::applicationDirPath() + QStringLiteral("/Temp/"); }

    QStringList takeLog()
    {
        QFile log(tmp(QStringLiteral("calls.log")));
        if (!log.open(QIODevice::ReadOnly))
            return QStringList();
        const QStringList calls = QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        log.remove();
        return calls;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        qputenv("FAKE_ZIPLIB_LOG", tmp(QStringLiteral("calls.log")).toLocal8Bit());
        QVERIFY(QFile::exists(QCoreApplication::applicationDirPath() + QStringLiteral("/ziplib.so")) == kLoads);
        QDir(tempRoot()).removeRecursively();
    }

    void init() { takeLog(); }

    void openingAnArchiveFails()
    {
        const QString archive = tmp(QStringLiteral("lesson.lzn"));
        QFile file(archive);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        expectLoadFailure();
        if (kGivesTool)
            QTest::ignoreMessage(QtWarningMsg, "unzip folder failed");
        expectNoOtherWarning();
        QVERIFY(!doc->openFile(archive));
        QCOMPARE(takeLog(), oneUse({"unpack"}));
        // The unpack folder is left behind, empty.
        const QString folder = tempRoot() + QStringLiteral("lesson");
        QVERIFY(QFileInfo(folder).isDir());
        QVERIFY(QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
        QVERIFY(!doc->getLXResMgr());
        QVERIFY(QDir(folder).removeRecursively());
    }

    void savingWithPacking()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("work"));
        QVERIFY(doc->newFile(folder, true));
        const QString photo = tmp(QStringLiteral("photo.png"));
        QFile file(photo);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QString copy;
        QVERIFY(doc->getLXResMgr()->addImageFile(photo, copy));
        takeLog();

        for (int save = 0; save < 2; ++save) {
            expectLoadFailure();
            if (kGivesTool)
                QTest::ignoreMessage(QtWarningMsg, "zip folder failed");
            expectNoOtherWarning();
            // A failed packing still counts as saved; only a plug-in that
            // cannot be used fails the save.
            QCOMPARE(doc->saveFile(tmp(QStringLiteral("out.lzn")), true), kGivesTool);
        }
        QCOMPARE(takeLog(), oneUse({"begin", "pack", "finish"}) + oneUse({"begin", "pack", "finish"}));
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("images")),
                 QStringList("images/photo.png"));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/images/photo.png")));
    }

    void savingWithoutPackingNeverLoads()
    {
        ScopedDocument doc;
        QVERIFY(doc->newFile(tmp(QStringLiteral("plain")), true));
        expectNoOtherWarning();
        QVERIFY(doc->saveFile(tmp(QStringLiteral("out.lzn")), false));
        QCOMPARE(takeLog(), QStringList());
    }
};

QTEST_MAIN(TestPluginFailure)
#include "tst_pluginfailure.moc"
