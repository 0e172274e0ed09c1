// SPDX-License-Identifier: MIT
#include "testsupport.h"
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
    document.appendChild(document.createProcessingInstruction("xml", "version='1.0'"));
    QDomElement root = document.createElement(QStringLiteral("svg"));
    document.appendChild(root);
    for (int i = 0; i < 20; ++i) {
        QDomElement child = document.createElement(QStringLiteral("path"));
        for (int a = 0; a < 12; ++a)
            child.setAttribute(QStringLiteral("attr%1").arg(a * 7 % 12), QString::number(i * a));
        child.setAttribute("d", QStringLiteral("M 0 0 L %1 %1").arg(i));
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
    void equalsQDom_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<int>("indent");
        const QList<QPair<const char *, const char *>> texts = {
            {"empty root", "<?xml version='1.0'?><r/>"},
            {"nested", "<?xml version='1.0'?><r><a k=\"1\"><b/><c x=\"y\"/></a><d/></r>"},
            {"no declaration", "<r><a/></r>"},
            {"text value", "<r><v>12.50000</v><w></w></r>"},
            {"value beside text", "<r><v a=\"1\">x</v>tail<w>y</w><u><v>z</v></u></r>"},
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
        };
        for (int indent : {4, 1, 0, -1}) {
            for (const auto &text : texts)
                QTest::addRow("%s, indent %d", text.first, indent) << QString::fromUtf8(text.second) << indent;
        }
    }
    void equalsQDom()
    {
        QFETCH(QString, xml);
        QFETCH(int, indent);
        QDomDocument document;
        QVERIFY(document.setContent(xml, false));
        QCOMPARE(DomWriter::toString(document, indent), document.toString(indent));
    }

    // Text that only a built tree holds: carriage returns, tabs and quotes in
    // values, entity references, fragments and a lone node.
    void builtTreeEqualsQDom()
    {
        QDomDocument document;
        QDomElement root = document.createElement("record");
        document.appendChild(root);
        QDomElement cmd = document.createElement("cmd");
        cmd.setAttribute("text", "line1\r\nline2\ttab \"q\" <&>");
        root.appendChild(cmd);
        cmd.appendChild(document.createTextNode("a\r\nb\t\"c\" ]]> d"));
        cmd.appendChild(document.createElement("b")).appendChild(document.createTextNode("t"));
        root.appendChild(document.createElement("ref")).appendChild(document.createEntityReference("amp"));
        root.appendChild(document.createComment("note"));
        root.appendChild(document.createElement("empty")).appendChild(document.createTextNode(QString()));
        QDomDocumentFragment fragment = document.createDocumentFragment();
        fragment.appendChild(document.createTextNode("\"top\""));
        fragment.appendChild(document.createElement("x"));
        for (int indent : {4, 1}) {
            QCOMPARE(DomWriter::toString(document, indent), document.toString(indent));
            QCOMPARE(DomWriter::toString(fragment, indent), qdomText(fragment, indent));
            QCOMPARE(DomWriter::toString(cmd, indent), qdomText(cmd, indent));
            QCOMPARE(DomWriter::toString(root.lastChild(), indent), qdomText(root.lastChild(), indent));
        }
    }

    // Children written from text known beforehand must give the bytes of
    // the walk, for list entries as the manifest makes them.
    void knownChildrenWriteWhatTheWalkWrites_data()
    {
        QTest::addColumn<QStringList>("entries");
        QTest::newRow("none") << QStringList();
        QTest::newRow("plain") << QStringList({"page1.svg", "page2.mtrec", "images/a.png"});
        QTest::newRow("markup") << QStringList({"a&b<c>\"d'", "]]>"});
        QTest::newRow("not carried by XML") << QStringList({QStringLiteral("x\u0001y"), QString(QChar(0xD800)) + "z"});
        QTest::newRow("non-ascii") << QStringList({QStringLiteral("\u6f22\u5b57/\u00e4.png")});
    }
    void knownChildrenWriteWhatTheWalkWrites()
    {
        QFETCH(QStringList, entries);
        QDomDocument document;
        document.appendChild(document.createProcessingInstruction("xml", "version='1.0'"));
        QDomElement root = document.appendChild(document.createElement("manifest")).toElement();
        QVector<DomWriter::KnownChildren> known;
        for (const char *identifier : {"pages", "records"}) {
            QDomElement resource = root.appendChild(document.createElement("resource")).toElement();
            resource.setAttribute("identifier", identifier);
            QString text;
            for (const QString &entry : std::as_const(entries)) {
                QDomElement file = resource.appendChild(document.createElement("file")).toElement();
                file.setAttribute("href", entry);
                file.appendChild(document.createTextNode(QString()));
                text += DomWriter::nodeText(file, 4, 2);
            }
            known.append({resource, text});
        }
        const QString walked = DomWriter::toString(document, 4);
        QCOMPARE(DomWriter::toString(document, 4, known), walked);
        // The known text is what is written, not a walk.
        if (!entries.isEmpty()) {
            known.first().text = QStringLiteral("<!--known-->\n");
            QVERIFY(DomWriter::toString(document, 4, known).contains("<!--known-->"));
        }
    }

    void sortsAttributes()
    {
        QDomDocument document;
        QDomElement e = document.createElement("e");
        document.appendChild(e);
        for (const char *name : {"z", "a", "stroke-width", "m", "B", "stroke"})
            e.setAttribute(QLatin1String(name), QLatin1String(name));
        QCOMPARE(DomWriter::toString(document, 4),
                 QStringLiteral("<e B=\"B\" a=\"a\" m=\"m\" stroke=\"stroke\" stroke-width=\"stroke-width\" z=\"z\"/>\n"));
    }

    void dropsCharactersXmlCannotCarry()
    {
        const QString bad = QStringLiteral("a") + QChar(0) + QChar(1) + QChar(0x1f) + QChar(0xd800)
            + QStringLiteral("b") + QChar(0xdc00) + QChar(0xfffe) + QChar(0xffff) + QStringLiteral("\t\n")
            + QChar(0xd83d) + QChar(0xde00) + QChar(0xfffd) + QChar(0xd800);
        const QString kept = QStringLiteral("ab\t\n") + QChar(0xd83d) + QChar(0xde00) + QChar(0xfffd);
        QDomDocument document;
        QDomElement root = document.createElement("r");
        document.appendChild(root);
        root.setAttribute("v", bad);
        QDomNode text = root.appendChild(document.createElement("t")).appendChild(document.createTextNode(bad));
        root.appendChild(document.createComment(bad));

        QDomDocument back;
        QVERIFY(back.setContent(DomWriter::toUtf8(document, 4), false));
        QCOMPARE(back.documentElement().attribute("v"), kept);
        QCOMPARE(back.documentElement().firstChildElement().text(), kept);
        QCOMPARE(back.documentElement().lastChild().nodeValue(), kept);
        QCOMPARE(text.nodeValue(), bad); // the tree itself is left as it is
    }

    // Names come in checked; the writer still never lets through one that
    // would make the file unreadable.
    void leavesOutNamesThatWouldNotReadBack()
    {
        QDomDocument document;
        QDomElement root = document.createElement("r");
        document.appendChild(root);
        root.setAttribute("1x", "a");
        root.setAttribute("a:b:c", "b");
        root.setAttribute(QString::fromUtf8("\xc3\xa9"), "c");
        QDomElement bad = document.createElement("a b");
        bad.appendChild(document.createElement("inner"));
        root.appendChild(bad);
        root.appendChild(document.createElement("kept"));

        QDomDocument back;
        QVERIFY(back.setContent(DomWriter::toUtf8(document, 4), false));
        const QDomElement element = back.documentElement();
        QCOMPARE(element.attributes().count(), 1);
        QCOMPARE(element.attribute(QString::fromUtf8("\xc3\xa9")), QStringLiteral("c"));
        QCOMPARE(element.childNodes().count(), 1);
        QCOMPARE(element.firstChildElement().tagName(), QStringLiteral("kept"));
    }

    void declaredEncodingBecomesUtf8()
    {
        QDomDocument document;
        QVERIFY(document.setContent(QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r>\xe4</r>"), false));
        const QByteArray bytes = DomWriter::toUtf8(document, 4);
        QVERIFY2(bytes.startsWith("<?xml version='1.0' encoding='UTF-8'?>\n"), bytes.constData());
        QDomDocument back;
        QVERIFY(back.setContent(bytes, false));
        QCOMPARE(back.documentElement().text(), QString(QChar(0xe4)));
    }

    void sameBytesFromSeparateProcesses()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QList<QByteArray> outputs;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("QT_HASH_SEED");
        for (int run = 0; run < 3; ++run) {
            const QString path = dir.filePath(QStringLiteral("tree%1.xml").arg(run));
            QProcess child;
            child.setProcessEnvironment(environment);
            child.start(QCoreApplication::applicationFilePath(), {QLatin1String(writeTreeArgument), path});
            QVERIFY(child.waitForFinished(30000));
            QCOMPARE(child.exitCode(), 0);
            outputs.append(readBytes(path));
        }
        QVERIFY(!outputs[0].isEmpty());
        QCOMPARE(outputs[1], outputs[0]);
        QCOMPARE(outputs[2], outputs[0]);
        QCOMPARE(outputs[0], DomWriter::toUtf8(manyAttributeTree(), 4));
    }
};

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
