#include "xml/domwriter.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

namespace {

const char writeTreeArgument[] = "--write-tree";

// Many attributes per element, so QDom's hash order would show.
QDomDocument manyAttributeTree()
{
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(QStringLiteral("xml"),
                                                              QStringLiteral("version='1.0'")));
    QDomElement root = document.createElement(QStringLiteral("svg"));
    document.appendChild(root);
    for (int i = 0; i < 20; ++i) {
        QDomElement child = document.createElement(QStringLiteral("path"));
        for (int a = 0; a < 12; ++a)
            child.setAttribute(QStringLiteral("attr%1").arg(a * 7 % 12), QString::number(i * a));
        child.setAttribute(QStringLiteral("stroke-width"), QStringLiteral("1.5"));
        child.setAttribute(QStringLiteral("d"), QStringLiteral("M 0 0 L %1 %1").arg(i));
        root.appendChild(child);
    }
    return document;
}

QString qdomText(const QDomNode &node, int indent)
{
    QString text;
    QTextStream stream(&text);
    node.save(stream, indent);
    stream.flush();
    return text;
}

} // namespace

class TestDomWriter : public QObject {
    Q_OBJECT

private slots:
    void equalsQDom_data();
    void equalsQDom();
    void builtTreeEqualsQDom_data();
    void builtTreeEqualsQDom();
    void loneNodeEqualsQDom();
    void sortsAttributes();
    void dropsCharactersXmlCannotCarry();
    void declaredEncodingBecomesUtf8();
    void sameBytesFromSeparateProcesses();
};

void TestDomWriter::equalsQDom_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<int>("indent");
    const QList<QPair<const char *, const char *>> texts = {
        {"empty root", "<?xml version='1.0'?><r/>"},
        {"nested", "<?xml version='1.0'?><r><a k=\"1\"><b/><c x=\"y\"/></a><d/></r>"},
        {"no declaration", "<r><a/></r>"},
        {"text value", "<r><v>12.50000</v><w></w></r>"},
        {"mixed content", "<r>lead<a/>mid<b>in</b>tail</r>"},
        {"text then element", "<r><t>x<b/></t></r>"},
        {"element then text", "<r><t><b/>x</t></r>"},
        {"escapes in text", "<r><t>a &lt; b &amp; c &gt; d \"q\" 'a' ]]&gt;</t></r>"},
        {"escapes in attribute", "<r a=\"&lt;&amp;&quot;'&gt;&#9;&#10;&#13;]]&gt;\"/>"},
        {"comments", "<r><!-- one --><a/><!--two-->text<!--three--></r>"},
        {"comment ending in dash", "<r><!--dash- --></r>"},
        {"cdata", "<r><a><![CDATA[x < y]]></a><b>t<![CDATA[c]]>u</b></r>"},
        {"processing instructions", "<?xml version='1.0'?><?style a?><r><?pi data?><a/></r>"},
        {"doctype", "<?xml version='1.0'?><!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\" "
                    "\"http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd\"><svg/>"},
        {"system doctype", "<!DOCTYPE r SYSTEM \"r.dtd\"><r/>"},
        {"internal entity", "<!DOCTYPE r [<!ENTITY e 'v\"&#38;#38;x'>]><r>&e;</r>"},
        {"external entity", "<!DOCTYPE r [<!ENTITY e SYSTEM \"e.xml\">]><r/>"},
        {"notation", "<!DOCTYPE r [<!NOTATION n SYSTEM \"viewer\">]><r/>"},
        {"non-ascii", "<r t=\"\xc3\xa4\"><a>\xe6\xb1\x89\xe5\xad\x97 \xf0\x9f\x98\x80</a></r>"},
        {"deep", "<a><b><c><d><e f=\"1\">v</e></d></c></b></a>"},
    };
    for (int indent : {4, 1, 0, -1}) {
        for (const auto &text : texts)
            QTest::addRow("%s, indent %d", text.first, indent) << QString::fromUtf8(text.second) << indent;
    }
}

void TestDomWriter::equalsQDom()
{
    QFETCH(QString, xml);
    QFETCH(int, indent);
    QDomDocument document;
    QVERIFY(document.setContent(xml, false));
    QCOMPARE(DomWriter::toString(document, indent), document.toString(indent));
}

void TestDomWriter::builtTreeEqualsQDom_data()
{
    QTest::addColumn<int>("indent");
    QTest::newRow("4") << 4;
    QTest::newRow("1") << 1;
}

// Text that only a built tree holds: carriage returns, tabs and quotes in
// values, entity references and fragments.
void TestDomWriter::builtTreeEqualsQDom()
{
    QFETCH(int, indent);
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(QStringLiteral("xml"),
                                                              QStringLiteral("version='1.0'")));
    QDomElement root = document.createElement(QStringLiteral("record"));
    document.appendChild(root);
    QDomElement cmd = document.createElement(QStringLiteral("cmd"));
    cmd.setAttribute(QStringLiteral("text"), QStringLiteral("line1\r\nline2\ttab \"q\" <&>"));
    root.appendChild(cmd);
    cmd.appendChild(document.createTextNode(QStringLiteral("a\r\nb\t\"c\" ]]> d")));
    QDomElement withRef = document.createElement(QStringLiteral("ref"));
    withRef.appendChild(document.createEntityReference(QStringLiteral("amp")));
    root.appendChild(withRef);
    root.appendChild(document.createComment(QStringLiteral("note")));
    QDomElement empty = document.createElement(QStringLiteral("empty"));
    empty.appendChild(document.createTextNode(QString()));
    root.appendChild(empty);
    QCOMPARE(DomWriter::toString(document, indent), document.toString(indent));

    QDomDocumentFragment fragment = document.createDocumentFragment();
    fragment.appendChild(document.createTextNode(QStringLiteral("\"top\"")));
    fragment.appendChild(document.createElement(QStringLiteral("x")));
    QCOMPARE(DomWriter::toString(fragment, indent), qdomText(fragment, indent));
}

void TestDomWriter::loneNodeEqualsQDom()
{
    QDomDocument document;
    QVERIFY(document.setContent(QStringLiteral("<r><a k=\"v\"><b>t</b><c/></a></r>"), false));
    const QDomNode a = document.documentElement().firstChild();
    for (int indent : {4, 1})
        QCOMPARE(DomWriter::toString(a, indent), qdomText(a, indent));
}

void TestDomWriter::sortsAttributes()
{
    QDomDocument document;
    QDomElement e = document.createElement(QStringLiteral("e"));
    document.appendChild(e);
    for (const char *name : {"z", "a", "stroke-width", "m", "B", "stroke"})
        e.setAttribute(QLatin1String(name), QLatin1String(name));
    QCOMPARE(DomWriter::toString(document, 4),
             QStringLiteral("<e B=\"B\" a=\"a\" m=\"m\" stroke=\"stroke\" stroke-width=\"stroke-width\" z=\"z\"/>\n"));
}

void TestDomWriter::dropsCharactersXmlCannotCarry()
{
    const QString bad = QStringLiteral("a") + QChar(0) + QChar(1) + QChar(0x1f) + QChar(0xd800)
        + QStringLiteral("b") + QChar(0xdc00) + QChar(0xfffe) + QChar(0xffff) + QStringLiteral("\t\n")
        + QChar(0xd83d) + QChar(0xde00) + QChar(0xfffd) + QChar(0xd800);
    const QString kept = QStringLiteral("ab\t\n") + QChar(0xd83d) + QChar(0xde00) + QChar(0xfffd);

    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("r"));
    document.appendChild(root);
    root.setAttribute(QStringLiteral("v"), bad);
    QDomElement child = document.createElement(QStringLiteral("t"));
    root.appendChild(child);
    child.appendChild(document.createTextNode(bad));
    root.appendChild(document.createComment(bad));

    const QByteArray bytes = DomWriter::toUtf8(document, 4);
    QDomDocument back;
    QVERIFY(back.setContent(bytes, false));
    QCOMPARE(back.documentElement().attribute(QStringLiteral("v")), kept);
    QCOMPARE(back.documentElement().firstChildElement().text(), kept);
    QCOMPARE(back.documentElement().lastChild().nodeValue(), kept);
    // The tree itself is left as it is.
    QCOMPARE(child.text(), bad);
}

void TestDomWriter::declaredEncodingBecomesUtf8()
{
    QDomDocument document;
    QVERIFY(document.setContent(QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r>\xe4</r>"), false));
    const QByteArray bytes = DomWriter::toUtf8(document, 4);
    QVERIFY2(bytes.startsWith("<?xml version='1.0' encoding='UTF-8'?>\n"), bytes.constData());
    QDomDocument back;
    QVERIFY(back.setContent(bytes, false));
    QCOMPARE(back.documentElement().text(), QString(QChar(0xe4)));
}

void TestDomWriter::sameBytesFromSeparateProcesses()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QList<QByteArray> outputs;
    for (int run = 0; run < 3; ++run) {
        const QString path = dir.filePath(QStringLiteral("tree%1.xml").arg(run));
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("QT_HASH_SEED"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {QLatin1String(writeTreeArgument), path});
        QVERIFY(child.waitForFinished(30000));
        QCOMPARE(child.exitCode(), 0);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        outputs.append(file.readAll());
    }
    QVERIFY(!outputs[0].isEmpty());
    QCOMPARE(outputs[1], outputs[0]);
    QCOMPARE(outputs[2], outputs[0]);
    QCOMPARE(outputs[0], DomWriter::toUtf8(manyAttributeTree(), 4));
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], writeTreeArgument) == 0) {
        QFile file(QString::fromLocal8Bit(argv[2]));
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write(DomWriter::toUtf8(manyAttributeTree(), 4));
        return 0;
    }
    TestDomWriter test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_domwriter.moc"
