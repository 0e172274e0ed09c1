// SPDX-License-Identifier: MIT
#include "lessongenerator.h"

#include "lxdoc.h"

#include <QByteArray>
#include <QColor>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QRandomGenerator>
#include <QRectF>
#include <QSize>

#include <memory>

namespace {

// Handles from the library end with release(), never delete.
struct Releaser {
    template <typename T>
    void operator()(T *handle) const
    {
        handle->release();
    }
};
template <typename T>
using Handle = std::unique_ptr<T, Releaser>;

// The host page: the document calls back into it, and it writes itself
// through the document's page operations.
class GeneratedPage : public IDrawPage {
public:
    explicit GeneratedPage(LessonGenerator &generator) : m_generator(generator) {}
    bool renderPreview(QPixmap *target, QSize, int) override
    {
        target->fill(Qt::white);
        return true;
    }
    bool savePageTo(ILXDocument *document, int index, unsigned int) override
    {
        return m_generator.writePage(document, index);
    }

private:
    LessonGenerator &m_generator;
};

QColor randomColor(QRandomGenerator &random)
{
    return QColor::fromRgb(random.generate() | 0xff000000u);
}

double coordinate(QRandomGenerator &random, double range)
{
    return random.generateDouble() * range;
}

bool writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
}

} // namespace

LessonShape LessonShape::smoke()
{
    LessonShape shape;
    shape.pages = 3;
    shape.strokes = 5;
    shape.strokePoints = 20;
    shape.shapes = 2;
    shape.texts = 1;
    shape.commands = 20;
    shape.mediaFiles = 2;
    shape.mediaBytes = 16 * 1024;
    shape.images = 2;
    return shape;
}

LessonShape LessonShape::light(int pages, quint32 seed)
{
    LessonShape shape;
    shape.pages = pages;
    shape.strokes = 20;
    shape.strokePoints = 50;
    shape.shapes = 4;
    shape.texts = 1;
    shape.commands = 100;
    shape.mediaFiles = 0;
    shape.images = 0;
    shape.seed = seed;
    return shape;
}

qint64 LessonShape::expectedPoints() const
{
    return qint64(pages) * strokes * strokePoints;
}

LessonGenerator::LessonGenerator(const LessonShape &shape) : m_shape(shape) {}

int LessonGenerator::pageId(int index)
{
    return index + 1;
}

bool LessonGenerator::prepareSources(const QString &folder)
{
    QRandomGenerator random(m_shape.seed ^ 0x5eedu);
    m_media.clear();
    m_images.clear();
    for (int i = 0; i < m_shape.mediaFiles; ++i) {
        QByteArray data(m_shape.mediaBytes, Qt::Uninitialized);
        random.fillRange(reinterpret_cast<quint32 *>(data.data()), data.size() / int(sizeof(quint32)));
        const QString path = QStringLiteral("%1/clip%2.mp4").arg(folder).arg(i);
        if (!writeFile(path, data))
            return false;
        m_media << path;
    }
    for (int i = 0; i < m_shape.images; ++i) {
        QImage image(96, 96, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            auto *line = reinterpret_cast<quint32 *>(image.scanLine(y));
            random.fillRange(line, image.width());
        }
        const QString path = QStringLiteral("%1/picture%2.png").arg(folder).arg(i);
        if (!image.save(path, "PNG"))
            return false;
        m_images << path;
    }
    return true;
}

bool LessonGenerator::build(ILXDocument *document)
{
    if (!addMedia(document))
        return false;
    GeneratedPage page(*this);
    for (int index = 0; index < m_shape.pages; ++index) {
        // A host renders the preview of the page it shows, not of every page.
        if (!document->savePage(&page, index, 0, index == 0))
            return false;
    }
    return document->getPagesCount() == m_shape.pages;
}

bool LessonGenerator::addMedia(ILXDocument *document)
{
    ILXResMgr *const resources = document->getLXResMgr();
    if (!resources)
        return false;
    QString copy;
    for (const QString &path : std::as_const(m_media)) {
        if (!resources->addAvMediaFile(path, copy))
            return false;
    }
    for (const QString &path : std::as_const(m_images)) {
        if (!resources->addImageFile(path, copy))
            return false;
    }
    return true;
}

// Each page draws from its own generator, so a page's content does not
// depend on the order pages are written in.
bool LessonGenerator::writePage(ILXDocument *document, int index)
{
    QRandomGenerator random(m_shape.seed * 1000003u + quint32(index));
    return writeFrontPage(document, index, random) && writeRecordPage(document, index, random);
}

bool LessonGenerator::writeFrontPage(ILXDocument *document, int index, QRandomGenerator &random)
{
    QElapsedTimer timer;
    timer.start();
    const Handle<ILXFrontPage> page(document->insertFrontPage(index, pageId(index)));
    m_times.insertNs += timer.nsecsElapsed();
    if (!page)
        return false;
    page->setPageSize(QSize(1024, 768));
    page->setPageFormat(PageFormatLzn);
    page->setPageTitle(QStringLiteral("Page %1").arg(index + 1));
    page->setPageBgColor(QColor(0xff, 0xfd, 0xf5));
    page->setForeground(true);
    int gid = 0;
    for (int i = 0; i < m_shape.strokes; ++i) {
        const Handle<ILXObject> pen(page->newLXObject(QStringLiteral("g")));
        if (!pen)
            return false;
        pen->setClass(QStringLiteral("pen"));
        pen->setgid(++gid);
        pen->setStroke(randomColor(random));
        pen->setStrokeWidth(float(1 + random.bounded(8)));
        QList<QPointF> points = stroke(random);
        QList<float> widths;
        widths.reserve(points.size());
        for (int p = 0; p < points.size(); ++p)
            widths << float(1.0 + random.bounded(400) / 100.0);
        if (!pen->setPoints(points, widths, true))
            return false;
    }
    for (int i = 0; i < m_shape.shapes; ++i) {
        const Handle<ILXObject> shape(page->newLXObject(QStringLiteral("rect")));
        if (!shape)
            return false;
        shape->setClass(QStringLiteral("shape"));
        shape->setgid(++gid);
        shape->setStroke(randomColor(random));
        shape->setStrokeWidth(2.0f);
        shape->setFill(true, randomColor(random));
        shape->setBound(QRectF(coordinate(random, 900), coordinate(random, 600), 20 + coordinate(random, 200),
                               20 + coordinate(random, 200)));
        shape->setTransform(QPointF(coordinate(random, 100), coordinate(random, 100)), QSizeF(1, 1),
                            float(random.bounded(360)), false, false, QPointF(50, 50));
    }
    for (int i = 0; i < m_shape.texts; ++i) {
        const Handle<ILXObject> text(page->newLXObject(QStringLiteral("g")));
        if (!text)
            return false;
        text->setClass(QStringLiteral("text"));
        text->setgid(++gid);
        const QString svg = QStringLiteral("<svg><text x=\"%1\" y=\"%2\" font-size=\"24\">Page %3, note %4: "
                                           "the sum of the angles of a triangle</text></svg>")
                                .arg(random.bounded(900))
                                .arg(random.bounded(700))
                                .arg(index + 1)
                                .arg(i + 1);
        if (!text->setSvgText(svg))
            return false;
        Qt::PenStyle style = Qt::SolidLine;
        text->setTextFrame(Qt::black, 1.0f, style, false, Qt::white);
    }
    page->setMaxGraphicId(gid);
    timer.restart();
    const bool saved = page->saveFile();
    m_times.saveNs += timer.nsecsElapsed();
    return saved;
}

bool LessonGenerator::writeRecordPage(ILXDocument *document, int index, QRandomGenerator &random)
{
    QElapsedTimer timer;
    timer.start();
    const Handle<ILXRecordPage> record(document->insertRecPage(index, pageId(index)));
    m_times.insertNs += timer.nsecsElapsed();
    if (!record)
        return false;
    record->setLXPageAttribute(QStringLiteral("duration"), m_shape.commands * 40);
    static const QString classes[] = {QStringLiteral("draw"), QStringLiteral("move"), QStringLiteral("scale"),
                                      QStringLiteral("erase")};
    const int objects = qMax(1, m_shape.strokes + m_shape.shapes + m_shape.texts);
    for (int i = 0; i < m_shape.commands; ++i) {
        const Handle<ILXCmd> command(record->newLXCmd(QStringLiteral("cmd")));
        if (!command)
            return false;
        command->setClass(classes[random.bounded(4)]);
        command->setLXCmdAttribute(QStringLiteral("time"), i * 40);
        command->setListGraphicsId({1 + random.bounded(objects)});
        QList<QPointF> points;
        for (int p = 0; p < m_shape.commandPoints; ++p)
            points << QPointF(coordinate(random, 1024), coordinate(random, 768));
        if (!command->setPointFList(QStringLiteral("points"), points))
            return false;
    }
    timer.restart();
    const bool saved = record->saveFile();
    m_times.saveNs += timer.nsecsElapsed();
    return saved;
}

// A hand-drawn line: a random walk with small steps.
QList<QPointF> LessonGenerator::stroke(QRandomGenerator &random) const
{
    QList<QPointF> points;
    points.reserve(m_shape.strokePoints);
    QPointF at(coordinate(random, 1024), coordinate(random, 768));
    for (int i = 0; i < m_shape.strokePoints; ++i) {
        at += QPointF(coordinate(random, 6) - 3, coordinate(random, 6) - 3);
        points << at;
    }
    return points;
}
