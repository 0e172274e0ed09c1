// SPDX-License-Identifier: MIT
#include "lessonrenderer.h"

#include "console.h"
#include "drawingcost.h"
#include "lessonpages.h"
#include "pagesvgadapter.h"
#include "renderlimits.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>

#include <cmath>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 15);
}

} // namespace

LessonRenderer::LessonRenderer(const LessonPages &pages)
    : m_pages(pages)
{
}

void LessonRenderer::setBox(QSize box)
{
    m_box = box;
}

bool LessonRenderer::renderImages(const QString &folder, QStringList *written)
{
    if (!QDir().mkpath(folder) || !QFileInfo(folder).isWritable())
        return fail(QStringLiteral("cannot write to the folder '%1'").arg(folder));
    const int count = m_pages.count();
    for (int index = 0; index < count; ++index) {
        Console::progress(index + 1, count, QStringLiteral("rendering pages"));
        const QString path = QDir(folder).filePath(QStringLiteral("page-%1.png").arg(index + 1));
        if (!renderImage(index, path))
            return false;
        *written << path;
    }
    Console::endProgress();
    return true;
}

bool LessonRenderer::renderPdf(const QString &file)
{
    // The PDF is written beside its target and put in place only when whole.
    const QString partial = file + QStringLiteral(".part");
    if (!writePdf(partial, file)) {
        QFile::remove(partial);
        return false;
    }
    QFile::remove(file);
    return QFile::rename(partial, file) || fail(QStringLiteral("cannot write '%1'").arg(file));
}

bool LessonRenderer::writePdf(const QString &partial, const QString &file)
{
    QPdfWriter writer(partial);
    writer.setResolution(72);
    writer.setPageMargins(QMarginsF());
    QPainter painter;
    const int count = m_pages.count();
    for (int index = 0; index < count; ++index) {
        Console::progress(index + 1, count, QStringLiteral("writing PDF pages"));
        QByteArray svg;
        QSize size;
        if (!pageSvg(index, &svg, &size))
            return false;
        // At 72 dots per inch a page's pixels are PDF points.
        writer.setPageSize(QPageSize(QSizeF(size), QPageSize::Point));
        if (index > 0)
            writer.newPage();
        else if (!painter.begin(&writer))
            return fail(QStringLiteral("cannot write '%1'").arg(file));
        if (!paintPage(painter, svg, QRectF(QPointF(), QSizeF(size)), index))
            return false;
    }
    Console::endProgress();
    return count > 0 || fail(QStringLiteral("the lesson has no pages"));
}

QString LessonRenderer::error() const
{
    return m_error;
}

bool LessonRenderer::pageSvg(int index, QByteArray *svg, QSize *size)
{
    int id = 0;
    const Handle<ILXFrontPage> page = m_pages.page(index, &id);
    if (!page)
        return fail(m_pages.pageFailure(index));
    page->getPageSize(*size);
    const double side = RenderLimits::current().side;
    if (size->isEmpty() || size->width() > side || size->height() > side)
        return fail(QStringLiteral("page %1 has an unusable size (%2x%3; the limit of a side is %4, --limit side)")
                        .arg(index + 1).arg(size->width()).arg(size->height()).arg(number(side)));
    QFile file(m_pages.pageFile(index));
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("page %1 cannot be read (%2)").arg(index + 1).arg(file.errorString()));
    PageSvgAdapter adapter(m_pages.folder(), *size);
    if (!adapter.compose(file.readAll(), svg))
        return fail(QStringLiteral("page %1 is not well-formed (%2)").arg(index + 1).arg(adapter.error()));
    return true;
}

bool LessonRenderer::renderImage(int index, const QString &path)
{
    QByteArray svg;
    QSize size;
    if (!pageSvg(index, &svg, &size))
        return false;
    const QSize pixels = outputSize(size);
    const double limit = RenderLimits::current().pixels;
    if (double(pixels.width()) * pixels.height() > limit)
        return fail(QStringLiteral("page %1 would be %2x%3 pixels, more than the limit of %4 (--limit pixels)")
                        .arg(index + 1).arg(pixels.width()).arg(pixels.height()).arg(number(limit)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    // Only a raised limit gets here with an image Qt cannot hold.
    if (image.isNull())
        return fail(QStringLiteral("page %1: no memory for %2x%3 pixels").arg(index + 1).arg(pixels.width()).arg(pixels.height()));
    image.fill(Qt::white);
    QPainter painter(&image);
    if (!paintPage(painter, svg, QRectF(image.rect()), index))
        return false;
    painter.end();
    return image.save(path, "PNG") || fail(QStringLiteral("cannot write '%1'").arg(path));
}

bool LessonRenderer::paintPage(QPainter &painter, const QByteArray &svg, const QRectF &target, int index)
{
    QSvgRenderer renderer(svg);
    if (!renderer.isValid())
        return fail(QStringLiteral("a page cannot be drawn"));
    // Counted at the size drawn: the same page costs more the larger it is.
    const double cost = DrawingCost::of(renderer, target.size().toSize());
    const double limit = RenderLimits::current().drawing;
    if (cost > limit)
        return fail(QStringLiteral("page %1 would take %2 steps to draw, more than the limit of %3 (--limit drawing)")
                        .arg(index + 1).arg(number(std::round(cost))).arg(number(limit)));
    renderer.render(&painter, target);
    return true;
}

QSize LessonRenderer::outputSize(QSize page) const
{
    if (m_box.isEmpty())
        return page;
    const double factor = qMin(double(m_box.width()) / page.width(), double(m_box.height()) / page.height());
    return QSize(qRound(page.width() * factor), qRound(page.height() * factor)).expandedTo(QSize(1, 1));
}

bool LessonRenderer::fail(const QString &reason)
{
    Console::endProgress();
    m_error = reason;
    return false;
}
