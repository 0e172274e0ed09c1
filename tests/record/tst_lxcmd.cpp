// SPDX-License-Identifier: MIT
#include "ilxobject.h"
#include "record/qlxcmd.h"
#include "record/qlxrecordpage.h"
#include "xml/xmlstream.h"

#include <QTemporaryDir>
#include <QtTest>
#include <memory>

using IntList = QList<int>;
using PointList = QList<QPointF>;
using SizeList = QList<QSizeF>;

namespace {

struct Releaser {
    template <class T> void operator()(T *handle) const { handle->release(); }
};
using Cmd = std::unique_ptr<ILXCmd, Releaser>;
using Obj = std::unique_ptr<ILXObject, Releaser>;

template <class Handle> QString classOf(Handle *handle)
{
    QString cls;
    handle->getClass(cls);
    return cls;
}

} // namespace

class TestLXCmd : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_stream.reset(new QXmlStream);
        m_stream->createXmlStream("record");
        m_cmd.reset(new QLXCmd(m_stream.get(), m_stream->newChildNode(m_stream->getRootNode(), "draw", QString())));
    }
    void writersAndTheirChecks()
    {
        IntList ints{1, -2, 3}, none;
        QVERIFY(m_cmd->setIntList("ints", ints));
        QVERIFY(m_cmd->setListGraphicsId({3, 17, 42}));
        QVERIFY(m_cmd->setPointFList("pts", {{1, 2.5}, {3.333, 4}}));
        QVERIFY(m_cmd->setSizeFList("sizes", {QSizeF(10, 20), QSizeF(0.001, 99.999)}));
        QCOMPARE(text("ints"), QString("1,-2,3"));
        QCOMPARE(text("gid"), QString("3,17,42"));
        QCOMPARE(text("pts"), QString("1.00,2.50 3.33,4.00"));
        QCOMPARE(text("sizes"), QString("10.00,20.00 0.00,100.00"));

        // Empty lists and names are refused and leave what was stored.
        QVERIFY(!m_cmd->setIntList("ints", none) && !m_cmd->setIntList("", ints));
        QVERIFY(!m_cmd->setListGraphicsId({}) && !m_cmd->setSizeFList("sizes", {}));
        QCOMPARE(text("gid"), QString("3,17,42"));
    }

    // Absent texts read as empty, not null, as hosts test with isNull.
    void absentTextsAreEmpty()
    {
        QString cls = "stale", value = "stale";
        QVERIFY(!m_cmd->getClass(cls) && !m_cmd->getLXCmdAttribute("none", value));
        QVERIFY(!cls.isNull() && cls.isEmpty() && !value.isNull() && value.isEmpty());
    }

    void listResultRules()
    {
        IntList stored{1, 2}, ids, ints{7};
        m_cmd->setIntList("ints", stored);
        m_cmd->setListGraphicsId(stored);
        QVERIFY(m_cmd->getListGraphicsId(ids) && m_cmd->getListGraphicsId(ids));
        QCOMPARE(ids, (IntList{1, 2, 1, 2}));
        QVERIFY(!m_cmd->getIntList("", ints));
        QCOMPARE(ints, IntList{7});
        QVERIFY(m_cmd->getIntList("ints", ints) && m_cmd->getIntList("ints", ints));
        QCOMPARE(ints, (IntList{1, 2}));
        QVERIFY(!m_cmd->getIntList("absent", ints));
        QVERIFY(ints.isEmpty());

        // Unlike the int list, point and size lists are appended to.
        PointList points{{7, 7}};
        SizeList sizes{QSizeF(7, 7)};
        QVERIFY(!m_cmd->getPointFList("absent", points) && !m_cmd->getSizeFList("absent", sizes));
        m_cmd->setLXCmdAttribute("list", QString("1,2  3,4"));
        QVERIFY(m_cmd->getPointFList("list", points) && m_cmd->getSizeFList("list", sizes));
        QCOMPARE(points, (PointList{{7, 7}, {1, 2}, {0, 0}, {3, 4}}));
        QCOMPARE(sizes, (SizeList{QSizeF(7, 7), QSizeF(1, 2), QSizeF(0, 0), QSizeF(3, 4)}));
    }

    void commandsAndObjectsShareOneCursor()
    {
        QVERIFY(!m_cmd->getNextLXCmd());
        Cmd(m_cmd->newLXCmd("a"))->setClass("a");
        Obj(m_cmd->newLXObject("b"))->setClass("b");
        QVERIFY(Obj(m_cmd->getFirstLXObject())); // the element's empty text child
        Cmd(m_cmd->newLXCmd("c"))->setClass("c"); // adding leaves the cursor alone
        QCOMPARE(classOf(Cmd(m_cmd->getNextLXCmd()).get()), QString("a"));
        QCOMPARE(classOf(Obj(m_cmd->getNextLXObject()).get()), QString("b"));
        QCOMPARE(classOf(Cmd(m_cmd->getNextLXCmd()).get()), QString("c"));
        QVERIFY(!m_cmd->getNextLXObject());

        QVERIFY(m_cmd->clearAllLXObjects()); // nested commands go too
        QVERIFY(!m_cmd->getFirstLXCmd());
        QVERIFY(!m_cmd->clearAllLXCmd());
    }

    void freshCommandSeesItsEmptyTextChild()
    {
        QTemporaryDir dir;
        auto *page = new QLXRecordPage(dir.filePath("page1.mtrec"));
        {
            Cmd group(page->newLXCmd("group"));
            Cmd(group->newLXCmd("leaf"))->setClass("leaf");
            Cmd first(group->getFirstLXCmd());
            Cmd byName(group->getLXCmd("leaf"));
            QVERIFY(first && byName);
            QVERIFY(byName->setClass("x")); // a text node takes no attribute
            QCOMPARE(classOf(first.get()), QString());
        }
        page->saveFile();
        page->release();

        // An empty text is not written, so after a reload the nested command leads.
        page = new QLXRecordPage(dir.filePath("page1.mtrec"));
        Cmd group(page->getFirstLXCmd());
        QCOMPARE(classOf(Cmd(group->getFirstLXCmd()).get()), QString("leaf"));
        QCOMPARE(classOf(Cmd(group->getLXCmd("leaf")).get()), QString("leaf"));
        QVERIFY(!group->getLXCmd("other"));
        group.reset();
        page->release();
    }

private:
    QString text(const QString &name)
    {
        QString value;
        m_cmd->getLXCmdAttribute(name, value);
        return value;
    }
    std::unique_ptr<QXmlStream> m_stream;
    Cmd m_cmd;
};

QTEST_GUILESS_MAIN(TestLXCmd)
#include "tst_lxcmd.moc"
