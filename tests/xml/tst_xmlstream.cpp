// SPDX-License-Identifier: MIT
#include "testsupport.h"
#include "xml/xmlstream.h"

#include <QDomElement>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>
#include <memory>

namespace {

// Counts every message while it lives, to prove an operation stays silent.
int s_messages = 0;
struct MessageCounter {
    MessageCounter() { s_messages = 0; }
    ~MessageCounter() { qInstallMessageHandler(previous); }
    QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) { ++s_messages; });
};

const QByteArray declaration("<?xml version='1.0'?>\n");

} // namespace

class TestXmlStream : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<QXmlStream> stream;
    QString path(const QString &name) const { return m_dir->filePath(name); }
    QDomNode parse(const QString &text) { return stream->loadFromXmlStream(text) ? stream->getRootNode() : QDomNode(); }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        stream = std::make_unique<QXmlStream>();
    }

    void createXmlFile()
    {
        const QString file = path("page1.svg");
        {
            QXmlStream created;
            QVERIFY(!created.isReady());
            QVERIFY(created.createXmlFile(file, "svg"));
            QVERIFY(created.isReady());
            QCOMPARE(created.getXmlFileName(), file);
        }
        QCOMPARE(readBytes(file), declaration + "<svg/>\n");

        // An existing file is neither replaced nor loaded; the tree stays.
        QVERIFY(stream->createXmlStream("x"));
        QTest::ignoreMessage(QtWarningMsg, "XML file had exist!");
        QVERIFY(!stream->createXmlFile(file, "manifest"));
        QVERIFY(!stream->isReady());
        QCOMPARE(stream->getXmlFileName(), file);
        QCOMPARE(readBytes(file), declaration + "<svg/>\n");
        QCOMPARE(stream->getXmlStream(), QString("<x/>\n"));

        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!stream->createXmlFile(path("no/such/folder.xml"), "r"));
    }

    void loadFailures()
    {
        QVERIFY(stream->createXmlStream("r"));
        {
            MessageCounter counter;
            QVERIFY(!stream->loadFromXmlFile(path("missing.xml")));
            QCOMPARE(s_messages, 0);
            QVERIFY(stream->isReady()); // a missing file leaves the tree alone
        }
        const QString file = path("broken.xml");
        QVERIFY(writeFile(file, "<?xml version='1.0'?>\n<r><unclosed></r>\n"));
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        QVERIFY(!stream->loadFromXmlFile(file));
        QVERIFY(!stream->isReady());
        QCOMPARE(stream->getXmlFileName(), file);

        QXmlStream unnamed;
        QVERIFY(unnamed.createXmlStream("r"));
        QTest::ignoreMessage(QtWarningMsg, "No file name specified");
        QVERIFY(!unnamed.reloadFile());
        QVERIFY(!unnamed.isReady());
    }

    void loadFromXmlStream_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::newRow("element") << "<g id=\"1\"><rect/></g>" << true;
        QTest::newRow("with declaration") << "<?xml version='1.0'?><r/>" << true;
        QTest::newRow("unclosed") << "<g>" << false;
        QTest::newRow("empty") << "" << false;
    }
    void loadFromXmlStream()
    {
        QFETCH(QString, text);
        QFETCH(bool, ok);
        if (!ok)
            QTest::ignoreMessage(QtWarningMsg, "cann't load the xml Stream!");
        QCOMPARE(stream->loadFromXmlStream(text), ok);
        QCOMPARE(stream->isReady(), ok);
        QVERIFY(stream->getXmlFileName().isEmpty());
    }

    // A reload reports success even when the file is gone or broken.
    void reloadReportsSuccess()
    {
        const QString file = path("gone.xml");
        QVERIFY(writeFile(file, "<?xml version='1.0'?><named/>"));
        QVERIFY(stream->setXmlFileName(file));
        QCOMPARE(stream->getNodeName(stream->getRootNode()), QString("named"));
        QVERIFY(stream->closeFile(false));
        QVERIFY(QFile::remove(file));
        QVERIFY(stream->reloadFile());
        QVERIFY(stream->isReady());
        QVERIFY(!QFile::exists(file));

        QVERIFY(writeFile(file, "<r>"));
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        QVERIFY(stream->reloadFile());
        QVERIFY(stream->isReady());

        QXmlStream missing;
        QVERIFY(missing.setXmlFileName(path("none.xml")));
        QVERIFY(missing.isReady());
    }

    void closing_data()
    {
        QTest::addColumn<bool>("create");
        QTest::addColumn<int>("close"); // -1: only the destructor
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("destructor writes a loaded file") << false << -1 << declaration + "<r>\n    <c>v</c>\n</r>\n";
        QTest::newRow("close without save") << false << 0 << declaration + "<r/>\n";
        // A created file is already closed: saving on close writes nothing.
        QTest::newRow("created, close with save") << true << 1 << declaration + "<r/>\n";
    }
    void closing()
    {
        QFETCH(bool, create);
        QFETCH(int, close);
        const QString file = path("f.xml");
        if (!create)
            QVERIFY(writeFile(file, declaration + "<r/>\n"));
        {
            QXmlStream stream;
            QVERIFY(create ? stream.createXmlFile(file, "r") : stream.loadFromXmlFile(file));
            stream.newChildNode(stream.getRootNode(), "c", "v");
            if (close >= 0)
                QVERIFY(stream.closeFile(close));
        }
        QTEST(readBytes(file), "expected");
    }

    void saveFileLeavesFileOpen()
    {
        const QString file = path("page2.svg");
        {
            QXmlStream stream;
            QVERIFY(stream.createXmlFile(file, "svg"));
            stream.setNodeAttribute(stream.getRootNode(), "width", 800, true);
            QVERIFY(stream.saveFile());
            QCOMPARE(readBytes(file), declaration + "<svg width=\"800\"/>\n");
            stream.setNodeAttribute(stream.getRootNode(), "height", 600, true);
        }
        QCOMPARE(readBytes(file), declaration + "<svg height=\"600\" width=\"800\"/>\n");

        QXmlStream unnamed;
        QVERIFY(unnamed.createXmlStream("r"));
        MessageCounter counter;
        QVERIFY(!unnamed.saveFile());
        QVERIFY(unnamed.closeFile(true));
        QCOMPARE(s_messages, 0);
    }

    void getXmlStreamUsesIndentOne()
    {
        QXmlStream stream;
        QVERIFY(stream.createXmlStream("g"));
        const QDomNode child = stream.newChildNode(stream.getRootNode(), "a", QString());
        stream.newChildNode(child, "b", "v");
        QString &text = stream.getXmlStream();
        // The empty text child ahead of b keeps whitespace out of a's content.
        QCOMPARE(text, QString("<g>\n <a><b>v</b>\n </a>\n</g>\n"));
        QCOMPARE(&stream.getXmlStream(), &text);
    }

    void textRoundTrips_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("readBack");
        const QString words = QString::fromUtf8("Grüße, 汉字 und 😀 <&> \"quoted\"");
        QTest::newRow("non-ascii") << words << words;
        // Characters XML cannot carry are dropped on write, so the file loads.
        QTest::newRow("controls") << QString("a") + QChar(0) + QChar(0x1b) + "b" << QString("ab");
    }
    void textRoundTrips()
    {
        QFETCH(QString, value);
        QFETCH(QString, readBack);
        const QString file = path("text.svg");
        {
            QXmlStream stream;
            QVERIFY(stream.createXmlFile(file, "svg"));
            const QDomNode text = stream.newChildNode(stream.getRootNode(), "text", value);
            stream.setNodeAttribute(text, "title", value, true);
            QCOMPARE(stream.getNodeStringValue(text), value);
            QVERIFY(stream.saveFile());
        }
        QVERIFY(readBytes(file).contains(readBack.left(16).toUtf8())); // written as UTF-8
        QXmlStream stream;
        QVERIFY(stream.loadFromXmlFile(file));
        const QDomNode text = stream.getChildNode(stream.getRootNode(), "text");
        QCOMPARE(stream.getNodeStringValue(text), readBack);
        QString title;
        QVERIFY(stream.getNodeAttribute(text, "title", title, QString()));
        QCOMPARE(title, readBack);
        stream.closeFile(false);
    }

    void getRootNodeTakesOneStep_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("name");
        QTest::newRow("element first") << "<r/>" << int(QDomNode::ElementNode) << "r";
        QTest::newRow("comment") << "<!--c--><r/>" << int(QDomNode::ElementNode) << "r";
        QTest::newRow("declaration and comment")
            << "<?xml version='1.0'?><!--c--><r/>" << int(QDomNode::CommentNode) << "#comment";
        QTest::newRow("two instructions") << "<?a x?><?b y?><r/>" << int(QDomNode::ProcessingInstructionNode) << "b";
    }
    void getRootNodeTakesOneStep()
    {
        QFETCH(QString, text);
        const QDomNode root = parse(text);
        QTEST(int(root.nodeType()), "type");
        QTEST(stream->getNodeName(root), "name");
        QVERIFY(stream->isRootNode(root));
    }

    void childByNameSkipsOrStopsAtText()
    {
        QVERIFY(!parse("<r><p>lead<a/></p><q><x/><a/><!--c--><b/></q></r>").isNull());
        const QDomNode p = stream->getChildNode(stream->getRootNode(), "p");
        QVERIFY(stream->getChildNode(p, "a").isElement());
        // Stops at the text ahead of the element and hands that back.
        QCOMPARE(stream->getChildNodeByNodename(p, "a").nodeValue(), QString("lead"));
        const QDomNode q = stream->getChildNode(stream->getRootNode(), "q");
        QCOMPARE(stream->getNodeName(stream->getChildNodeByNodename(q, "a")), QString("a"));
        QVERIFY(stream->getChildNodeByNodename(q, "b").isComment());
        QCOMPARE(stream->getNodeName(stream->getChildNode(q, "b")), QString("b"));
        QVERIFY(stream->getChildNode(q, "none").isNull());
        QVERIFY(stream->getChildNodeByNodename(stream->getChildNode(q, "x"), "a").isNull());
    }

    void childNodesCount()
    {
        const QDomNode root = parse("<r/>");
        QCOMPARE(stream->getChildNodesCount(root), 0);
        const QDomNode child = stream->newChildNode(root, "c", QString());
        QVERIFY(stream->getFirstChildNode(child).isText()); // made with an empty text child
        stream->newChildNode(root, "d", "v");
        QCOMPARE(stream->getChildNodesCount(root), 2);
        QCOMPARE(stream->getChildNodesCount(QDomNode()), 0);
        QVERIFY(stream->newChildNode(QDomNode(), "a", "v").isNull());
        MessageCounter counter;
        QVERIFY(stream->newChildNode(root, QString(), "v").isNull());
        QVERIFY(!stream->setNodeAttribute(root, QString(), 1, true));
        QCOMPARE(s_messages, 0);
        QCOMPARE(stream->getChildNodesCount(root), 2);
    }

    void attributeSearches()
    {
        const QDomNode root = parse("<r>text<x k=\"1\"/><y/><z k=\"1\"/><w k=\"01\"/><v k=\"1 \"/></r>");
        const QDomNode x = stream->getFirstChildNode(root, "k", "1");
        QCOMPARE(stream->getNodeName(x), QString("x"));
        const QDomNode z = stream->getNextNode(x, "k", "1");
        QCOMPARE(stream->getNodeName(z), QString("z"));
        QVERIFY(stream->getNextNode(z, "k", "1").isNull());
        QCOMPARE(stream->getLastChildNode(root, "k", "1"), z);
        QCOMPARE(stream->getPreviousNode(z, "k", "1"), x);
        QCOMPARE(stream->getChildNodeByAttribute(root, "k", "1"), x);
        // Exact text: no trimming, no number reading.
        QCOMPARE(stream->getNodeName(stream->getFirstChildNode(root, "k", "01")), QString("w"));
        QCOMPARE(stream->getNodeName(stream->getFirstChildNode(root, "k", "1 ")), QString("v"));
        QVERIFY(stream->getFirstChildNode(root, "K", "1").isNull());

        const QDomNode a =
            stream->getFirstChildNode(parse("<r><a t=\"p\" i=\"1\"/><b t=\"p\"/><c i=\"1\"/><d t=\"p\" i=\"1\"/></r>"));
        const QDomNode d = stream->getNextNode(a, "t", "p", "i", "1");
        QCOMPARE(stream->getNodeName(d), QString("d"));
        QCOMPARE(stream->getPreviousNode(d, "i", "1", "t", "p"), a);
        QVERIFY(stream->getPreviousNode(a, "t", "p", "i", "1").isNull());
    }

    // Numbers are read, a malformed one as 0; a float must match exactly.
    void numberSearches()
    {
        const QDomNode root =
            parse("<r><n/><a id=\"7\" v=\"0.333333\"/><b id=\"abc\" v=\"junk\"/><d id=\" -3\" v=\"nan\"/></r>");
        QCOMPARE(stream->getNodeName(stream->getChildNodeByAttribute(root, "id", 0)), QString("b"));
        QCOMPARE(stream->getNodeName(stream->getChildNodeByAttribute(root, "id", -3)), QString("d"));
        QVERIFY(stream->getChildNodeByAttribute(root, "id", 8).isNull());
        QVERIFY(stream->getChildNodeByAttribute(root, "v", 1.0f / 3.0f).isNull());
        QCOMPARE(stream->getNodeName(stream->getChildNodeByAttribute(root, "v", 0.333333f)), QString("a"));
        QCOMPARE(stream->getNodeName(stream->getChildNodeByAttribute(root, "v", 0.0f)), QString("b"));
        QVERIFY(stream->getChildNodeByAttribute(root, "v", std::numeric_limits<float>::quiet_NaN()).isNull());
    }

    void parentAndRoot()
    {
        const QDomNode root = parse("<?xml version='1.0'?><r><a/></r>");
        const QDomNode a = stream->getFirstChildNode(root);
        QVERIFY(stream->getParentNode(root).isNull());
        QCOMPARE(stream->getParentNode(a), root);
        QVERIFY(!stream->isRootNode(a));
        // The declaration sits at the top level: its parent is the document.
        QVERIFY(stream->getParentNode(stream->getPreviousNode(root)).isDocument());
        // Same content is not the same node.
        QXmlStream other;
        QVERIFY(other.loadFromXmlStream("<r><a/></r>"));
        QVERIFY(!stream->isRootNode(other.getRootNode()));
    }

    void removals()
    {
        const QDomNode root = parse("<r>t<a/><b/><a k=\"2\"/><!--c--></r>");
        const QString before = stream->getXmlStream();
        QVERIFY(stream->removeNode(root)); // the root stays
        QVERIFY(stream->removeChildNode(root, "none"));
        QCOMPARE(stream->getXmlStream(), before);
        QVERIFY(stream->removeChildNode(root, "a"));
        QCOMPARE(stream->getXmlStream(), QString("<r>t<b/>\n <a k=\"2\"/>\n <!--c-->\n</r>\n"));
        QVERIFY(stream->removeChildNode(root, "#text"));
        QVERIFY(stream->removeNode(stream->getChildNode(root, "b")));
        QCOMPARE(stream->getXmlStream(), QString("<r>\n <a k=\"2\"/>\n <!--c-->\n</r>\n"));
        QVERIFY(stream->removeAllChildNotes(root));
        QCOMPARE(stream->getChildNodesCount(root), 0);
        QVERIFY(!stream->removeAllChildNotes(root));
        QVERIFY(!stream->removeChildNode(root, "a"));
        QVERIFY(stream->removeNode(QDomNode()));
    }

    void numberForms_data()
    {
        QTest::addColumn<float>("value");
        QTest::addColumn<QString>("attribute");
        QTest::addColumn<QString>("element");
        QTest::addColumn<float>("readBack");
        QTest::newRow("3") << 3.0f << "3" << "3.00000" << 3.0f;
        QTest::newRow("-0.25") << -0.25f << "-0.25" << "-0.25000" << -0.25f;
        QTest::newRow("1234567") << 1234567.0f << "1.23457e+06" << "1234567.00000" << 1234570.0f;
    }
    void numberForms()
    {
        QFETCH(float, value);
        QXmlStream stream;
        QVERIFY(stream.createXmlStream("r"));
        const QDomNode node = stream.newChildNode(stream.getRootNode(), "v", QString());
        stream.setNodeAttribute(node, "f", value, true);
        QTEST(node.toElement().attribute("f"), "attribute");
        float read = 0;
        QVERIFY(stream.getNodeAttribute(node, "f", read, -1.0f));
        QTEST(read, "readBack");
        QVERIFY(stream.setNodeValue(node, value));
        QTEST(stream.getNodeStringValue(node), "element");
        QCOMPARE(stream.getNodeFloatValue(node), value);
    }

    void attributeGetters()
    {
        const QDomNode root = parse("<r n=\"12\" bad=\"x1\" f=\"2.5\" s=\" text \" e=\"\">t</r>");
        int i = -1;
        QVERIFY(stream->getNodeAttribute(root, "n", i, 5) && i == 12);
        QVERIFY(stream->getNodeAttribute(root, "bad", i, 5) && i == 0);
        QVERIFY(!stream->getNodeAttribute(root, "N", i, 6) && i == 6);
        float f = -1;
        QVERIFY(stream->getNodeAttribute(root, "f", f, 1.0f) && f == 2.5f);
        QVERIFY(stream->getNodeAttribute(root, "bad", f, 1.0f) && f == 0.0f);
        QVERIFY(!stream->getNodeAttribute(root, "missing", f, 1.5f) && f == 1.5f);
        QString s;
        QVERIFY(stream->getNodeAttribute(root, "s", s, "d") && s == " text ");
        QVERIFY(stream->getNodeAttribute(root, "e", s, "d") && s.isEmpty());
        QVERIFY(!stream->getNodeAttribute(root, "missing", s, "d") && s == "d");
        // A text node has no attributes: the default stays.
        const QDomNode text = stream->getFirstChildNode(root);
        QVERIFY(!stream->getNodeAttribute(text, "n", i, 9) && i == 9);
        QVERIFY(stream->isNodeAttributeExist(root, "e"));
        QVERIFY(!stream->isNodeAttributeExist(text, "n"));
    }

    void attributeSetters()
    {
        const QDomNode root = parse("<r/>");
        stream->setNodeAttribute(root, "i", -42, false);
        stream->setNodeAttribute(root, "i", 7, false); // the flag never stops a write
        stream->setNodeAttribute(root, "s", "a\"b", false);
        stream->newNodeAttribute(root, "s", "new");
        stream->newNodeAttribute(root, "n", "-5");
        QCOMPARE(stream->getXmlStream(), QString("<r i=\"7\" n=\"-5\" s=\"new\"/>\n"));
        QVERIFY(stream->removeAttribute(root, "n"));
        QVERIFY(stream->removeAttribute(root, "absent"));
        // Not an element: nothing is written, the result is still true.
        const QDomNode text = stream->getFirstChildNode(stream->newChildNode(root, "c", "v"));
        QVERIFY(stream->setNodeAttribute(text, "x", 1, true));
        QVERIFY(stream->setNodeAttribute(text, "x", 1.0f, true));
        QVERIFY(stream->setNodeAttribute(QDomNode(), "x", "1", true));
        QVERIFY(stream->removeAttribute(text, "x"));
        QCOMPARE(stream->getXmlStream(), QString("<r i=\"7\" s=\"new\">\n <c>v</c>\n</r>\n"));
    }

    void attributeNames()
    {
        QVERIFY(!parse("<r><a z=\"1\" b=\"2\" m=\"3\"/><e/>t</r>").isNull());
        const QDomNode a = stream->getFirstChildNode(stream->getRootNode());
        QCOMPARE(stream->getNodeAttributeName(a, 0) + stream->getNodeAttributeName(a, 2), QString("bz"));
        QVERIFY(stream->getNodeAttributeName(a, 3).isNull());
        QVERIFY(stream->getNodeAttributeName(a, -1).isNull());
        const QDomNode e = stream->getNextNode(a);
        QVERIFY(stream->getNodeAttributeName(e, 0).isEmpty() && !stream->getNodeAttributeName(e, 0).isNull());
        QVERIFY(!stream->getNodeAttributeName(stream->getNextNode(e), 0).isNull());
    }

    void values()
    {
        const QDomNode root = parse("<r><n>12</n><bad>x</bad><ce><c/></ce></r>");
        const QDomNode n = stream->getChildNode(root, "n");
        QVERIFY(stream->hadNodeValue(n));
        QCOMPARE(stream->getNodeIntValue(n), 12);
        QCOMPARE(stream->getNodeIntValue(stream->getChildNode(root, "bad")), 0);
        QVERIFY(stream->setNodeValue(n, -7));
        QCOMPARE(stream->getNodeStringValue(n), QString("-7"));
        QVERIFY(stream->removeNodeValue(n));
        QVERIFY(!stream->hadNodeValue(n));
        QCOMPARE(stream->getChildNodesCount(n), 1); // the text child stays
        QVERIFY(!stream->removeNodeValue(n));
        QVERIFY(!stream->getNodeStringValue(n).isNull());

        // First child is an element, or no child at all: writes are dropped.
        QDomElement bare = root.ownerDocument().createElement("bare");
        QDomNode(root).appendChild(bare);
        for (const QDomNode &node : {stream->getChildNode(root, "ce"), QDomNode(bare)}) {
            QVERIFY(stream->setNodeValue(node, "v"));
            QVERIFY(!stream->hadNodeValue(node));
            QVERIFY(stream->getNodeStringValue(node).isEmpty() && !stream->getNodeStringValue(node).isNull());
        }
        // Text nodes are not elements.
        const QDomNode text = stream->getFirstChildNode(n);
        QVERIFY(!stream->setNodeValue(text, "v"));
        QVERIFY(!stream->setNodeValue(QDomNode(), 1));
        QVERIFY(!stream->removeNodeValue(text));
    }
};

QTEST_GUILESS_MAIN(TestXmlStream)
#include "tst_xmlstream.moc"
