#include "pagetesthelpers.h"

// The page file: constructors, open/close, the foreground layer and the page
// properties, always checked through a fresh page that reads the file back.
class TestFrontPage : public PageTestBase {
    Q_OBJECT
private slots:
    void constructorsResolveTheLayer_data();
    void constructorsResolveTheLayer();
    void pathConstructorCreatesEmptySvg();
    void unloadableFileIsLeftAlone();
    void nonSvgRootIsAccepted();
    void closeWithoutSaveDropsChanges();
    void foregroundSwitching();
    void newPageDefaults();
    void propertiesSurviveReopen();
    void unknownFormatStoresNul();
    void emptyTitleReadsFalse();
    void backgroundColourAndTemplate();
    void firstRectIsTheBackground();
    void gridRoundTrip_data();
    void gridRoundTrip();
    void gridReadRules_data();
    void gridReadRules();
    void hiddenGridLeavesNoElement();
};

void TestFrontPage::constructorsResolveTheLayer_data()
{
    QTest::addColumn<bool>("withGroup");
    QTest::addColumn<bool>("viaPath");
    QTest::addColumn<QString>("objectParent");
    QTest::newRow("group, path ctor") << true << true << "g";
    QTest::newRow("group, load") << true << false << "g";
    QTest::newRow("no group, path ctor") << false << true << "svg";
    QTest::newRow("no group, load makes group") << false << false << "g";
}

void TestFrontPage::constructorsResolveTheLayer()
{
    QFETCH(bool, withGroup);
    QFETCH(bool, viaPath);
    QFETCH(QString, objectParent);
    const QString file = writeFile("p.svg", withGroup ? "<svg><g class=\"foreground\"/></svg>" : "<svg/>");
    PagePtr page(viaPath ? new QLXFrontPage(file) : new QLXFrontPage());
    if (!viaPath)
        QVERIFY(page->loadPageFile(file));
    QCOMPARE(page->isFrontPage(), withGroup);
    ObjPtr(page->newLXObject("circle"));
    QVERIFY(page->saveFile());
    const QDomDocument doc = fileDoc(file);
    const QDomElement circle = doc.elementsByTagName("circle").item(0).toElement();
    QCOMPARE(circle.parentNode().nodeName(), objectParent);
    QCOMPARE(circle.parentNode().toElement().attribute("class"), objectParent == "g" ? "foreground" : "");
}

void TestFrontPage::pathConstructorCreatesEmptySvg()
{
    const QString file = path("new.svg");
    PagePtr page(new QLXFrontPage(file));
    QVERIFY(page->getXmlStream() != nullptr);
    QVERIFY(!page->isFrontPage());
    const QDomElement root = fileRoot(file);
    QCOMPARE(root.tagName(), QString("svg"));
    QCOMPARE(root.attributes().count(), 0);
    QVERIFY(!root.hasChildNodes());
}

void TestFrontPage::unloadableFileIsLeftAlone()
{
    const QString file = writeFile("broken.svg", "<svg><unclosed></svg>");
    QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
    QTest::ignoreMessage(QtWarningMsg, "XML file had exist!");
    QLXFrontPage *page = new QLXFrontPage(file);
    QCOMPARE(page->getXmlStream(), nullptr);
    QVERIFY(!page->saveFile());
    QSize size;
    QVERIFY(!page->getPageSize(size));
    QVERIFY(!page->newLXObject("rect"));
    page->release();
    QCOMPARE(readFile(file), QByteArray("<svg><unclosed></svg>"));

    PagePtr blank(new QLXFrontPage());
    QVERIFY(!blank->loadPageFile(path("missing.svg")));
    QCOMPARE(blank->getXmlStream(), nullptr);
}

void TestFrontPage::nonSvgRootIsAccepted()
{
    const QString file = writeFile("other.xml", "<page/>");
    PagePtr page(new QLXFrontPage());
    QVERIFY(page->loadPageFile(file));
    QVERIFY(page->setPageSize(QSize(5, 6)));
    QVERIFY(page->saveFile());
    QCOMPARE(fileRoot(file).attribute("width"), QString("5"));
}

void TestFrontPage::closeWithoutSaveDropsChanges()
{
    const QString file = path("close.svg");
    PagePtr page(new QLXFrontPage(file));
    page->setPageTitle("kept");
    QVERIFY(page->saveFile());
    page->setPageTitle("dropped");
    page->closeFile(false);
    QCOMPARE(page->getXmlStream(), nullptr);
    page->closeFile(false);
    QString title;
    QVERIFY(reopen(file)->getPageTitle(title));
    QCOMPARE(title, QString("kept"));
}

void TestFrontPage::foregroundSwitching()
{
    const QString file = writeFile("fg.svg", "<svg><g id=\"first\"/></svg>");
    PagePtr page(new QLXFrontPage(file));
    QVERIFY(!page->isFrontPage());
    QVERIFY(page->setForeground(true));
    QVERIFY(page->setForeground(true));
    QVERIFY(page->isFrontPage());
    QCOMPARE(childNames(page->getXmlStream()->getRootNode()), QStringList({"g", "g"}));
    // Removal goes by element name: the older plain group goes, the foreground stays.
    QVERIFY(page->setForeground(false));
    QVERIFY(!page->isFrontPage());
    const QDomNode left = page->getXmlStream()->getRootNode().firstChild();
    QCOMPARE(left.toElement().attribute("class"), QString("foreground"));
    QVERIFY(page->setForeground(false));
    QCOMPARE(childNames(page->getXmlStream()->getRootNode()), QStringList({}));
    QVERIFY(page->setForeground(false));
}

void TestFrontPage::newPageDefaults()
{
    PagePtr page(new QLXFrontPage(path("defaults.svg")));
    QSize size;
    QVERIFY(page->getPageSize(size));
    QCOMPARE(size, QSize(1024, 768));
    PageFormat format = PageFormatPdf;
    QVERIFY(!page->getPageFormat(format));
    int id = 7;
    QVERIFY(!page->getMaxGraphicId(id));
    QCOMPARE(id, 0);
    int m[4] = {5, 5, 5, 5};
    QVERIFY(page->getPageMargin(m[0], m[1], m[2], m[3]));
    QCOMPARE(QList<int>({m[0], m[1], m[2], m[3]}), QList<int>({0, 0, 0, 0}));
    QString text;
    QColor colour;
    tagPageGrid grid;
    QVERIFY(!page->getPageTitle(text));
    QVERIFY(!page->getPageBgColor(colour));
    QVERIFY(!page->getPageBgTempl(text, size));
    QVERIFY(!page->getPageGrid(&grid));
    QVERIFY(!page->getLXPageAttribute("anything", text));
}

void TestFrontPage::propertiesSurviveReopen()
{
    const QString file = path("props.svg");
    PagePtr page(new QLXFrontPage(file));
    QVERIFY(page->setPageSize(QSize(800, 600)));
    QVERIFY(page->setPageFormat(PageFormatPpt));
    QVERIFY(page->setPageTitle("Fractions"));
    QVERIFY(page->setPageMargin(1, 2, 3, 4));
    QVERIFY(page->setMaxGraphicId(41));
    QVERIFY(page->setLXPageAttribute("zoom", 1.5f));
    QVERIFY(page->setLXPageAttribute("layout", 3));
    QVERIFY(page->setLXPageAttribute("author", QString("Ann")));
    QVERIFY(page->setLXPageAttribute("max-gid", 42));
    QVERIFY(page->saveFile());
    page.reset();

    PagePtr back = reopen(file);
    QSize size;
    PageFormat format = PageFormatNone;
    QString title, author;
    int l = 0, t = 0, r = 0, b = 0, gid = 0, layout = 0;
    float zoom = 0;
    QVERIFY(back->getPageSize(size) && back->getPageFormat(format) && back->getPageTitle(title));
    QVERIFY(back->getPageMargin(l, t, r, b) && back->getMaxGraphicId(gid));
    QVERIFY(back->getLXPageAttribute("zoom", zoom) && back->getLXPageAttribute("layout", layout));
    QVERIFY(back->getLXPageAttribute("author", author));
    QCOMPARE(size, QSize(800, 600));
    QCOMPARE(format, PageFormatPpt);
    QCOMPARE(title, QString("Fractions"));
    QCOMPARE(QList<int>({l, t, r, b, gid, layout}), QList<int>({1, 2, 3, 4, 42, 3}));
    QCOMPARE(zoom, 1.5f);
    QCOMPARE(author, QString("Ann"));
}

void TestFrontPage::unknownFormatStoresNul()
{
    PagePtr page(new QLXFrontPage(path("nul.svg")));
    QVERIFY(page->setPageFormat(PageFormatNone));
    QString stored;
    QVERIFY(page->getLXPageAttribute("format", stored));
    QCOMPARE(stored, QString(QChar(0)));
    PageFormat format = PageFormatPdf;
    QVERIFY(!page->getPageFormat(format));
    QCOMPARE(format, PageFormatNone);
}

void TestFrontPage::emptyTitleReadsFalse()
{
    PagePtr page(new QLXFrontPage(path("title.svg")));
    QVERIFY(page->setPageTitle(""));
    QString title = "x";
    QVERIFY(!page->getPageTitle(title));
    QVERIFY(title.isEmpty());
    QVERIFY(page->setPageTitle("second"));
    QCOMPARE(childNames(page->getXmlStream()->getRootNode()), QStringList({"title"}));
}

void TestFrontPage::backgroundColourAndTemplate()
{
    const QString file = path("bg.svg");
    PagePtr page(new QLXFrontPage(file));
    QSize none(0, 0);
    QVERIFY(page->setPageBgTempl("images/board.png", none));
    QVERIFY(page->setPageBgColor(QColor(255, 0, 0, 128)));
    QVERIFY(page->saveFile());
    const QDomElement rect = fileRoot(file).firstChildElement("rect");
    QCOMPARE(fileDoc(file).elementsByTagName("rect").count(), 1);
    for (const char *name : {"x", "y", "width", "height", "xmlns:xlink", "xlink:href"})
        QVERIFY2(rect.hasAttribute(name), name);
    QVERIFY(!rect.hasAttribute("image-width"));
    QCOMPARE(rect.attribute("fill"), QString("#ff0000"));

    PagePtr back = reopen(file);
    QColor colour;
    QVERIFY(back->getPageBgColor(colour));
    QCOMPARE(colour, QColor(255, 0, 0));
    QString href;
    QSize size(9, 9);
    QVERIFY(back->getPageBgTempl(href, size));
    QCOMPARE(href, QString("images/board.png"));
    QCOMPARE(size, QSize(0, 0));
    QSize sized(640, 480);
    QVERIFY(back->setPageBgTempl("images/b.png", sized));
    QVERIFY(back->getPageBgTempl(href, size));
    QCOMPARE(size, QSize(640, 480));
}

void TestFrontPage::firstRectIsTheBackground()
{
    PagePtr page(new QLXFrontPage(path("rects.svg")));
    ObjPtr drawn(page->newLXObject("rect"));
    drawn->setLXObjectAttribute("fill", QString("#00ff00"));
    QColor colour;
    QVERIFY(page->getPageBgColor(colour));
    QCOMPARE(colour, QColor(0, 255, 0));
    QVERIFY(page->newPageBg());
    QVERIFY(page->newPageBg());
    QCOMPARE(childNames(page->getXmlStream()->getRootNode()), QStringList({"rect", "rect", "rect"}));

    PagePtr bare(new QLXFrontPage(path("bare.svg")));
    QVERIFY(bare->newPageBg());
    QVERIFY(bare->getPageBgColor(colour));
    QCOMPARE(colour, QColor(Qt::white));
}

void TestFrontPage::gridRoundTrip_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<float>("width");
    QTest::addColumn<QString>("dash");
    QTest::newRow("solid") << int(Qt::SolidLine) << 1.0f << "";
    QTest::newRow("dash 2") << int(Qt::DashLine) << 2.0f << "6,2";
    QTest::newRow("dot truncates width") << int(Qt::DotLine) << 2.7f << "2,2";
    QTest::newRow("dash dot dot") << int(Qt::DashDotDotLine) << 1.0f << "3,1,1,1,1,1";
}

void TestFrontPage::gridRoundTrip()
{
    QFETCH(int, style);
    QFETCH(float, width);
    QFETCH(QString, dash);
    const QString file = path(QString("grid%1.svg").arg(style));
    PagePtr page(new QLXFrontPage(file));
    tagPageGrid grid;
    grid.horizontal = 20;
    grid.vertical = 30;
    grid.lineColor = QColor(0, 0, 255, 128);
    grid.lineWidth = width;
    grid.lineStyle = Qt::PenStyle(style);
    grid.visible = true;
    QVERIFY(page->setPageGrid(&grid));
    QVERIFY(page->saveFile());
    QCOMPARE(fileRoot(file).firstChildElement("grid").attribute("stroke-dasharray", "absent"), dash);

    tagPageGrid back;
    QVERIFY(reopen(file)->getPageGrid(&back));
    QCOMPARE(QList<int>({back.horizontal, back.vertical}), QList<int>({20, 30}));
    QCOMPARE(back.lineColor.rgb(), grid.lineColor.rgb());
    QVERIFY(qAbs(back.lineColor.alphaF() - grid.lineColor.alphaF()) < 0.01);
    QCOMPARE(back.lineWidth, width);
    QCOMPARE(int(back.lineStyle), style);
    QVERIFY(!back.visible);
}

void TestFrontPage::gridReadRules_data()
{
    QTest::addColumn<QString>("gridXml");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("no opacity reads transparent") << "<grid stroke=\"#00ff00\"/>" << QColor(0, 255, 0, 0);
    QTest::newRow("empty stroke is black") << "<grid stroke=\"\"/>" << QColor(Qt::black);
    QTest::newRow("no stroke keeps colour") << "<grid/>" << QColor(Qt::magenta);
}

void TestFrontPage::gridReadRules()
{
    QFETCH(QString, gridXml);
    QFETCH(QColor, expected);
    PagePtr page = reopen(writeFile("hand.svg", "<svg>" + gridXml + "</svg>"));
    tagPageGrid grid;
    grid.lineColor = Qt::magenta;
    grid.lineWidth = 7;
    grid.lineStyle = Qt::DashLine;
    QVERIFY(page->getPageGrid(&grid));
    QCOMPARE(grid.lineColor.rgba(), expected.rgba());
    QCOMPARE(grid.lineWidth, 1.0f);
    QCOMPARE(grid.lineStyle, Qt::SolidLine);
}

void TestFrontPage::hiddenGridLeavesNoElement()
{
    PagePtr page(new QLXFrontPage(path("nogrid.svg")));
    tagPageGrid grid;
    grid.visible = false;
    QVERIFY(page->setPageGrid(&grid));
    QCOMPARE(childNames(page->getXmlStream()->getRootNode()), QStringList({}));
}

QTEST_MAIN(TestFrontPage)
#include "tst_frontpage.moc"
