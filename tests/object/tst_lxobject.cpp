// SPDX-License-Identifier: MIT
#include "object/qlxobject.h"
#include "xml/xmlstream.h"

#include <QtTest>

#include <limits>

using Points = QList<QPointF>;

class TestLXObject : public QObject {
    Q_OBJECT

    QXmlStream *m_xml = nullptr;
    QDomNode m_node;
    QLXObject *m_obj = nullptr;

    QString attr(const QDomNode &node, const QString &name)
    {
        QString value;
        m_xml->getNodeAttribute(node, name, value, QStringLiteral("absent"));
        return value;
    }
    QString attr(const QString &name) { return attr(m_node, name); }

private slots:
    void init()
    {
        // Loaded rather than built, so the element starts without a text child.
        m_xml = new QXmlStream;
        QVERIFY(m_xml->loadFromXmlStream(QStringLiteral("<svg><path/></svg>")));
        m_node = m_xml->getFirstChildNode(m_xml->getRootNode());
        m_obj = new QLXObject(m_xml, m_node);
    }
    void cleanup()
    {
        m_obj->release();
        delete m_xml;
    }

    void coloursAndOpacity()
    {
        QVERIFY(m_obj->setStroke(Qt::red));
        QCOMPARE(attr("stroke") + attr("opacity"), QStringLiteral("#ff0000absent"));
        QVERIFY(m_obj->setStroke(QColor::fromRgbF(0, 1, 0, 0.5)));
        QColor color;
        QVERIFY(m_obj->getStroke(color));
        QCOMPARE(color, QColor(0, 255, 0)); // the alpha goes to the object's opacity
        float opacity = 0;
        QVERIFY(m_obj->getOpacity(opacity));
        QCOMPARE(opacity, float(QColor::fromRgbF(0, 1, 0, 0.5).alphaF()));
        m_obj->setOpacity(1);

        bool filled = true;
        color = Qt::blue;
        QVERIFY(!m_obj->getFill(filled, color));
        QVERIFY(m_obj->setFill(false, Qt::red));
        QVERIFY(m_obj->getFill(filled, color) && !filled);
        QCOMPARE(attr("fill") + color.name(), QStringLiteral("none#0000ff")); // colour kept
        QVERIFY(m_obj->setFill(true, QColor(255, 0, 0, 10))); // a fill's alpha is dropped
        QCOMPARE(attr("fill") + attr("opacity"), QStringLiteral("#ff00001"));
        m_obj->setOpacity(0.25f);
        QVERIFY(m_obj->getFill(filled, color) && filled);
        QCOMPARE(color, QColor::fromRgbF(1, 0, 0, 0.25));
        m_obj->setLXObjectAttribute("fill", QString());
        QVERIFY(m_obj->getFill(filled, color) && filled && !color.isValid());
    }

    // Qt's alpha is 0..1; a stray value in a file reads as the nearest end.
    void fillOpacityOutOfRange_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<qreal>("alpha");
        QTest::newRow("below") << "-0.5" << 0.0;
        QTest::newRow("above") << "1.5" << 1.0;
        QTest::newRow("not a number") << "nan" << 0.0;
    }

    void fillOpacityOutOfRange()
    {
        QFETCH(QString, stored);
        QFETCH(qreal, alpha);
        QVERIFY(m_obj->setFill(true, Qt::red) && m_obj->setLXObjectAttribute("opacity", stored));
        bool filled = false;
        QColor color;
        QVERIFY(m_obj->getFill(filled, color));
        QCOMPARE(color.alphaF(), alpha);
    }

    // Any float a host passes as a width gives a defined pattern.
    void dashWidthsSaturate_data()
    {
        QTest::addColumn<float>("width");
        QTest::addColumn<QString>("dash");
        QTest::newRow("ordinary") << 2.9f << "6,2";
        QTest::newRow("NaN") << std::numeric_limits<float>::quiet_NaN() << "0,0";
        QTest::newRow("+inf") << std::numeric_limits<float>::infinity() << "2147483647,2147483647";
        QTest::newRow("-inf") << -std::numeric_limits<float>::infinity() << "-2147483648,-2147483648";
        QTest::newRow("1e9") << 1e9f << "2147483647,1000000000";
        QTest::newRow("1e10") << 1e10f << "2147483647,2147483647";
        QTest::newRow("-1e10") << -1e10f << "-2147483648,-2147483648";
    }

    void dashWidthsSaturate()
    {
        QFETCH(float, width);
        QFETCH(QString, dash);
        QVERIFY(m_obj->setStrokeDashArray(Qt::DashLine, width));
        QCOMPARE(attr("stroke-dasharray"), dash);
        Qt::PenStyle style = Qt::DashLine;
        QVERIFY(m_obj->setTextFrame(Qt::black, width, style, false, Qt::red));
        QCOMPARE(attr(m_xml->getChildNode(m_node, QStringLiteral("rect")), "stroke-dasharray"), dash);
    }

    void lockedOnlyWhenOne()
    {
        bool locked = true;
        QVERIFY(!m_obj->getLocked(locked) && locked); // absent: output untouched
        QVERIFY(m_obj->setLocked(true) && m_obj->getLocked(locked) && locked);
        QCOMPARE(attr("locked"), QStringLiteral("1"));
        m_obj->setLXObjectAttribute(QStringLiteral("locked"), 2);
        QVERIFY(m_obj->getLocked(locked) && !locked);
    }

    void codedAndPairedAttributes()
    {
        Qt::PenCapStyle cap = Qt::FlatCap;
        QVERIFY(m_obj->setStrokeLineCap(Qt::RoundCap) && m_obj->getStrokeLineCap(cap));
        QCOMPARE(attr("stroke-linecap"), QStringLiteral("found"));
        QCOMPARE(cap, Qt::RoundCap);
        Qt::PenStyle dash = Qt::NoPen;
        QVERIFY(m_obj->setStrokeDashArray(Qt::DashLine, 2.9f) && m_obj->getStrokeDashArray(dash));
        QCOMPARE(attr("stroke-dasharray"), QStringLiteral("6,2")); // width truncated
        QCOMPARE(dash, Qt::DashLine);
        QVERIFY(m_obj->setStrokeDashArray(Qt::SolidLine, 3.9f) && m_obj->getStrokeDashArray(dash));
        QVERIFY(attr("stroke-dasharray").isEmpty() && dash == Qt::SolidLine);
        LineCapStyle marker = LineCapArrow;
        QVERIFY(!m_obj->getMarkerEnd(marker) && marker == LineCapArrow);
        QVERIFY(m_obj->setMarkerEnd(LineCapNone) && m_obj->getMarkerEnd(marker));
        QCOMPARE(attr("marker-end") + QString::number(marker), QStringLiteral("Round0"));
        QString token = QStringLiteral("x");
        int launch = 5;
        QVERIFY(!m_obj->getSoundToken(token, launch) && token.isEmpty());
        QCOMPARE(launch, 5); // the second is not read when the first is missing
        QVERIFY(m_obj->setShortcut(QStringLiteral("p3"), 4) && m_obj->getShortcut(token, launch));
        QCOMPARE(attr("shortcutarea") + token, QStringLiteral("4p3"));
    }

    void geometryTexts()
    {
        Points points{{1, 2}, {3.5, 4}}, none;
        QList<float> widths{2.0f, 2.5f};
        QVERIFY(m_obj->setPoints(points, widths, false));
        QCOMPARE(attr("points") + " " + attr("points-width"), QStringLiteral("1.00,2.00 3.50,4.00 2.00,2.50"));
        QVERIFY(!m_obj->setPoints(none, widths, true));
        QCOMPARE(m_obj->getPolygonCount(), 0);
        m_obj->setLXObjectAttribute("points", "1,2  3,4");
        Points read{{9, 9}};
        QVERIFY(m_obj->getPoints(read)); // appended, not cleared; a double blank reads as the origin
        QCOMPARE(read, (Points{{9, 9}, {1, 2}, {0, 0}, {3, 4}}));
        QRectF rect(5, 5, 5, 5);
        QVERIFY(m_obj->getBound(rect)); // absent still succeeds
        QCOMPARE(rect, QRectF(0, 0, 0, 0));
        QVERIFY(m_obj->setBound(QRectF(1.234, 2, 300, 4)));
        QCOMPARE(attr("bound"), QStringLiteral("1.23,2.00, 300.00,4.00"));
        QVERIFY(m_obj->getBound(rect));
        QCOMPARE(rect, QRectF(qreal(1.23f), 2, 300, 4)); // read through float
    }

    void polygons()
    {
        Points own{{7, 7}}, first{{1, 1}, {2, 2}}, second, read;
        QList<float> widths, readWidths;
        for (int i = 0; i < 10000; ++i) { // a long stroke
            second.append(QPointF(i * 0.25, -i));
            widths.append(float(i % 7) + 0.5f);
        }
        QVERIFY(m_obj->setPoints(first, true));
        m_xml->newChildNode(m_node, "rect", QString()); // not a polygon
        QVERIFY(m_obj->setPoints(second, widths, true));
        QVERIFY(m_obj->setPoints(own, false));
        QCOMPARE(m_obj->getPolygonCount(), 2);
        QVERIFY(m_obj->getPoints(read)); // the first polygon wins over the element's own
        QCOMPARE(read, first);
        read.clear();
        QVERIFY(m_obj->getPolygonPoints(1, read, readWidths));
        QCOMPARE(read, second);
        QCOMPARE(readWidths, widths);
        QVERIFY(!m_obj->getPolygonPoints(0, read, readWidths)); // no widths there
        QVERIFY(!m_obj->getPolygonPoints(2, read) && !m_obj->getPolygonPoints(-1, read));
    }

    void placementAndLine()
    {
        QPointF pos(-1, -1);
        QSizeF scale(3, 3);
        float angle = 8;
        bool flipH = false, flipV = false;
        QVERIFY(!m_obj->getTransform(pos, scale, angle, flipH, flipV));
        QCOMPARE(pos, QPointF(-1, -1));
        QVERIFY(m_obj->setTransform({4, 5}, {2, 0.5}, 90, false, true, {10, 10}));
        QVERIFY(m_obj->getTransform(pos, scale, angle, flipH, flipV));
        QVERIFY(pos == QPointF(4, 5) && scale == QSizeF(2, 0.5) && angle == 90 && flipV && !flipH);
        m_obj->setLXObjectAttribute(QStringLiteral("x1"), 1.5f);
        m_obj->setLXObjectAttribute(QStringLiteral("y2"), 4);
        Points ends;
        QVERIFY(m_obj->getBeelinePoints(ends));
        QCOMPARE(ends, (Points{{1.5, 0}, {0, 4}}));
    }

    void svgTextFailures()
    {
        QVERIFY(!m_obj->setSvgText(QString()));
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml Stream!");
        QTest::ignoreMessage(QtWarningMsg, "setSvgText: loadFromXmlStream failed!");
        QVERIFY(!m_obj->setSvgText("<svg><text>"));
        QTest::ignoreMessage(QtWarningMsg, "setSvgText: get text node failed!");
        QVERIFY(!m_obj->setSvgText("<svg><g><text/></g></svg>"));
        QVERIFY(!m_node.hasChildNodes());
    }

    void svgTextIsMovedOut()
    {
        const QString text = QStringLiteral("<svg><text x=\"1\">Hi<tspan>there</tspan></text></svg>");
        QVERIFY(m_obj->setSvgText(text) && m_obj->setSvgText(text));
        QCOMPARE(m_xml->getChildNodesCount(m_node), 2);
        QString out;
        QVERIFY(m_obj->getSvgText(out));
        QDomDocument doc;
        QVERIFY(doc.setContent(out));
        const QDomElement moved = doc.documentElement().firstChildElement("text");
        QCOMPARE(moved.attribute("x") + moved.text(), QStringLiteral("1Hithere"));
        QVERIFY(m_obj->getSvgText(out)); // the second copy
        QTest::ignoreMessage(QtWarningMsg, "getSvgText: get text node failed!");
        QVERIFY(!m_obj->getSvgText(out));
    }

    void textFrame()
    {
        Qt::PenStyle dash = Qt::DashLine, solid = Qt::SolidLine;
        QVERIFY(m_obj->setTextFrame(Qt::black, 2.5f, dash, false, Qt::red));
        QVERIFY(m_obj->setTextFrame(Qt::black, 1, solid, true, Qt::red));
        const QDomNode first = m_xml->getChildNode(m_node, QStringLiteral("rect"));
        const QDomNode second = m_xml->getNextNode(first);
        QCOMPARE(attr(first, "width") + attr(first, "height"), QStringLiteral("100%100%"));
        QCOMPARE(attr(first, "stroke") + attr(first, "stroke-width") + attr(first, "stroke-dasharray"),
                 QStringLiteral("#0000002.56,2"));
        QCOMPARE(attr(first, "fill") + attr(second, "stroke-dasharray"), QStringLiteral("absentabsent"));
        QCOMPARE(attr(second, "fill"), QStringLiteral("#ff0000"));
    }

    void childrenAndViews()
    {
        QVERIFY(!m_obj->getNextLXObject());
        QVERIFY(!m_obj->getFirstLXObject());
        for (const char *name : {"g", "image"}) {
            ILXObject *child = m_obj->newLXObject(QLatin1String(name));
            QVERIFY(child && child->setClass(QLatin1String(name)));
            child->release();
        }
        ILXObject *image = m_obj->getLXObject(QStringLiteral("image"));
        QVERIFY(image && image->setgid(12));
        QStringList walked;
        for (ILXObject *child = m_obj->getFirstLXObject(); child; child = m_obj->getNextLXObject()) {
            QString cls;
            child->getClass(cls);
            int gid = 0;
            child->getgid(gid); // another view of the element sees the change
            walked << cls + QString::number(gid);
            child->release();
        }
        QCOMPARE(walked, (QStringList{"g0", "image12"}));
        QVERIFY(!m_obj->getNextLXObject()); // stays at the end
        QVERIFY(!m_obj->getLXObject(QStringLiteral("video")));
        image->release();
    }
};

QTEST_MAIN(TestLXObject)
#include "tst_lxobject.moc"
