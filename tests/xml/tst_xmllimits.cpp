// SPDX-License-Identifier: MIT
// Deep or attribute-laden XML: refused at load in linear time, before QDom
// builds anything, and a deep tree built in memory still writes out in
// linear size without exhausting the stack.
#include "testsupport.h"
#include "xml/domwriter.h"
#include "xml/xmlstream.h"

#include <QDomDocument>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray nested(const QByteArray &tag, int depth, bool closed = true)
{
    QByteArray text = "<?xml version='1.0'?>\n";
    text.reserve(int(depth * (2 * tag.size() + 5)) + 32);
    for (int i = 0; i < depth; ++i)
        text += '<' + tag + '>';
    for (int i = 0; closed && i < depth; ++i)
        text += "</" + tag + '>';
    return text;
}

QByteArray withAttributes(int count, const QByteArray &value = "1")
{
    QByteArray text = "<manifest";
    for (int i = 0; i < count; ++i)
        text += " a" + QByteArray::number(i) + "=\"" + value + '"';
    return text + "/>";
}

// Attributes the document type gives every element of a name.
QByteArray defaultedAttributes(int count)
{
    QByteArray list;
    for (int i = 0; i < count; ++i)
        list += " a" + QByteArray::number(i) + " CDATA \"1\"";
    return "<!-- lesson --><!DOCTYPE r [<!ATTLIST r" + list + ">]><r/>";
}

QByteArray utf16(const QByteArray &text)
{
    const QString string = QString::fromUtf8(text);
    QByteArray bytes("\xFF\xFE", 2);
    bytes.append(reinterpret_cast<const char *>(string.utf16()), int(string.size() * 2));
    return bytes;
}

// Markup inside comments, CDATA and quoted values is text, not elements.
QByteArray hiddenMarkup()
{
    const QByteArray deep = QByteArray("<g>").repeated(1000);
    return "<r a=\"" + QByteArray("=").repeated(1000) + "\"><!--" + deep + "--><![CDATA[" + deep + "]]><?pi " + deep
        + "?></r>";
}

} // namespace

class TestXmlLimits : public QObject {
    Q_OBJECT

private slots:
    void loadRefusesBeyondLimits_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("refusal");
        const QString deep = QStringLiteral("XML nested too deep!");
        const QString wide = QStringLiteral("XML element with too many attributes!");
        QTest::newRow("depth at the limit") << nested("g", 256) << QString();
        QTest::newRow("one level more") << nested("g", 257) << deep;
        QTest::newRow("a million levels") << nested("g", 1000000) << deep;
        QTest::newRow("a million levels, unclosed") << nested("g", 1000000, false) << deep;
        QTest::newRow("attributes at the limit") << withAttributes(256) << QString();
        QTest::newRow("one attribute more") << withAttributes(257) << wide;
        QTest::newRow("100,000 attributes") << withAttributes(100000) << wide;
        QTest::newRow("markup in text, comments and values") << hiddenMarkup() << QString();
        QTest::newRow("deep in UTF-16") << utf16(nested("g", 300)) << deep;
        QTest::newRow("deep through an entity")
            << "<!DOCTYPE r [<!ENTITY e \"" + QByteArray("<g>").repeated(200) + QByteArray("</g>").repeated(200)
                   + "\">]>" + nested("g", 100).mid(22).replace("<g><g></g>", "<g><g>&e;</g>")
            << deep;
        QTest::newRow("attributes by default, declared after a comment") << defaultedAttributes(257) << wide;
    }

    void loadRefusesBeyondLimits()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, refusal);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("page1.svg"));
        QVERIFY(writeFile(path, text));

        QElapsedTimer timer;
        timer.start();
        if (!refusal.isEmpty()) {
            QTest::ignoreMessage(QtWarningMsg, qPrintable(refusal));
            QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        }
        QXmlStream stream;
        QCOMPARE(stream.loadFromXmlFile(path), refusal.isEmpty());
        QVERIFY(!refusal.isEmpty() || !stream.getRootNode().isNull());
        QVERIFY2(refusal.isEmpty() || stream.getRootNode().isNull(), "a refused text leaves no tree");
        stream.closeFile(false);
        QVERIFY2(timer.elapsed() < kHangBoundMs, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(readBytes(path), text);
    }

    void deepTreeWritesInLinearSize_data()
    {
        QTest::addColumn<int>("depth");
        QTest::newRow("10 levels") << 10;
        QTest::newRow("10,000 levels") << 10000;
    }

    // A host can nest objects as deep as it likes; the text must stay about
    // as large as the tree and read back while within the limits.
    void deepTreeWritesInLinearSize()
    {
        QFETCH(int, depth);
        QDomDocument document;
        QDomElement parent = document.createElement(QStringLiteral("g"));
        document.appendChild(parent);
        for (int i = 1; i < depth; ++i) {
            const QDomElement child = document.createElement(QStringLiteral("g"));
            parent.appendChild(child);
            parent = child;
        }
        const QString text = DomWriter::toString(document, 4);
        QCOMPARE(int(text.count(QStringLiteral("<g>"))), depth - 1);
        QVERIFY2(text.size() < qsizetype(depth) * 2 * (10 + 32 * 4),
                 qPrintable(QStringLiteral("%1 characters").arg(text.size())));
        if (depth <= 256) {
            QXmlStream stream;
            QVERIFY(stream.loadFromXmlStream(text));
            QCOMPARE(int(stream.getXmlStream().count(QStringLiteral("<g"))), depth);
        }
    }
};

QTEST_GUILESS_MAIN(TestXmlLimits)
#include "tst_xmllimits.moc"
