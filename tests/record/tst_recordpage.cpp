// SPDX-License-Identifier: MIT
#include "ilxcmd.h"
#include "testsupport.h"
#include "record/qlxrecordpage.h"

#include <QDomDocument>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QDomElement rootOf(const QString &path)
{
    QDomDocument doc;
    doc.setContent(readBytes(path));
    return doc.documentElement();
}

QString takeClass(ILXCmd *cmd)
{
    QString cls;
    cmd->getClass(cls);
    cmd->release();
    return cls;
}

} // namespace

class TestRecordPage : public QObject {
    Q_OBJECT

private slots:
    void createdFileGetsClassOnSave()
    {
        const QString file = m_dir.filePath("page1.mtrec");
        auto *page = new QLXRecordPage(file);
        QCOMPARE(rootOf(file).tagName() + rootOf(file).attribute("class", "-"), QString("record-"));
        float missing = 1.0f;
        QVERIFY(!page->getLXPageAttribute("zoom", missing));
        QCOMPARE(missing, 0.0f);
        // Absent texts read as empty, not null, as hosts test with isNull.
        QString text = "stale";
        QVERIFY(!page->getLXPageAttribute("title", text) && !text.isNull() && text.isEmpty());
        QLXRecordPage unopened;
        text = "stale";
        QVERIFY(!unopened.getClass(text) && !text.isNull() && text.isEmpty());
        QVERIFY(page->setLXPageAttribute("zoom", 0.5f));
        QVERIFY(page->saveFile());
        QCOMPARE(rootOf(file).attribute("class") + rootOf(file).attribute("zoom"), QString("page0.5"));
        page->release();
    }

    void commandsInRecordingOrder()
    {
        auto *page = new QLXRecordPage(m_dir.filePath("page2.mtrec"));
        QVERIFY(!page->getNextLXCmd());
        QVERIFY(!page->clearAllCmdRecords());
        for (const char *cls : {"a", "b"}) {
            if (ILXCmd *first = page->getFirstLXCmd())
                first->release();
            ILXCmd *cmd = page->newLXCmd("draw");
            cmd->setClass(cls);
            cmd->release();
        }
        QVERIFY(!page->getNextLXCmd()); // the cursor stands on the newest command
        ILXCmd *first = page->getFirstLXCmd();
        ILXCmd *again = page->getFirstLXCmd();
        QVERIFY(first != again);
        QCOMPARE(takeClass(first), QString("a"));
        QCOMPARE(takeClass(again), QString("a"));
        QCOMPARE(takeClass(page->getNextLXCmd()), QString("b"));
        QVERIFY(page->clearAllCmdRecords());
        QVERIFY(!page->getFirstLXCmd());
        page->release();
    }

    void releaseWithoutSaveKeepsLastSavedFile()
    {
        const QString file = m_dir.filePath("page3.mtrec");
        auto *page = new QLXRecordPage(file);
        page->newLXCmd("kept")->release();
        page->saveFile();
        const QByteArray saved = readBytes(file);
        for (int round = 0; round < 2; ++round) { // freshly created, then loaded
            page->newLXCmd("dropped")->release();
            page->release();
            QCOMPARE(readBytes(file), saved);
            page = new QLXRecordPage(file);
        }
        page->newLXCmd("written")->release();
        QVERIFY(page->closeFile(true));
        page->release();
        QCOMPARE(rootOf(file).lastChildElement().tagName(), QString("written"));
    }

    void malformedFileLeavesPageWithoutStream()
    {
        const QString file = m_dir.filePath("page4.mtrec");
        const QByteArray broken("<record class=\"page\"><draw></record>");
        QVERIFY(writeFile(file, broken));
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        QTest::ignoreMessage(QtWarningMsg, "XML file had exist!");
        auto *page = new QLXRecordPage(file);
        QString cls;
        QVERIFY(!page->getClass(cls));
        QVERIFY(page->setClass("page"));
        QVERIFY(!page->newLXCmd("draw"));
        QVERIFY(!page->setLXPageAttribute("zoom", 2));
        QVERIFY(!page->saveFile());
        page->release();
        QCOMPARE(readBytes(file), broken);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestRecordPage)
#include "tst_recordpage.moc"
