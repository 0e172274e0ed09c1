// SPDX-License-Identifier: MIT
#include "webexporter.h"

#include "console.h"
#include "document/lessonpath.h"
#include "handle.h"
#include "lessonpages.h"
#include "lessonrenderer.h"
#include "objectdescriber.h"
#include "webindex.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QSaveFile>
#include <QXmlStreamReader>

namespace {

const QString kMediaFolder = QStringLiteral("media");

// Texts of an object and of the objects inside it; a child without a bound
// of its own stands where its parent does.
void gatherTexts(const QJsonObject &node, QRectF bound, QList<WebText> *texts)
{
    const QJsonArray box = node.value(QStringLiteral("bound")).toArray();
    if (box.size() == 4)
        bound = QRectF(box.at(0).toDouble(), box.at(1).toDouble(), box.at(2).toDouble(), box.at(3).toDouble());
    const QString text = node.value(QStringLiteral("text")).toString();
    if (!text.isEmpty())
        texts->append({bound, text});
    const QJsonArray children = node.value(QStringLiteral("children")).toArray();
    for (const QJsonValue &child : children)
        gatherTexts(child.toObject(), bound, texts);
}

// Every file a page names ("href" and "xlink:href"); embedded data and
// references inside the page are not files.
QStringList namedFiles(const QByteArray &pageFile)
{
    QStringList names;
    QXmlStreamReader reader(pageFile);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        for (const QXmlStreamAttribute &attribute : reader.attributes()) {
            const QString value = attribute.value().toString().trimmed();
            if (attribute.name() == QLatin1String("href") && !value.startsWith(QLatin1String("data:"))
                && !value.startsWith(QLatin1Char('#')) && !names.contains(value))
                names << value;
        }
    }
    return names;
}

} // namespace

WebExporter::WebExporter(const LessonPages &pages, const QString &folder)
    : m_pages(pages)
    , m_folder(folder)
{
}

bool WebExporter::write(const QString &lessonName)
{
    if (!QDir().mkpath(QDir(m_folder).filePath(QStringLiteral("pages"))))
        return fail(QStringLiteral("cannot write to the folder '%1'").arg(m_folder));
    LessonRenderer renderer(m_pages);
    QList<WebPageModel> models;
    const int count = m_pages.count();
    for (int index = 0; index < count; ++index) {
        Console::progress(index + 1, count, QStringLiteral("exporting pages"));
        WebPageModel model;
        if (!exportPage(renderer, index, &model))
            return false;
        models << model;
    }
    Console::endProgress();
    if (models.isEmpty())
        return fail(QStringLiteral("the lesson has no pages"));
    return writeFile(QStringLiteral("index.html"), WebIndex::html(lessonName, models));
}

QString WebExporter::error() const
{
    return m_error;
}

bool WebExporter::exportPage(LessonRenderer &renderer, int index, WebPageModel *model)
{
    QByteArray svg;
    if (!renderer.pageSvg(index, &svg, &model->size))
        return fail(renderer.error());
    model->picture = QStringLiteral("pages/page-%1.svg").arg(index + 1);
    if (!writeFile(model->picture, svg))
        return false;
    QFile pageFile(m_pages.pageFile(index));
    if (pageFile.open(QIODevice::ReadOnly))
        copyMedia(pageFile.readAll(), model);
    // The texts are read last: the library hands an object's text out of
    // the page, which is a private copy and never saved.
    int id = 0;
    const Handle<ILXFrontPage> page = m_pages.page(index, &id);
    if (page) {
        page->getPageTitle(model->title);
        collectTexts(page.get(), model);
    }
    return true;
}

void WebExporter::collectTexts(ILXFrontPage *page, WebPageModel *model) const
{
    const QRectF whole(QPointF(), QSizeF(model->size));
    for (Handle<ILXObject> object(page->getFirstLXObject()); object; object.reset(page->getNextLXObject()))
        gatherTexts(ObjectDescriber::object(object.get()), whole, &model->texts);
}

void WebExporter::copyMedia(const QByteArray &pageFile, WebPageModel *model)
{
    const QStringList names = namedFiles(pageFile);
    for (const QString &name : names) {
        const QString clean = LessonPath::clean(name);
        if (!clean.isEmpty() && copyMediaFile(clean))
            model->media << kMediaFolder + QLatin1Char('/') + clean;
    }
}

bool WebExporter::copyMediaFile(const QString &name)
{
    if (m_copied.contains(name))
        return true;
    // Only a regular file inside the lesson, reached through no link, is copied.
    QFile source;
    if (!LessonPath::open(&source, m_pages.folder(), name))
        return false;
    const QString target = QDir(m_folder).filePath(kMediaFolder + QLatin1Char('/') + name);
    QFile copy(target);
    if (!QDir().mkpath(QFileInfo(target).path()) || !copy.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    char buffer[65536];
    qint64 length = 0;
    while ((length = source.read(buffer, sizeof buffer)) > 0) {
        if (copy.write(buffer, length) != length)
            return false;
    }
    m_copied.insert(name);
    return length == 0;
}

bool WebExporter::writeFile(const QString &name, const QByteArray &content)
{
    QSaveFile file(QDir(m_folder).filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        return fail(QStringLiteral("cannot write '%1'").arg(QDir(m_folder).filePath(name)));
    return true;
}

bool WebExporter::fail(const QString &reason)
{
    Console::endProgress();
    m_error = reason;
    return false;
}
