// SPDX-License-Identifier: MIT
#include "xml/xmlname.h"

#include <QDomDocument>
#include <QtTest>

class TestXmlName : public QObject {
    Q_OBJECT

private slots:
    void namedTree_data()
    {
        QTest::addColumn<QString>("innerName");
        QTest::addColumn<QString>("attributeName");
        QTest::addColumn<bool>("named");
        QTest::newRow("all valid") << "g" << "x" << true;
        QTest::newRow("deep element") << "a:b:c" << "x" << false;
        QTest::newRow("deep attribute") << "g" << "a:" << false;
    }

    // Checked on a built tree: a parsed one could not hold most bad names.
    void namedTree()
    {
        QFETCH(QString, innerName);
        QFETCH(QString, attributeName);
        QFETCH(bool, named);
        QDomDocument document;
        QDomElement root = document.createElement("text");
        QDomElement middle = document.createElement("g");
        QDomElement inner = document.createElement(innerName);
        inner.setAttribute(attributeName, "1");
        root.appendChild(document.createElement("first"));
        root.appendChild(middle).appendChild(inner);
        middle.appendChild(document.createTextNode("t"));
        root.appendChild(document.createElement("last"));
        QCOMPARE(XmlName::isNamedTree(root), named);
        QVERIFY(XmlName::isNamedTree(root.firstChild()));
    }

    void carried_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("control") << QStringLiteral("bell\x01.png") << "bell.png";
        QTest::newRow("kept whitespace") << "a\tb\nc\rd" << "a\tb\nc\rd";
        QTest::newRow("pair kept, lone dropped")
            << QString(QStringLiteral("a") + QChar(0xd83d) + QChar(0xde00) + QChar(0xdc00) + QChar(0xfffe))
            << QString(QStringLiteral("a") + QChar(0xd83d) + QChar(0xde00));
    }

    void carried()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(XmlName::carried(text), expected);
    }
};

QTEST_GUILESS_MAIN(TestXmlName)
#include "tst_xmlname.moc"
