// SPDX-License-Identifier: MIT
#include "lessonrenderer.h"

#include "console.h"
#include "lessonpages.h"
#include "pagesvgadapter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>

namespace {

// Larger pages are damaged page files, not boards.
const int kMaxSide = 20000;
// An image larger than this (256 MiB of pixels) is refused rather than
// allocated.
const qint64 kMaxPixels = qint64(8192) * 8192;

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
        if (!paintPage(painter, svg, QRectF(QPointF(), QSizeF(size))))
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
    if (size->isEmpty() || size->width() > kMaxSide || size->height() > kMaxSide)
        return fail(QStringLiteral("page %1 has an unusable size (%2x%3)").arg(index + 1).arg(size->width()).arg(size->height()));
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
    if (qint64(pixels.width()) * pixels.height() > kMaxPixels)
        return fail(QStringLiteral("page %1 would be %2x%3 pixels, more than the limit of %4")
                        .arg(index + 1).arg(pixels.width()).arg(pixels.height()).arg(kMaxPixels));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    if (!paintPage(painter, svg, QRectF(image.rect())))
        return false;
    painter.end();
    return image.save(path, "PNG") || fail(QStringLiteral("cannot write '%1'").arg(path));
}

bool LessonRenderer::paintPage(QPainter &painter, const QByteArray &svg, const QRectF &target)
{
    QSvgRenderer renderer(svg);
    if (!renderer.isValid())
        return fail(QStringLiteral("a page cannot be drawn"));
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
