#include "pagetesthelpers.h"
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

static QString idOf(ILXObject *object)
{
    QString id;
    if (object)
        object->getLXObjectAttribute("id", id);
    return id;
}

// Objects of a page: creation, take-over from other XML, the one cursor,
// lookups and clearing, and that the files written are valid SVG.
class TestFrontPageObjects : public PageTestBase {
    Q_OBJECT
private slots:
    void firstObjectMakesForegroundGroup();
    void iterationSharesOneCursor();
    void lookupNeedsResolvedLayer();
    void clearingTheRootEmptiesThePage();
    void takeOverFromSvg_data();
    void takeOverFromSvg();
    void shortSvgIsRefusedUnparsed();
    void takeOverMovesAndSaves();
    void pageFilesAreWellFormed();
    void pageRendersAsSvg();

private:
    PagePtr loadWithoutGroup(const QString &name, const QString &content)
    {
        PagePtr page(new QLXFrontPage());
        page->loadPageFile(writeFile(name, content));
        return page;
    }
};

void TestFrontPageObjects::firstObjectMakesForegroundGroup()
{
    PagePtr page = loadWithoutGroup("fg.svg", "<svg><rect/></svg>");
    QVERIFY(!page->getFirstLXObject());
    QVERIFY(!page->clearAllLXObjects());
    QVERIFY(!page->isFrontPage());
    QCOMPARE(childNames(page->getXmlStream()->getRootNode()), QStringList({"rect"}));
    ObjPtr(page->newLXObject("ellipse"));
    QVERIFY(page->isFrontPage());
    const QDomElement group = page->getXmlStream()->getRootNode().lastChild().toElement();
    QCOMPARE(group.attribute("class"), QString("foreground"));
    QCOMPARE(group.lastChild().nodeName(), QString("ellipse"));
}

void TestFrontPageObjects::iterationSharesOneCursor()
{
    const QString file = writeFile("walk.svg", "<svg><title>T</title><rect id=\"a\"/><line id=\"b\"/></svg>");
    PagePtr page = reopen(file);
    ObjPtr first(page->getFirstLXObject());
    QCOMPARE(idOf(first.get()), QString());  // the title is handed out like any object
    QCOMPARE(idOf(ObjPtr(page->getNextLXObject()).get()), QString("a"));
    ObjPtr again(page->getFirstLXObject());  // a second walk restarts the same cursor
    QCOMPARE(idOf(ObjPtr(page->getNextLXObject()).get()), QString("a"));
    QCOMPARE(idOf(ObjPtr(page->getNextLXObject()).get()), QString("b"));
    QVERIFY(!page->getNextLXObject());
    QVERIFY(!page->getNextLXObject());

    ObjPtr(page->getFirstLXObject());
    ObjPtr(page->newLXObject("circle"));
    QVERIFY(!page->getNextLXObject());  // the cursor sits on the newest object
    QCOMPARE(idOf(first.get()), QString());
}

void TestFrontPageObjects::lookupNeedsResolvedLayer()
{
    PagePtr page = reopen(writeFile("byname.svg", "<svg><rect id=\"r\"/><g id=\"g\"/></svg>"));
    QVERIFY(!page->getLXObjectByName("rect"));
    ObjPtr(page->getFirstLXObject());
    ObjPtr(page->getNextLXObject());
    QCOMPARE(idOf(ObjPtr(page->getLXObjectByName("g")).get()), QString("g"));
    QVERIFY(!page->getLXObjectByName("Rect"));
    QVERIFY(!page->getNextLXObject());  // the lookup did not move the cursor
}

void TestFrontPageObjects::clearingTheRootEmptiesThePage()
{
    const QString file = path("clear.svg");
    PagePtr page(new QLXFrontPage(file));
    page->setPageTitle("T");
    page->setPageBgColor(Qt::red);
    ObjPtr(page->newLXObject("rect"));
    QVERIFY(page->clearAllLXObjects());
    QVERIFY(page->saveFile());
    QVERIFY(!fileRoot(file).hasChildNodes());
    QVERIFY(page->clearAllLXObjects());
}

void TestFrontPageObjects::takeOverFromSvg_data()
{
    QTest::addColumn<QString>("svg");
    QTest::addColumn<QString>("cls");
    QTest::newRow("classed root moves whole") << "<g class=\"grp\"><rect/></g>" << "grp";
    QTest::newRow("first-child chain") << "<svg><g><text class=\"t\">x</text></g></svg>" << "t";
    QTest::newRow("siblings not searched") << "<svg><a/><b class=\"x\"/></svg>" << "";
    QTest::newRow("text node ends chain") << "<svg>hi<b class=\"x\"/></svg>" << "";
}

void TestFrontPageObjects::takeOverFromSvg()
{
    QFETCH(QString, svg);
    QFETCH(QString, cls);
    PagePtr page(new QLXFrontPage(path("svg.svg")));
    ObjPtr object(page->newLXObjectFromSVG(svg));
    QCOMPARE(object != nullptr, !cls.isEmpty());
    QString got;
    if (object)
        QVERIFY(object->getClass(got));
    QCOMPARE(got, cls);
}

void TestFrontPageObjects::shortSvgIsRefusedUnparsed()
{
    PagePtr page(new QLXFrontPage(path("short.svg")));
#if QT_VERSION >= QT_VERSION_CHECK(6, 3, 0)
    QTest::failOnWarning(QRegularExpression(".*"));
#endif
    QVERIFY(!page->newLXObjectFromSVG("<<<<<<<<<"));
    QTest::ignoreMessage(QtWarningMsg, "cann't load the xml Stream!");
    QVERIFY(!page->newLXObjectFromSVG("<<<<<<<<<<"));
}

void TestFrontPageObjects::takeOverMovesAndSaves()
{
    const QString file = path("moved.svg");
    PagePtr page = loadWithoutGroup("moved.svg", "<svg/>");
    QXmlStream source;
    QVERIFY(source.loadFromXmlStream("<svg><polyline class=\"ink\" points=\"0,0 5,5\"/><x/></svg>"));
    QVERIFY(!page->newLXObjectFromXmlStream(nullptr));
    ObjPtr(page->newLXObjectFromXmlStream(&source));
    QCOMPARE(childNames(source.getRootNode()), QStringList({"x"}));
    const QDomElement group = fileRoot(file).firstChildElement("g");  // saved without saveFile
    QCOMPARE(group.attribute("class"), QString("foreground"));
    QCOMPARE(group.firstChildElement("polyline").attribute("class"), QString("ink"));
}

void TestFrontPageObjects::pageFilesAreWellFormed()
{
    if (!hasXmllint())
        QSKIP("xmllint is not installed");
    const QString file = path("full.svg");
    PagePtr page(new QLXFrontPage(file));
    QSize size(64, 48);
    page->setPageSize(QSize(320, 240));
    page->setPageFormat(PageFormatLzn);
    page->setPageTitle("Tom & \"Jerry\" <3");
    page->setPageBgTempl("images/a b&c.png", size);
    page->setPageBgColor(Qt::yellow);
    tagPageGrid grid;
    grid.visible = true;
    grid.lineStyle = Qt::DashDotLine;
    page->setPageGrid(&grid);
    page->setForeground(true);
    ObjPtr(page->newLXObject("rect"));
    ObjPtr(page->newLXObjectFromSVG("<svg><text class=\"t\">a &lt; b</text></svg>"));
    QVERIFY(page->saveFile());
    expectWellFormed(file);
}

void TestFrontPageObjects::pageRendersAsSvg()
{
    const QString file = path("render.svg");
    PagePtr page(new QLXFrontPage(file));
    page->setPageSize(QSize(200, 100));
    page->setPageBgColor(Qt::white);
    const auto add = [&](const QString &name, const QList<QPair<QString, QString>> &attrs) {
        ObjPtr object(page->newLXObject(name));
        for (const auto &attr : attrs)
            object->setLXObjectAttribute(attr.first, attr.second);
    };
    add("rect", {{"x", "10"}, {"y", "10"}, {"width", "40"}, {"height", "30"}, {"fill", "#ff0000"}});
    add("polyline", {{"points", "60,10 90,40 120,10"}, {"stroke", "#000000"}, {"fill", "none"}});
    add("line", {{"x1", "0"}, {"y1", "90"}, {"x2", "200"}, {"y2", "90"}, {"stroke", "#00ff00"}});
    ObjPtr(page->newLXObjectFromSVG("<svg><text class=\"label\" x=\"130\" y=\"60\">Hi</text></svg>"));
    ObjPtr(page->newLXObjectFromSVG(
        "<g class=\"group\"><rect x=\"150\" y=\"10\" width=\"30\" height=\"30\" fill=\"#0000ff\"/></g>"));
    QVERIFY(page->saveFile());
    page.reset();

    expectWellFormed(file);
    QSvgRenderer renderer(file);
    QVERIFY(renderer.isValid());
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    QCOMPARE(QColor(image.pixel(30, 25)), QColor(Qt::red));
    QCOMPARE(QColor(image.pixel(165, 25)), QColor(Qt::blue));
}

QTEST_MAIN(TestFrontPageObjects)
#include "tst_frontpageobjects.moc"
