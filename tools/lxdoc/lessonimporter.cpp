// SPDX-License-Identifier: MIT
#include "lessonimporter.h"

#include "console.h"
#include "demopage.h"
#include "handle.h"
#include "lessonwriter.h"
#include "pdffile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QRegularExpression>

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace {

// Some image libraries report a damaged file on stderr themselves, ahead of
// the reader's own error; the tool's one-line error says it for them.
template <typename Work>
auto quietly(Work work) -> decltype(work())
{
    std::fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    const int sink = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (sink >= 0) {
        dup2(sink, STDERR_FILENO);
        close(sink);
    }
    auto result = work();
    std::fflush(stderr);
    if (saved >= 0) {
        dup2(saved, STDERR_FILENO);
        close(saved);
    }
    return result;
}

} // namespace

LessonImporter::LessonImporter(LessonWriter &writer)
    : m_writer(writer)
{
}

void LessonImporter::setBox(QSize box)
{
    m_box = box;
}

void LessonImporter::setDpi(int dpi)
{
    m_dpi = dpi;
}

bool LessonImporter::import(const ImportSources &sources)
{
    m_index = m_writer.document()->getPagesCount();
    nextPageId();
    m_total = sources.pageCount();
    for (const ImportSources::Item &item : sources.items()) {
        if (!(item.isPdf ? importPdf(item) : importPicture(item)))
            return false;
    }
    Console::endProgress();
    return true;
}

bool LessonImporter::importPdf(const ImportSources::Item &item)
{
    // The PDF itself travels with the lesson, so nothing of it is lost.
    QString attachment;
    if (!addResource(item.path, true, &attachment))
        return false;
    PdfFile pdf;
    if (!pdf.load(item.path))
        return fail(item.path, pdf.error());
    const QMap<int, QString> titles = pdf.outlineTitles();
    const QString stem = QFileInfo(item.path).completeBaseName();
    for (int page = 0; page < pdf.pageCount(); ++page) {
        const QString picture = m_writer.scratchFile(QStringLiteral("%1-%2.png").arg(stem).arg(page + 1));
        const QImage image = pdf.render(page, m_dpi);
        if (image.isNull() || !image.save(picture, "PNG"))
            return fail(item.path, QStringLiteral("page %1 cannot be drawn").arg(page + 1));
        const QString title = titles.value(page + 1, QStringLiteral("Page %1").arg(m_index + 1));
        const bool added = addPage(picture, pdf.pageSize(page), title);
        QFile::remove(picture);
        if (!added)
            return false;
    }
    return true;
}

bool LessonImporter::importPicture(const ImportSources::Item &item)
{
    QImageReader reader(item.path);
    reader.setAutoTransform(true);
    const QImage image = quietly([&] { return reader.read(); });
    if (image.isNull())
        return fail(item.path, QStringLiteral("the picture cannot be read (%1)").arg(reader.errorString()));
    // PNG and JPEG go in as they are; other formats are stored as PNG so
    // that every viewer of the lesson shows them.
    const QByteArray format = reader.format();
    QString picture = item.path;
    if (format != "png" && format != "jpeg") {
        picture = m_writer.scratchFile(QFileInfo(item.path).completeBaseName() + QStringLiteral(".png"));
        if (!image.save(picture, "PNG"))
            return fail(item.path, QStringLiteral("the picture cannot be converted"));
    }
    const bool added = addPage(picture, image.size(), QStringLiteral("Page %1").arg(m_index + 1));
    if (picture != item.path)
        QFile::remove(picture);
    return added;
}

bool LessonImporter::addPage(const QString &pictureFile, QSizeF sourceSize, const QString &title)
{
    Console::progress(++m_done, m_total, QStringLiteral("importing pages"));
    DemoShape picture;
    picture.kind = DemoShape::Image;
    picture.locked = true;
    if (!addResource(pictureFile, false, &picture.text))
        return false;
    DemoPageModel model;
    model.id = m_nextId;
    model.title = title;
    model.size = pageSize(sourceSize);
    model.background = Qt::white;
    picture.box = QRectF(QPointF(), QSizeF(model.size));
    model.shapes << picture;
    DemoPage page(model, pictureFile);
    // The lesson's thumbnail is its first page.
    if (!m_writer.document()->savePage(&page, m_index, 0, m_index == 0))
        return m_writer.fail(QStringLiteral("cannot write page %1").arg(m_index + 1));
    ++m_index;
    ++m_nextId;
    return true;
}

bool LessonImporter::addResource(const QString &file, bool attachment, QString *name)
{
    ILXDocument *document = m_writer.document();
    ILXResMgr *resources = document->getLXResMgr();
    QString copy;
    const bool added = resources
        && (attachment ? resources->addAttachmentFile(file, copy) : resources->addImageFile(file, copy));
    if (!added)
        return fail(file, QStringLiteral("cannot copy it into the lesson"));
    *name = QDir(document->getDocPath()).relativeFilePath(copy);
    return true;
}

QSize LessonImporter::pageSize(QSizeF source) const
{
    if (source.isEmpty())
        return m_box;
    const double factor = qMin(m_box.width() / source.width(), m_box.height() / source.height());
    return QSize(qRound(source.width() * factor), qRound(source.height() * factor)).expandedTo(QSize(1, 1));
}

void LessonImporter::nextPageId()
{
    // Page ids live only in file names, and a deleted page leaves its files
    // behind, so an appended page takes an id no file of the folder uses.
    const QRegularExpression pageFile(QStringLiteral("^page(\\d+)\\.(svg|mtrec)$"));
    const QStringList names = QDir(m_writer.document()->getDocPath()).entryList(QDir::Files);
    for (const QString &name : names) {
        const QRegularExpressionMatch match = pageFile.match(name);
        if (match.hasMatch())
            m_nextId = qMax(m_nextId, match.captured(1).toInt() + 1);
    }
}

bool LessonImporter::fail(const QString &path, const QString &reason)
{
    Console::endProgress();
    m_writer.fail(QStringLiteral("cannot import '%1': %2").arg(path, reason));
    return false;
}
