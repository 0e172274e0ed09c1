// SPDX-License-Identifier: MIT
// A whole lesson end to end, through get_interface() and the public interfaces
// alone, as a host application uses the library.

#include "lxdoc.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QTemporaryDir>
#include <QtTest>

namespace {

struct PagePlan {
    int id;
    QString title;
    QColor background;
};

const QList<PagePlan> &plans()
{
    static const QList<PagePlan> list = {
        {10, QStringLiteral("Fractions"), QColor(0xff, 0xf8, 0xe7)},
        {20, QStringLiteral("Angles — Winkel"), QColor(0xe3, 0xf2, 0xfd)},
        {30, QStringLiteral("Revision"), QColor(0xe8, 0xf5, 0xe9)},
    };
    return list;
}

QList<QPointF> strokePoints(int id)
{
    QList<QPointF> points;
    for (int i = 0; i < 50; ++i)
        points << QPointF(10 + i * 3.25, 100 + id + (i % 7) * 1.5);
    return points;
}

QList<float> strokeWidths()
{
    QList<float> widths;
    for (int i = 0; i < 50; ++i)
        widths << 1.0f + (i % 4) * 0.25f;
    return widths;
}

const QString textSvg = QStringLiteral(
    "<svg><text x=\"20\" y=\"40\" font-size=\"24\">Half of 8 is <tspan>4</tspan></text></svg>");

// A host page that renders a preview and writes itself back through the document.
class TestDrawPage : public IDrawPage {
public:
    int previews = 0;
    int saves = 0;
    bool renderPreview(QPixmap *target, QSize size, int) override
    {
        ++previews;
        target->fill(Qt::darkCyan);
        return size == QSize(100, 75);
    }
    bool savePageTo(ILXDocument *document, int index, unsigned int flags) override
    {
        ++saves;
        int id = -1;
        ILXFrontPage *page = document->getPageByIndex(index, id);
        if (!page)
            return false;
        page->setLXPageAttribute(QStringLiteral("saved-flags"), int(flags));
        const bool ok = page->saveFile();
        page->release();
        return ok;
    }
};

class ReleaseObject {
public:
    explicit ReleaseObject(ILXObject *o) : m_o(o) {}
    ~ReleaseObject() { if (m_o) m_o->release(); }
    ILXObject *operator->() const { return m_o; }
    ILXObject *get() const { return m_o; }
private:
    ILXObject *m_o;
};

} // namespace

class TestLesson : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void buildReorderSaveReopen();
    void manyWrappersReleasedInAnyOrder();

private:
    void writePage(ILXDocument *doc, const PagePlan &plan, int index, const QString &image);
    void writeRecording(ILXRecordPage *rec, int id);
    void readPage(ILXFrontPage *page, const PagePlan &plan, const QString &image);
    void readRecording(ILXRecordPage *rec, int id);

    QTemporaryDir *m_tmp = nullptr;
};

void TestLesson::init()
{
    m_tmp = new QTemporaryDir;
    QVERIFY(m_tmp->isValid());
}

void TestLesson::cleanup()
{
    delete m_tmp;
    m_tmp = nullptr;
}

void TestLesson::writePage(ILXDocument *doc, const PagePlan &plan, int index, const QString &image)
{
    ILXFrontPage *page = doc->insertFrontPage(index, plan.id);
    QVERIFY(page);
    QVERIFY(page->setPageSize(QSize(800, 600)));
    QVERIFY(page->setPageFormat(PageFormatLzn));
    page->setPageTitle(plan.title);
    QVERIFY(page->setPageBgColor(plan.background));
    tagPageGrid grid;
    grid.horizontal = 40;
    grid.vertical = 30;
    grid.lineColor = QColor(0, 0, 255, 128);
    grid.lineWidth = 2.0f;
    grid.lineStyle = Qt::DashLine;
    grid.visible = true;
    QVERIFY(page->setPageGrid(&grid));
    QVERIFY(page->setPageMargin(5, 6, 7, 8));
    // Objects go into the foreground group, which is what a reopened page
    // takes as its object layer.
    QVERIFY(page->setForeground(true));

    {
        ReleaseObject rect(page->newLXObject(QStringLiteral("rect")));
        QVERIFY(rect.get());
        rect->setClass(QStringLiteral("shape"));
        rect->setgid(1);
        rect->setStroke(QColor(Qt::red));
        rect->setStrokeWidth(3.0f);
        rect->setFill(true, QColor(Qt::yellow));
        rect->setBound(QRectF(50, 60, 200, 100));
        rect->setTransform(QPointF(10, 20), QSizeF(1.5, 2), 30, true, false, QPointF(50, 40));
        rect->setStrokeLineCap(Qt::RoundCap);
        rect->setMarkerEnd(LineCapArrow);
    }
    {
        ReleaseObject stroke(page->newLXObject(QStringLiteral("polyline")));
        QVERIFY(stroke.get());
        stroke->setClass(QStringLiteral("pen"));
        stroke->setgid(2);
        QList<QPointF> points = strokePoints(plan.id);
        QList<float> widths = strokeWidths();
        QVERIFY(stroke->setPoints(points, widths, true));
        QVERIFY(stroke->setPoints(points, widths, true));
        stroke->setStrokeDashArray(Qt::DotLine, 2.0f);
    }
    {
        ReleaseObject text(page->newLXObject(QStringLiteral("g")));
        QVERIFY(text.get());
        text->setClass(QStringLiteral("text"));
        text->setgid(3);
        QVERIFY(text->setSvgText(textSvg));
        Qt::PenStyle style = Qt::DashLine;
        QVERIFY(text->setTextFrame(Qt::black, 2.0f, style, true, Qt::white));
    }
    {
        ReleaseObject picture(page->newLXObject(QStringLiteral("image")));
        QVERIFY(picture.get());
        picture->setClass(QStringLiteral("picture"));
        picture->setgid(4);
        picture->setLXObjectAttribute(QStringLiteral("href"), image);
        picture->setLXObjectAttribute(QStringLiteral("scale"), 0.75f);
    }
    QVERIFY(page->setMaxGraphicId(4));
    QVERIFY(page->saveFile());
    page->release();

    ILXRecordPage *rec = doc->insertRecPage(index, plan.id);
    QVERIFY(rec);
    writeRecording(rec, plan.id);
    QVERIFY(rec->saveFile());
    rec->release();
}

void TestLesson::writeRecording(ILXRecordPage *rec, int id)
{
    QVERIFY(rec->setLXPageAttribute(QStringLiteral("duration"), 1000 + id));
    for (int i = 0; i < 5; ++i) {
        ILXCmd *cmd = rec->newLXCmd(QStringLiteral("cmd"));
        QVERIFY(cmd);
        cmd->setClass(i % 2 ? QStringLiteral("move") : QStringLiteral("draw"));
        cmd->setLXCmdAttribute(QStringLiteral("time"), i * 100 + id);
        cmd->setLXCmdAttribute(QStringLiteral("speed"), 1.5f);
        QVERIFY(cmd->setListGraphicsId({1, 2, id}));
        QList<int> ints = {i, -i, 42};
        QVERIFY(cmd->setIntList(QStringLiteral("order"), ints));
        QVERIFY(cmd->setPointFList(QStringLiteral("path"), strokePoints(id).mid(0, 10)));
        QVERIFY(cmd->setSizeFList(QStringLiteral("sizes"), {QSizeF(1, 2), QSizeF(3.25, 4.5)}));
        QVERIFY(cmd->setTransform(QPointF(i, id), QSizeF(2, 3), 45, false, true, QPointF(1, 1)));
        ILXCmd *child = cmd->newLXCmd(QStringLiteral("step"));
        QVERIFY(child);
        child->setLXCmdAttribute(QStringLiteral("n"), i);
        child->release();
        ILXObject *obj = cmd->newLXObject(QStringLiteral("rect"));
        QVERIFY(obj);
        obj->setgid(100 + i);
        obj->release();
        cmd->release();
    }
}

void TestLesson::readPage(ILXFrontPage *page, const PagePlan &plan, const QString &image)
{
    QSize size;
    QVERIFY(page->getPageSize(size));
    QCOMPARE(size, QSize(800, 600));
    PageFormat format = PageFormatNone;
    QVERIFY(page->getPageFormat(format));
    QCOMPARE(format, PageFormatLzn);
    QString title;
    QVERIFY(page->getPageTitle(title));
    QCOMPARE(title, plan.title);
    QColor bg;
    QVERIFY(page->getPageBgColor(bg));
    QCOMPARE(bg, plan.background);
    tagPageGrid grid;
    QVERIFY(page->getPageGrid(&grid));
    QCOMPARE(grid.horizontal, 40);
    QCOMPARE(grid.vertical, 30);
    QCOMPARE(grid.lineColor.name(), QStringLiteral("#0000ff"));
    QVERIFY(qAbs(grid.lineColor.alphaF() - 128 / 255.0) < 1e-3);
    QCOMPARE(grid.lineWidth, 2.0f);
    QCOMPARE(grid.lineStyle, Qt::DashLine);
    int l = 0, t = 0, r = 0, b = 0;
    QVERIFY(page->getPageMargin(l, t, r, b));
    QCOMPARE(QList<int>({l, t, r, b}), QList<int>({5, 6, 7, 8}));
    int maxGid = 0;
    QVERIFY(page->getMaxGraphicId(maxGid));
    QCOMPARE(maxGid, 4);
    int flags = 0;
    QVERIFY(page->getLXPageAttribute(QStringLiteral("saved-flags"), flags));
    QCOMPARE(flags, 7);

    ReleaseObject rect(page->getFirstLXObject());
    QVERIFY(rect.get());
    QString cls;
    QVERIFY(rect->getClass(cls));
    QCOMPARE(cls, QStringLiteral("shape"));
    QColor stroke;
    QVERIFY(rect->getStroke(stroke));
    QCOMPARE(stroke, QColor(Qt::red));
    bool filled = false;
    QColor fill;
    QVERIFY(rect->getFill(filled, fill));
    QVERIFY(filled);
    QCOMPARE(fill.name(), QStringLiteral("#ffff00"));
    QRectF bound;
    QVERIFY(rect->getBound(bound));
    QCOMPARE(bound, QRectF(50, 60, 200, 100));
    QPointF pos;
    QSizeF scale;
    float angle = 0;
    bool flipH = false, flipV = false;
    QVERIFY(rect->getTransform(pos, scale, angle, flipH, flipV));
    QCOMPARE(pos, QPointF(10, 20));
    QCOMPARE(scale, QSizeF(1.5, 2));
    QCOMPARE(angle, 30.0f);
    QVERIFY(flipH);
    QVERIFY(!flipV);
    Qt::PenCapStyle cap = Qt::FlatCap;
    QVERIFY(rect->getStrokeLineCap(cap));
    QCOMPARE(cap, Qt::RoundCap);
    LineCapStyle marker = LineCapNone;
    QVERIFY(rect->getMarkerEnd(marker));
    QCOMPARE(marker, LineCapArrow);

    ReleaseObject stroke2(page->getNextLXObject());
    QVERIFY(stroke2.get());
    QCOMPARE(stroke2->getPolygonCount(), 2);
    QList<QPointF> points;
    QList<float> widths;
    QVERIFY(stroke2->getPolygonPoints(1, points, widths));
    QCOMPARE(points, strokePoints(plan.id));
    QCOMPARE(widths, strokeWidths());
    Qt::PenStyle dash = Qt::SolidLine;
    QVERIFY(stroke2->getStrokeDashArray(dash));
    QCOMPARE(dash, Qt::DotLine);

    ReleaseObject text(page->getNextLXObject());
    QVERIFY(text.get());
    QString svg;
    QVERIFY(text->getSvgText(svg));
    QVERIFY2(svg.contains(QStringLiteral("Half of 8 is")), qPrintable(svg));
    QVERIFY(svg.contains(QStringLiteral("<tspan>4</tspan>")));
    ReleaseObject frame(text->getLXObject(QStringLiteral("rect")));
    QVERIFY(frame.get());
    QString dashText;
    QVERIFY(frame->getLXObjectAttribute(QStringLiteral("stroke-dasharray"), dashText));
    QCOMPARE(dashText, QStringLiteral("6,2"));

    ReleaseObject picture(page->getNextLXObject());
    QVERIFY(picture.get());
    QString href;
    QVERIFY(picture->getLXObjectAttribute(QStringLiteral("href"), href));
    QCOMPARE(href, image);
    float pictureScale = 0;
    QVERIFY(picture->getLXObjectAttribute(QStringLiteral("scale"), pictureScale));
    QCOMPARE(pictureScale, 0.75f);
    QVERIFY(page->getNextLXObject() == nullptr);
}

void TestLesson::readRecording(ILXRecordPage *rec, int id)
{
    QString cls;
    QVERIFY(rec->getClass(cls));
    QCOMPARE(cls, QStringLiteral("page"));
    int duration = 0;
    QVERIFY(rec->getLXPageAttribute(QStringLiteral("duration"), duration));
    QCOMPARE(duration, 1000 + id);
    int count = 0;
    for (ILXCmd *cmd = rec->getFirstLXCmd(); cmd; cmd = rec->getNextLXCmd(), ++count) {
        const int i = count;
        QString kind;
        QVERIFY(cmd->getClass(kind));
        QCOMPARE(kind, i % 2 ? QStringLiteral("move") : QStringLiteral("draw"));
        int time = 0;
        QVERIFY(cmd->getLXCmdAttribute(QStringLiteral("time"), time));
        QCOMPARE(time, i * 100 + id);
        float speed = 0;
        QVERIFY(cmd->getLXCmdAttribute(QStringLiteral("speed"), speed));
        QCOMPARE(speed, 1.5f);
        QList<int> gids;
        QVERIFY(cmd->getListGraphicsId(gids));
        QCOMPARE(gids, QList<int>({1, 2, id}));
        QList<int> ints;
        QVERIFY(cmd->getIntList(QStringLiteral("order"), ints));
        QCOMPARE(ints, QList<int>({i, -i, 42}));
        QList<QPointF> path;
        QVERIFY(cmd->getPointFList(QStringLiteral("path"), path));
        QCOMPARE(path, strokePoints(id).mid(0, 10));
        QList<QSizeF> sizes;
        QVERIFY(cmd->getSizeFList(QStringLiteral("sizes"), sizes));
        QCOMPARE(sizes, QList<QSizeF>({QSizeF(1, 2), QSizeF(3.25, 4.5)}));
        QPointF pos;
        QSizeF scale;
        float angle = 0;
        bool flipH = false, flipV = false;
        QVERIFY(cmd->getTransform(pos, scale, angle, flipH, flipV));
        QCOMPARE(pos, QPointF(i, id));
        QCOMPARE(scale, QSizeF(2, 3));
        QCOMPARE(angle, 45.0f);
        QVERIFY(!flipH);
        QVERIFY(flipV);
        // Saved and reloaded, the command's children are the nested command
        // and the object, walked with one cursor.
        ILXCmd *child = cmd->getFirstLXCmd();
        QVERIFY(child);
        int n = -1;
        QVERIFY(child->getLXCmdAttribute(QStringLiteral("n"), n));
        QCOMPARE(n, i);
        child->release();
        ILXObject *obj = cmd->getNextLXObject();
        QVERIFY(obj);
        int gid = 0;
        QVERIFY(obj->getgid(gid));
        QCOMPARE(gid, 100 + i);
        obj->release();
        cmd->release();
    }
    QCOMPARE(count, 5);
}

void TestLesson::buildReorderSaveReopen()
{
    const QString work = m_tmp->filePath(QStringLiteral("lesson"));
    const QString archive = m_tmp->filePath(QStringLiteral("lesson.lzn"));
    QImage png(64, 48, QImage::Format_RGB32);
    png.fill(Qt::magenta);
    const QString source = m_tmp->filePath(QStringLiteral("photo.png"));
    QVERIFY(png.save(source, "PNG"));

    ILXDocument *doc = get_interface();
    QVERIFY(doc);
    QVERIFY(doc->init(QString(), false));
    QVERIFY(doc->newFile(work, true));
    QString imagePath;
    QVERIFY(doc->getLXResMgr()->addImageFile(source, imagePath));
    QCOMPARE(imagePath, work + QStringLiteral("/images/photo.png"));

    for (const PagePlan &plan : plans())
        writePage(doc, plan, doc->getPagesCount(), QStringLiteral("images/photo.png"));
    QCOMPARE(doc->getPagesCount(), 3);
    // 30 moves to the front, then 20 is deleted: 30, 10 remain.
    QVERIFY(doc->adjustPageIndex(30, 2, 0));
    QVERIFY(doc->deletePage(20, false));
    QCOMPARE(doc->getPagesCount(), 2);

    TestDrawPage drawPage;
    for (int i = 0; i < doc->getPagesCount(); ++i)
        QVERIFY(doc->savePage(&drawPage, i, 7, true));
    QCOMPARE(drawPage.previews, 2);
    QCOMPARE(drawPage.saves, 2);
    QVERIFY(doc->saveFile(archive, true));
    doc->release(false);
    QVERIFY(!QFileInfo::exists(work));
    QVERIFY(QFileInfo(archive).size() > 0);

    ILXDocument *reopened = get_interface();
    QVERIFY(reopened->init(QString(), false));
    QVERIFY(reopened->openFile(archive));
    const QString unpacked = reopened->getDocPath();
    QVERIFY(unpacked.startsWith(reopened->getTempPath()));
    QCOMPARE(reopened->getPagesCount(), 2);
    QImage preview(unpacked + QStringLiteral("/preview.png"));
    QCOMPARE(preview.size(), QSize(100, 75));
    QFile copied(unpacked + QStringLiteral("/images/photo.png"));
    QVERIFY(copied.open(QIODevice::ReadOnly));
    QFile original(source);
    QVERIFY(original.open(QIODevice::ReadOnly));
    QCOMPARE(copied.readAll(), original.readAll());

    const QList<PagePlan> expected = {plans().at(2), plans().at(0)};
    for (int index = 0; index < expected.size(); ++index) {
        int id = -1;
        ILXFrontPage *page = reopened->getPageByIndex(index, id);
        QVERIFY(page);
        QCOMPARE(id, expected.at(index).id);
        readPage(page, expected.at(index), QStringLiteral("images/photo.png"));
        page->release();
        ILXRecordPage *rec = reopened->getRecPageById(id);
        QVERIFY(rec);
        readRecording(rec, id);
        rec->release();
        if (QTest::currentTestFailed())
            break;
    }
    reopened->release(false);
    QVERIFY(!QFileInfo::exists(unpacked));
}

void TestLesson::manyWrappersReleasedInAnyOrder()
{
    ILXDocument *doc = get_interface();
    QVERIFY(doc->newFile(m_tmp->filePath(QStringLiteral("wrappers")), true));
    ILXFrontPage *page = doc->insertFrontPage(0, 1);
    ILXObject *made = page->newLXObject(QStringLiteral("rect"));
    QVERIFY(made);
    made->setgid(9);
    QList<ILXObject *> views;
    for (int i = 0; i < 4; ++i) {
        views << page->getFirstLXObject();
        views << page->getLXObjectByName(QStringLiteral("rect"));
    }
    for (ILXObject *view : views) {
        int gid = 0;
        QVERIFY(view && view->getgid(gid));
        QCOMPARE(gid, 9);
    }
    // Released out of order, the creating wrapper last.
    for (int i = views.size() - 1; i >= 0; i -= 2)
        views.at(i)->release();
    for (int i = 0; i < views.size(); i += 2)
        views.at(i)->release();
    made->release();
    page->release();
    doc->release(false);
}

QTEST_MAIN(TestLesson)
#include "tst_lesson.moc"
