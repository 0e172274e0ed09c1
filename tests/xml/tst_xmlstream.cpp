#include "xml/xmlstream.h"

#include <QDomElement>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

// Counts every message while it lives, to prove an operation stays silent.
class MessageCounter {
public:
    MessageCounter()
        : m_previous(qInstallMessageHandler(count))
    {
        s_count = 0;
    }
    ~MessageCounter() { qInstallMessageHandler(m_previous); }
    int messages() const { return s_count; }

private:
    static void count(QtMsgType, const QMessageLogContext &, const QString &) { ++s_count; }
    static inline int s_count = 0;
    QtMessageHandler m_previous;
};

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

} // namespace

class TestXmlStream : public QObject {
    Q_OBJECT

private slots:
    void init();

    // Document and file
    void createXmlFileWritesDeclarationAndRoot();
    void createXmlFileRefusesExistingFile();
    void createXmlFileInMissingFolder();
    void loadMissingFileIsSilent_data();
    void loadMissingFileIsSilent();
    void loadMalformedFile();
    void loadFromXmlStream_data();
    void loadFromXmlStream();
    void reloadWithoutName();
    void reloadOfVanishedFileReportsSuccess();
    void setXmlFileNameLoads();
    void saveFileLeavesFileOpen();
    void closeFileWithoutSaveKeepsFile();
    void closeFileOnClosedFileWritesNothing();
    void destructorWritesLoadedFile();
    void saveFileWithoutNameFails();
    void getXmlStreamUsesIndentOne();
    void nonAsciiTextRoundTrips();
    void invalidCharactersKeepFileLoadable();
    void getRootNodeTakesOneStep_data();
    void getRootNodeTakesOneStep();

    // Navigation and editing
    void childByNameSkipsOrStopsAtText();
    void childNodesCount();
    void attributeSearches();
    void pairSearches();
    void intSearchMatchesMalformedAsZero();
    void floatSearchIsExact();
    void parentAndRoot();
    void removals();
    void newChildNodeOnNullParent();

    // Attributes and values
    void numberForms_data();
    void numberForms();
    void attributeGetters();
    void attributeSetters();
    void attributeNames();
    void values();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString &name) const { return m_dir->filePath(name); }
};

void TestXmlStream::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void TestXmlStream::createXmlFileWritesDeclarationAndRoot()
{
    const QString file = path(QStringLiteral("page1.svg"));
    {
        QXmlStream stream;
        QVERIFY(!stream.isReady());
        QVERIFY(stream.createXmlFile(file, QStringLiteral("svg")));
        QVERIFY(stream.isReady());
        QCOMPARE(stream.getXmlFileName(), file);
    }
    QCOMPARE(readAll(file), QByteArray("<?xml version='1.0'?>\n<svg/>\n"));

    QXmlStream loaded;
    QVERIFY(loaded.loadFromXmlFile(file));
    QVERIFY(loaded.isReady());
    QCOMPARE(loaded.getNodeName(loaded.getRootNode()), QStringLiteral("svg"));
    QVERIFY(loaded.getRootNode().isElement());
}

void TestXmlStream::createXmlFileRefusesExistingFile()
{
    const QString file = path(QStringLiteral("manifest.xml"));
    const QByteArray original("<?xml version='1.0'?>\n<old   a='1'>keep</old>\n");
    writeAll(file, original);

    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("x")));
    QTest::ignoreMessage(QtWarningMsg, "XML file had exist!");
    QVERIFY(!stream.createXmlFile(file, QStringLiteral("manifest")));
    QVERIFY(!stream.isReady());
    QCOMPARE(stream.getXmlFileName(), file);
    QCOMPARE(readAll(file), original);
    // The tree is untouched too.
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<x/>\n"));
}

void TestXmlStream::createXmlFileInMissingFolder()
{
    QXmlStream stream;
    QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
    QVERIFY(!stream.createXmlFile(path(QStringLiteral("no/such/folder.xml")), QStringLiteral("r")));
    QVERIFY(!stream.isReady());
}

void TestXmlStream::loadMissingFileIsSilent_data()
{
    QTest::addColumn<bool>("readyBefore");
    QTest::newRow("fresh object") << false;
    QTest::newRow("ready object") << true;
}

void TestXmlStream::loadMissingFileIsSilent()
{
    QFETCH(bool, readyBefore);
    QXmlStream stream;
    if (readyBefore)
        QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    MessageCounter counter;
    QVERIFY(!stream.loadFromXmlFile(path(QStringLiteral("missing.xml"))));
    QCOMPARE(counter.messages(), 0);
    QCOMPARE(stream.isReady(), readyBefore);
}

void TestXmlStream::loadMalformedFile()
{
    const QString file = path(QStringLiteral("broken.xml"));
    writeAll(file, "<?xml version='1.0'?>\n<r><unclosed></r>\n");
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("x")));
    QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
    QVERIFY(!stream.loadFromXmlFile(file));
    QVERIFY(!stream.isReady());
    QCOMPARE(stream.getXmlFileName(), file);
}

void TestXmlStream::loadFromXmlStream_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::newRow("element") << "<g id=\"1\"><rect/></g>" << true;
    QTest::newRow("with declaration") << "<?xml version='1.0'?><r/>" << true;
    QTest::newRow("unclosed") << "<g>" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("two roots") << "<a/><b/>" << false;
    QTest::newRow("plain text") << "hello" << false;
}

void TestXmlStream::loadFromXmlStream()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QXmlStream stream;
    if (!ok)
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml Stream!");
    QCOMPARE(stream.loadFromXmlStream(text), ok);
    QCOMPARE(stream.isReady(), ok);
    QVERIFY(stream.getXmlFileName().isEmpty());
}

void TestXmlStream::reloadWithoutName()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    QTest::ignoreMessage(QtWarningMsg, "No file name specified");
    QVERIFY(!stream.reloadFile());
    QVERIFY(!stream.isReady());
}

void TestXmlStream::reloadOfVanishedFileReportsSuccess()
{
    const QString file = path(QStringLiteral("gone.xml"));
    writeAll(file, "<r/>");
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlFile(file));
    QVERIFY(stream.closeFile(false));
    QVERIFY(QFile::remove(file));
    QVERIFY(!stream.loadFromXmlFile(file));
    QVERIFY(stream.reloadFile());
    QVERIFY(stream.isReady());
    QVERIFY(!QFile::exists(file));

    // A broken file as well: the load warns, the reload still succeeds.
    writeAll(file, "<r>");
    QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
    QVERIFY(stream.reloadFile());
    QVERIFY(stream.isReady());
}

void TestXmlStream::setXmlFileNameLoads()
{
    const QString file = path(QStringLiteral("named.xml"));
    writeAll(file, "<?xml version='1.0'?><named/>");
    QXmlStream stream;
    QVERIFY(stream.setXmlFileName(file));
    QVERIFY(stream.isReady());
    QCOMPARE(stream.getXmlFileName(), file);
    QCOMPARE(stream.getNodeName(stream.getRootNode()), QStringLiteral("named"));

    QXmlStream missing;
    QVERIFY(missing.setXmlFileName(path(QStringLiteral("none.xml"))));
    QVERIFY(missing.isReady()); // the reload's success, not the load's
}

void TestXmlStream::saveFileLeavesFileOpen()
{
    const QString file = path(QStringLiteral("page2.svg"));
    {
        QXmlStream stream;
        QVERIFY(stream.createXmlFile(file, QStringLiteral("svg")));
        const QDomNode root = stream.getRootNode();
        stream.setNodeAttribute(root, QStringLiteral("width"), 800, true);
        QVERIFY(stream.saveFile());
        QCOMPARE(readAll(file), QByteArray("<?xml version='1.0'?>\n<svg width=\"800\"/>\n"));
        // Still open: the destructor writes the later edit as well.
        stream.setNodeAttribute(root, QStringLiteral("height"), 600, true);
    }
    QCOMPARE(readAll(file), QByteArray("<?xml version='1.0'?>\n<svg height=\"600\" width=\"800\"/>\n"));
}

void TestXmlStream::closeFileWithoutSaveKeepsFile()
{
    const QString file = path(QStringLiteral("keep.xml"));
    const QByteArray original("<?xml version='1.0'?>\n<r/>\n");
    writeAll(file, original);
    {
        QXmlStream stream;
        QVERIFY(stream.loadFromXmlFile(file));
        stream.newChildNode(stream.getRootNode(), QStringLiteral("lost"), QString());
        QVERIFY(stream.closeFile(false));
    }
    QCOMPARE(readAll(file), original);
}

void TestXmlStream::closeFileOnClosedFileWritesNothing()
{
    const QString file = path(QStringLiteral("created.xml"));
    {
        QXmlStream stream;
        QVERIFY(stream.createXmlFile(file, QStringLiteral("record")));
        stream.newChildNode(stream.getRootNode(), QStringLiteral("cmd"), QStringLiteral("1"));
        QVERIFY(stream.closeFile(true));
    }
    QCOMPARE(readAll(file), QByteArray("<?xml version='1.0'?>\n<record/>\n"));
}

void TestXmlStream::destructorWritesLoadedFile()
{
    const QString file = path(QStringLiteral("manifest.xml"));
    writeAll(file, "<?xml version='1.0'?><manifest><resource type=\"pages\"/></manifest>");
    {
        QXmlStream stream;
        QVERIFY(stream.loadFromXmlFile(file));
        const QDomNode list = stream.getChildNode(stream.getRootNode(), QStringLiteral("resource"));
        stream.newChildNode(list, QStringLiteral("file"), QStringLiteral("page1.svg"));
    }
    QCOMPARE(readAll(file), QByteArray("<?xml version='1.0'?>\n<manifest>\n    <resource type=\"pages\">\n"
                                       "        <file>page1.svg</file>\n    </resource>\n</manifest>\n"));
}

void TestXmlStream::saveFileWithoutNameFails()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    MessageCounter counter;
    QVERIFY(!stream.saveFile());
    QVERIFY(stream.closeFile(true));
    QCOMPARE(counter.messages(), 0);
}

void TestXmlStream::getXmlStreamUsesIndentOne()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("g")));
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<g/>\n"));
    const QDomNode child = stream.newChildNode(stream.getRootNode(), QStringLiteral("a"), QString());
    stream.newChildNode(child, QStringLiteral("b"), QStringLiteral("v"));
    QString &text = stream.getXmlStream();
    // The empty text child ahead of b keeps whitespace out of a's content.
    QCOMPARE(text, QStringLiteral("<g>\n <a><b>v</b>\n </a>\n</g>\n"));
    QCOMPARE(&stream.getXmlStream(), &text);
    QCOMPARE(text, child.ownerDocument().toString(1));
}

void TestXmlStream::nonAsciiTextRoundTrips()
{
    const QString file = path(QStringLiteral("text.svg"));
    const QString words = QStringLiteral("Grüße, 汉字 und 😀 <&> \"quoted\"");
    {
        QXmlStream stream;
        QVERIFY(stream.createXmlFile(file, QStringLiteral("svg")));
        const QDomNode text = stream.newChildNode(stream.getRootNode(), QStringLiteral("text"), words);
        stream.setNodeAttribute(text, QStringLiteral("title"), words, true);
        QVERIFY(stream.saveFile());
    }
    QVERIFY(readAll(file).contains(QStringLiteral("Grüße, 汉字 und 😀").toUtf8()));
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlFile(file));
    const QDomNode text = stream.getChildNode(stream.getRootNode(), QStringLiteral("text"));
    QCOMPARE(stream.getNodeStringValue(text), words);
    QString title;
    QVERIFY(stream.getNodeAttribute(text, QStringLiteral("title"), title, QString()));
    QCOMPARE(title, words);
    stream.closeFile(false);
}

void TestXmlStream::invalidCharactersKeepFileLoadable()
{
    const QString file = path(QStringLiteral("controls.xml"));
    const QString value = QStringLiteral("a") + QChar(0) + QChar(0x1b) + QStringLiteral("b");
    {
        QXmlStream stream;
        QVERIFY(stream.createXmlFile(file, QStringLiteral("r")));
        const QDomNode node = stream.newChildNode(stream.getRootNode(), QStringLiteral("t"), value);
        stream.setNodeAttribute(node, QStringLiteral("k"), value, true);
        QCOMPARE(stream.getNodeStringValue(node), value);
        QVERIFY(stream.saveFile());
    }
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlFile(file));
    const QDomNode node = stream.getChildNode(stream.getRootNode(), QStringLiteral("t"));
    QCOMPARE(stream.getNodeStringValue(node), QStringLiteral("ab"));
    stream.closeFile(false);
}

void TestXmlStream::getRootNodeTakesOneStep_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("name");
    QTest::newRow("element first") << "<r/>" << int(QDomNode::ElementNode) << "r";
    QTest::newRow("declaration") << "<?xml version='1.0'?><r/>" << int(QDomNode::ElementNode) << "r";
    QTest::newRow("comment") << "<!--c--><r/>" << int(QDomNode::ElementNode) << "r";
    QTest::newRow("declaration and comment")
        << "<?xml version='1.0'?><!--c--><r/>" << int(QDomNode::CommentNode) << "#comment";
    QTest::newRow("two instructions")
        << "<?a x?><?b y?><r/>" << int(QDomNode::ProcessingInstructionNode) << "b";
}

void TestXmlStream::getRootNodeTakesOneStep()
{
    QFETCH(QString, text);
    QFETCH(int, type);
    QFETCH(QString, name);
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(text));
    const QDomNode root = stream.getRootNode();
    QCOMPARE(int(root.nodeType()), type);
    QCOMPARE(stream.getNodeName(root), name);
    QVERIFY(stream.isRootNode(root));
}

void TestXmlStream::childByNameSkipsOrStopsAtText()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral("<r><p>lead<a/></p><q><x/><a/><!--c--><b/></q></r>")));
    const QDomNode p = stream.getChildNode(stream.getRootNode(), QStringLiteral("p"));
    QVERIFY(stream.getChildNode(p, QStringLiteral("a")).isElement());
    // Stops at the text ahead of the element and hands that back.
    const QDomNode lead = stream.getChildNodeByNodename(p, QStringLiteral("a"));
    QVERIFY(lead.isText());
    QCOMPARE(lead.nodeValue(), QStringLiteral("lead"));

    const QDomNode q = stream.getChildNode(stream.getRootNode(), QStringLiteral("q"));
    QCOMPARE(stream.getNodeName(stream.getChildNodeByNodename(q, QStringLiteral("a"))), QStringLiteral("a"));
    QVERIFY(stream.getChildNodeByNodename(q, QStringLiteral("b")).isComment());
    QCOMPARE(stream.getNodeName(stream.getChildNode(q, QStringLiteral("b"))), QStringLiteral("b"));
    QVERIFY(stream.getChildNode(q, QStringLiteral("none")).isNull());
    QVERIFY(stream.getChildNodeByNodename(QDomNode(), QStringLiteral("a")).isNull());

    const QDomNode x = stream.getChildNode(q, QStringLiteral("x"));
    QVERIFY(stream.getChildNodeByNodename(x, QStringLiteral("a")).isNull());
    QVERIFY(stream.getChildNode(x, QStringLiteral("a")).isNull());
}

void TestXmlStream::childNodesCount()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    const QDomNode root = stream.getRootNode();
    QCOMPARE(stream.getChildNodesCount(root), 0);
    const QDomNode child = stream.newChildNode(root, QStringLiteral("c"), QString());
    QCOMPARE(stream.getChildNodesCount(child), 1);
    QVERIFY(stream.getFirstChildNode(child).isText());
    stream.newChildNode(root, QStringLiteral("d"), QStringLiteral("v"));
    QCOMPARE(stream.getChildNodesCount(root), 2);
    QCOMPARE(stream.getChildNodesCount(QDomNode()), 0);
}

void TestXmlStream::attributeSearches()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral(
        "<r>text<x k=\"1\"/><y/><z k=\"1\"/><w k=\"01\"/><v k=\"1 \"/></r>")));
    const QDomNode root = stream.getRootNode();
    const QString k = QStringLiteral("k");
    const QString one = QStringLiteral("1");

    const QDomNode x = stream.getFirstChildNode(root, k, one);
    QCOMPARE(stream.getNodeName(x), QStringLiteral("x"));
    const QDomNode z = stream.getNextNode(x, k, one);
    QCOMPARE(stream.getNodeName(z), QStringLiteral("z"));
    QVERIFY(stream.getNextNode(z, k, one).isNull());
    QCOMPARE(stream.getLastChildNode(root, k, one), z);
    QCOMPARE(stream.getPreviousNode(z, k, one), x);
    QVERIFY(stream.getPreviousNode(x, k, one).isNull());
    QCOMPARE(stream.getChildNodeByAttribute(root, k, one), x);
    // Exact text: no trimming, no number reading.
    QCOMPARE(stream.getNodeName(stream.getFirstChildNode(root, k, QStringLiteral("01"))), QStringLiteral("w"));
    QCOMPARE(stream.getNodeName(stream.getFirstChildNode(root, k, QStringLiteral("1 "))), QStringLiteral("v"));
    QVERIFY(stream.getFirstChildNode(root, QStringLiteral("K"), one).isNull());
    QVERIFY(stream.getFirstChildNode(x, k, one).isNull());
    QVERIFY(stream.getLastChildNode(x, k, one).isNull());
    // The int form reads numbers: "01" and "1 " read as 1 too.
    QCOMPARE(stream.getChildNodeByAttribute(root, k, 1), x);
}

void TestXmlStream::pairSearches()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral(
        "<r><a t=\"p\" i=\"1\"/><b t=\"p\"/><c i=\"1\"/><d t=\"p\" i=\"1\"/><e t=\"p\" i=\"2\"/></r>")));
    const QDomNode root = stream.getRootNode();
    const QDomNode a = stream.getFirstChildNode(root);
    const QString t = QStringLiteral("t"), i = QStringLiteral("i");
    const QString p = QStringLiteral("p"), one = QStringLiteral("1");
    const QDomNode d = stream.getNextNode(a, t, p, i, one);
    QCOMPARE(stream.getNodeName(d), QStringLiteral("d"));
    QVERIFY(stream.getNextNode(d, t, p, i, one).isNull());
    QCOMPARE(stream.getPreviousNode(d, t, p, i, one), a);
    QVERIFY(stream.getPreviousNode(a, t, p, i, one).isNull());
    QCOMPARE(stream.getNodeName(stream.getPreviousNode(stream.getLastChildNode(root), i, one, t, p)),
             QStringLiteral("d"));
}

void TestXmlStream::intSearchMatchesMalformedAsZero()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral(
        "<r><n/><a id=\"7\"/><b id=\"abc\"/><c id=\"0\"/><d id=\"-3\"/></r>")));
    const QDomNode root = stream.getRootNode();
    const QString id = QStringLiteral("id");
    QCOMPARE(stream.getNodeName(stream.getChildNodeByAttribute(root, id, 0)), QStringLiteral("b"));
    QCOMPARE(stream.getNodeName(stream.getChildNodeByAttribute(root, id, 7)), QStringLiteral("a"));
    QCOMPARE(stream.getNodeName(stream.getChildNodeByAttribute(root, id, -3)), QStringLiteral("d"));
    QVERIFY(stream.getChildNodeByAttribute(root, id, 8).isNull());
}

void TestXmlStream::floatSearchIsExact()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    const QDomNode root = stream.getRootNode();
    const QString v = QStringLiteral("v");
    const float third = 1.0f / 3.0f;
    const QDomNode written = stream.newChildNode(root, QStringLiteral("a"), QString());
    stream.setNodeAttribute(written, v, 0.25f, true);
    const QDomNode rounded = stream.newChildNode(root, QStringLiteral("b"), QString());
    stream.setNodeAttribute(rounded, v, third, true); // stored as 0.333333
    const QDomNode junk = stream.newChildNode(root, QStringLiteral("c"), QString());
    stream.setNodeAttribute(junk, v, QStringLiteral("junk"), true);
    const QDomNode nan = stream.newChildNode(root, QStringLiteral("d"), QString());
    stream.setNodeAttribute(nan, v, QStringLiteral("nan"), true);

    QCOMPARE(stream.getChildNodeByAttribute(root, v, 0.25f), written);
    QVERIFY(stream.getChildNodeByAttribute(root, v, third).isNull());
    QCOMPARE(stream.getChildNodeByAttribute(root, v, 0.333333f), rounded);
    QCOMPARE(stream.getChildNodeByAttribute(root, v, 0.0f), junk);
    QVERIFY(stream.getChildNodeByAttribute(root, v, std::numeric_limits<float>::quiet_NaN()).isNull());
}

void TestXmlStream::parentAndRoot()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral("<?xml version='1.0'?><r><a><b/></a></r>")));
    const QDomNode root = stream.getRootNode();
    const QDomNode a = stream.getFirstChildNode(root);
    const QDomNode b = stream.getFirstChildNode(a);
    QVERIFY(stream.getParentNode(root).isNull());
    QCOMPARE(stream.getParentNode(a), root);
    QCOMPARE(stream.getParentNode(b), a);
    QVERIFY(stream.isRootNode(root));
    QVERIFY(!stream.isRootNode(a));
    // The declaration sits at the top level: its parent is the document.
    const QDomNode declaration = stream.getPreviousNode(root);
    QVERIFY(declaration.isProcessingInstruction());
    QVERIFY(stream.getParentNode(declaration).isDocument());

    // Same content is not the same node.
    QXmlStream other;
    QVERIFY(other.loadFromXmlStream(QStringLiteral("<r><a><b/></a></r>")));
    QVERIFY(!stream.isRootNode(other.getRootNode()));
}

void TestXmlStream::removals()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral("<r>t<a/><b/><a k=\"2\"/><!--c--></r>")));
    const QDomNode root = stream.getRootNode();
    const QString before = stream.getXmlStream();

    QVERIFY(stream.removeNode(root));
    QCOMPARE(stream.getXmlStream(), before);
    QVERIFY(stream.removeChildNode(root, QStringLiteral("none")));
    QCOMPARE(stream.getXmlStream(), before);

    QVERIFY(stream.removeChildNode(root, QStringLiteral("a")));
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<r>t<b/>\n <a k=\"2\"/>\n <!--c-->\n</r>\n"));
    QVERIFY(stream.removeChildNode(root, QStringLiteral("#text")));
    QVERIFY(stream.removeNode(stream.getChildNode(root, QStringLiteral("b"))));
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<r>\n <a k=\"2\"/>\n <!--c-->\n</r>\n"));

    QVERIFY(stream.removeAllChildNotes(root));
    QCOMPARE(stream.getChildNodesCount(root), 0);
    QVERIFY(!stream.removeAllChildNotes(root));
    QVERIFY(!stream.removeChildNode(root, QStringLiteral("a")));
    QVERIFY(!stream.removeChildNode(QDomNode(), QStringLiteral("a")));
    QVERIFY(stream.removeNode(QDomNode()));
}

void TestXmlStream::newChildNodeOnNullParent()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    QVERIFY(stream.newChildNode(QDomNode(), QStringLiteral("a"), QStringLiteral("v")).isNull());
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<r/>\n"));
}

void TestXmlStream::numberForms_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("element");
    QTest::addColumn<float>("readBack");
    QTest::newRow("3") << 3.0f << "3" << "3.00000" << 3.0f;
    QTest::newRow("0.5") << 0.5f << "0.5" << "0.50000" << 0.5f;
    QTest::newRow("1.5") << 1.5f << "1.5" << "1.50000" << 1.5f;
    QTest::newRow("-0.25") << -0.25f << "-0.25" << "-0.25000" << -0.25f;
    QTest::newRow("1234567") << 1234567.0f << "1.23457e+06" << "1234567.00000" << 1234570.0f;
}

void TestXmlStream::numberForms()
{
    QFETCH(float, value);
    QFETCH(QString, attribute);
    QFETCH(QString, element);
    QFETCH(float, readBack);
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    const QDomNode node = stream.newChildNode(stream.getRootNode(), QStringLiteral("v"), QString());
    QVERIFY(stream.setNodeAttribute(node, QStringLiteral("f"), value, true));
    QCOMPARE(node.toElement().attribute(QStringLiteral("f")), attribute);
    float read = 0;
    QVERIFY(stream.getNodeAttribute(node, QStringLiteral("f"), read, -1.0f));
    QCOMPARE(read, readBack);

    QVERIFY(stream.setNodeValue(node, value));
    QCOMPARE(stream.getNodeStringValue(node), element);
    QCOMPARE(stream.getNodeFloatValue(node), value);
}

void TestXmlStream::attributeGetters()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral("<r n=\"12\" bad=\"x1\" f=\"2.5\" s=\" text \" e=\"\">t</r>")));
    const QDomNode root = stream.getRootNode();
    int i = -1;
    QVERIFY(stream.getNodeAttribute(root, QStringLiteral("n"), i, 5));
    QCOMPARE(i, 12);
    QVERIFY(stream.getNodeAttribute(root, QStringLiteral("bad"), i, 5));
    QCOMPARE(i, 0);
    QVERIFY(!stream.getNodeAttribute(root, QStringLiteral("missing"), i, 5));
    QCOMPARE(i, 5);
    QVERIFY(!stream.getNodeAttribute(root, QStringLiteral("N"), i, 6));
    QCOMPARE(i, 6);

    float f = -1;
    QVERIFY(stream.getNodeAttribute(root, QStringLiteral("f"), f, 1.0f));
    QCOMPARE(f, 2.5f);
    QVERIFY(stream.getNodeAttribute(root, QStringLiteral("bad"), f, 1.0f));
    QCOMPARE(f, 0.0f);
    QVERIFY(!stream.getNodeAttribute(root, QStringLiteral("missing"), f, 1.5f));
    QCOMPARE(f, 1.5f);

    QString s;
    QVERIFY(stream.getNodeAttribute(root, QStringLiteral("s"), s, QStringLiteral("d")));
    QCOMPARE(s, QStringLiteral(" text "));
    QVERIFY(stream.getNodeAttribute(root, QStringLiteral("e"), s, QStringLiteral("d")));
    QCOMPARE(s, QString());
    QVERIFY(!stream.getNodeAttribute(root, QStringLiteral("missing"), s, QStringLiteral("d")));
    QCOMPARE(s, QStringLiteral("d"));

    // A text node has no attributes: the default stays.
    const QDomNode text = stream.getFirstChildNode(root);
    QVERIFY(!stream.getNodeAttribute(text, QStringLiteral("n"), i, 9));
    QCOMPARE(i, 9);
    QVERIFY(!stream.getNodeAttribute(QDomNode(), QStringLiteral("n"), s, QStringLiteral("z")));
    QCOMPARE(s, QStringLiteral("z"));
    QVERIFY(stream.isNodeAttributeExist(root, QStringLiteral("e")));
    QVERIFY(!stream.isNodeAttributeExist(root, QStringLiteral("x")));
    QVERIFY(!stream.isNodeAttributeExist(text, QStringLiteral("n")));
}

void TestXmlStream::attributeSetters()
{
    QXmlStream stream;
    QVERIFY(stream.createXmlStream(QStringLiteral("r")));
    const QDomNode root = stream.getRootNode();
    QVERIFY(stream.setNodeAttribute(root, QStringLiteral("i"), -42, false));
    QVERIFY(stream.setNodeAttribute(root, QStringLiteral("i"), 7, false)); // the flag never stops a write
    QVERIFY(stream.setNodeAttribute(root, QStringLiteral("s"), QStringLiteral("a\"b"), false));
    QVERIFY(stream.newNodeAttribute(root, QStringLiteral("s"), QStringLiteral("new")));
    QVERIFY(stream.newNodeAttribute(root, QStringLiteral("n"), QStringLiteral("-5")));
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<r i=\"7\" n=\"-5\" s=\"new\"/>\n"));
    QVERIFY(stream.removeAttribute(root, QStringLiteral("n")));
    QVERIFY(stream.removeAttribute(root, QStringLiteral("absent")));
    QVERIFY(!stream.isNodeAttributeExist(root, QStringLiteral("n")));

    // Not an element: nothing is written, the result is still true.
    const QDomNode text = stream.getFirstChildNode(
        stream.newChildNode(root, QStringLiteral("c"), QStringLiteral("v")));
    QVERIFY(stream.setNodeAttribute(text, QStringLiteral("x"), 1, true));
    QVERIFY(stream.setNodeAttribute(text, QStringLiteral("x"), 1.0f, true));
    QVERIFY(stream.setNodeAttribute(QDomNode(), QStringLiteral("x"), QStringLiteral("1"), true));
    QVERIFY(stream.removeAttribute(text, QStringLiteral("x")));
    QCOMPARE(stream.getXmlStream(), QStringLiteral("<r i=\"7\" s=\"new\">\n <c>v</c>\n</r>\n"));
}

void TestXmlStream::attributeNames()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral("<r><a z=\"1\" b=\"2\" m=\"3\"/><e/>t</r>")));
    const QDomNode a = stream.getFirstChildNode(stream.getRootNode());
    QCOMPARE(stream.getNodeAttributeName(a, 0), QStringLiteral("b"));
    QCOMPARE(stream.getNodeAttributeName(a, 1), QStringLiteral("m"));
    QCOMPARE(stream.getNodeAttributeName(a, 2), QStringLiteral("z"));
    QVERIFY(stream.getNodeAttributeName(a, 3).isNull());
    QVERIFY(stream.getNodeAttributeName(a, -1).isNull());

    const QDomNode e = stream.getNextNode(a);
    const QString none = stream.getNodeAttributeName(e, 0);
    QVERIFY(none.isEmpty());
    QVERIFY(!none.isNull());
    QVERIFY(!stream.getNodeAttributeName(stream.getNextNode(e), 0).isNull());
}

void TestXmlStream::values()
{
    QXmlStream stream;
    QVERIFY(stream.loadFromXmlStream(QStringLiteral("<r><n>12</n><bad>x</bad><ce><c/></ce></r>")));
    const QDomNode root = stream.getRootNode();
    const QDomNode n = stream.getChildNode(root, QStringLiteral("n"));
    QVERIFY(stream.hadNodeValue(n));
    QCOMPARE(stream.getNodeIntValue(n), 12);
    QCOMPARE(stream.getNodeFloatValue(n), 12.0f);
    QCOMPARE(stream.getNodeIntValue(stream.getChildNode(root, QStringLiteral("bad"))), 0);
    QVERIFY(stream.setNodeValue(n, -7));
    QCOMPARE(stream.getNodeStringValue(n), QStringLiteral("-7"));
    QVERIFY(stream.removeNodeValue(n));
    QVERIFY(!stream.hadNodeValue(n));
    QCOMPARE(stream.getChildNodesCount(n), 1); // the text child stays
    QVERIFY(!stream.removeNodeValue(n));
    QCOMPARE(stream.getNodeIntValue(n), 0);
    const QString emptyValue = stream.getNodeStringValue(n);
    QVERIFY(emptyValue.isEmpty() && !emptyValue.isNull());

    // First child is an element, not text: writes are dropped.
    const QDomNode ce = stream.getChildNode(root, QStringLiteral("ce"));
    QVERIFY(stream.setNodeValue(ce, QStringLiteral("v")));
    QVERIFY(!stream.hadNodeValue(ce));
    QCOMPARE(stream.getNodeStringValue(ce), QString(QLatin1String("")));
    QVERIFY(!stream.getNodeStringValue(ce).isNull());

    // An element made without its text child stays empty.
    QDomElement bare = root.ownerDocument().createElement(QStringLiteral("bare"));
    QDomNode(root).appendChild(bare);
    QVERIFY(stream.setNodeValue(bare, QStringLiteral("v")));
    QVERIFY(!stream.hadNodeValue(bare));
    QVERIFY(!stream.getNodeStringValue(bare).isNull());
    QCOMPARE(stream.getNodeFloatValue(bare), 0.0f);

    // Text nodes are not elements.
    const QDomNode text = stream.getFirstChildNode(n);
    QVERIFY(!stream.setNodeValue(text, QStringLiteral("v")));
    QVERIFY(!stream.setNodeValue(QDomNode(), 1));
    QVERIFY(!stream.hadNodeValue(text));
    QVERIFY(!stream.removeNodeValue(text));
}

QTEST_GUILESS_MAIN(TestXmlStream)
#include "tst_xmlstream.moc"
