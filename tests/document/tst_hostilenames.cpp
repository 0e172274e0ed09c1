// SPDX-License-Identifier: MIT
#include "document/scopeddocument.h"
#include "ilxcmd.h"
#include "ilxfrontpage.h"
#include "ilxobject.h"
#include "ilxrecordpage.h"
#include "page/qlxfrontpage.h"
#include "testsupport.h"

#include <QDomDocument>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// How often each file holds an element of the given name once it is saved.
int elementCount(const QString &file, const QString &name)
{
    QDomDocument document;
    if (!document.setContent(readBytes(file), false))
        return -1;
    return int(document.elementsByTagName(name).count());
}

template <typename Handle>
bool made(Handle *handle)
{
    if (handle == nullptr)
        return false;
    handle->release();
    return true;
}

} // namespace

// A name that is not taken must be refused where the host hands it over, and
// whatever the host did, every page must load again with every name it kept.
class TestHostileNames : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void everyEntryPoint_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        QTest::newRow("plain") << QStringLiteral("max-gid") << true;
        QTest::newRow("all name characters") << QStringLiteral("_x-y.z9") << true;
        QTest::newRow("prefixed") << QStringLiteral("xlink:href") << true;
        QTest::newRow("non-ASCII letters") << QString::fromUtf8("\xc3\xa9t\xc3\xa9\xe5\x90\x8d") << true;
        QTest::newRow("longest Qt reads") << QString(4096, QLatin1Char('n')) << true;
        QTest::newRow("too long") << QString(4097, QLatin1Char('n')) << false;
        QTest::newRow("space") << QStringLiteral("a b") << false;
        QTest::newRow("leading digit") << QStringLiteral("1x") << false;
        QTest::newRow("leading minus") << QStringLiteral("-a") << false;
        QTest::newRow("dot") << QStringLiteral(".") << false;
        QTest::newRow("colon") << QStringLiteral(":") << false;
        QTest::newRow("leading colon") << QStringLiteral(":a") << false;
        QTest::newRow("trailing colon") << QStringLiteral("a:") << false;
        QTest::newRow("two colons") << QStringLiteral("a:b:c") << false;
        QTest::newRow("equals") << QStringLiteral("a=b") << false;
        QTest::newRow("quote") << QStringLiteral("a\"b") << false;
        QTest::newRow("less than") << QStringLiteral("a<b") << false;
        QTest::newRow("greater than") << QStringLiteral("a>") << false;
        QTest::newRow("slash") << QStringLiteral("a/b") << false;
        QTest::newRow("control character") << QString(QStringLiteral("a") + QChar(1) + QStringLiteral("b")) << false;
        QTest::newRow("lone surrogate") << QString(QStringLiteral("a") + QChar(0xd800)) << false;
        QTest::newRow("empty") << QString() << false;
        // A letter of the current name tables that Qt's parser does not know.
        QTest::newRow("letter Qt cannot read") << QString(QStringLiteral("a") + QChar(0xd83d) + QChar(0xde00)) << false;
    }

    void everyEntryPoint()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        const QString folder = m_dir.filePath(QString::fromLatin1(QTest::currentDataTag()));
        ScopedDocument doc;
        QVERIFY(doc->newFile(folder, true));
        ILXFrontPage *const page = doc->insertFrontPage(0, 1);
        ILXRecordPage *const record = doc->insertRecPage(0, 1);
        ILXObject *const object = page->newLXObject("rect");
        ILXObject *const text = page->newLXObject("text");
        ILXCmd *const cmd = record->newLXCmd("create");
        QVERIFY(object && text && cmd);
        QList<int> ints = {1, 2};
        const QString value = QStringLiteral("v");

        const QVector<bool> results = {
            page->setLXPageAttribute(name, 1), page->setLXPageAttribute(name, 1.5f),
            page->setLXPageAttribute(name, value),
            object->setLXObjectAttribute(name, 1), object->setLXObjectAttribute(name, 1.5f),
            object->setLXObjectAttribute(name, value),
            record->setLXPageAttribute(name, 1), record->setLXPageAttribute(name, 1.5f),
            record->setLXPageAttribute(name, value),
            cmd->setLXCmdAttribute(name, 1), cmd->setLXCmdAttribute(name, 1.5f),
            cmd->setIntList(name, ints), cmd->setPointFList(name, {QPointF(1, 2)}),
            cmd->setSizeFList(name, {QSizeF(1, 2)}), cmd->setLXCmdAttribute(name, value),
            made(page->newLXObject(name)), made(object->newLXObject(name)),
            made(cmd->newLXObject(name)), made(cmd->newLXCmd(name)), made(record->newLXCmd(name)),
            text->setSvgText("<svg><text " + name + "=\"v\"/></svg>"),
            made(static_cast<QLXFrontPage *>(page)->newLXObjectFromSVG(
                "<svg><g class=\"pasted\" " + name + "=\"v\"/></svg>")),
        };
        QCOMPARE(results, QVector<bool>(results.size(), valid));

        for (ILXObject *handle : {object, text})
            handle->release();
        cmd->release();
        QVERIFY(page->saveFile() && record->saveFile());
        page->release();
        record->release();

        int id = 0;
        ILXFrontPage *const again = doc->getPageByIndex(0, id);
        QVERIFY(again);
        QString read;
        QCOMPARE(again->getLXPageAttribute(name, read), valid);
        again->release();
        ILXRecordPage *const recordAgain = doc->getRecPageById(1);
        ILXCmd *const first = recordAgain->getFirstLXCmd();
        QVERIFY(first);
        QCOMPARE(recordAgain->getLXPageAttribute(name, read), valid);
        QCOMPARE(first->getLXCmdAttribute(name, read), valid);
        first->release();
        recordAgain->release();
        if (valid) {
            QCOMPARE(read, value);
            QCOMPARE(elementCount(folder + "/page1.svg", name), 2);
            QCOMPARE(elementCount(folder + "/page1.mtrec", name), 3);
        }
    }
};

QTEST_GUILESS_MAIN(TestHostileNames)
#include "tst_hostilenames.moc"
