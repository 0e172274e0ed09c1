// SPDX-License-Identifier: MIT
#include "lessoninfo.h"

#include "lessonpages.h"

#include "document/lessonpath.h"

#include <QFile>
#include <QFileInfo>

namespace {

QString plural(qint64 count, const char *word)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(word)).arg(count == 1 ? "" : "s");
}

} // namespace

LessonInfo::LessonInfo(const LessonPages &pages, const QString &name)
    : m_pages(pages)
    , m_name(name)
{
}

QStringList LessonInfo::lines() const
{
    const int count = m_pages.count();
    QStringList result{QStringLiteral("lesson %1: %2").arg(m_name, plural(count, "page"))};
    for (int index = 0; index < count; ++index)
        result << pageLine(index);
    return result + resourceLines();
}

QString LessonInfo::pageLine(int index) const
{
    int id = 0;
    const Handle<ILXFrontPage> page = m_pages.page(index, &id);
    if (!page)
        return QStringLiteral("  page %1: cannot be read (%2)").arg(index + 1).arg(QFileInfo(m_pages.pageFile(index)).fileName());
    QString title;
    page->getPageTitle(title);
    QSize size;
    page->getPageSize(size);
    const Handle<ILXRecordPage> record = m_pages.record(id);
    QString recordClass;
    // A recording the library refused has no root, so no class either: it
    // is not an empty one.
    const QString recorded = !record ? QStringLiteral("no recording")
        : record->getClass(recordClass) ? plural(LessonPages::countCommands(record.get()), "command")
                                        : QStringLiteral("recording cannot be read");
    const QString dimensions = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
    return QStringLiteral("  page %1  id %2  %3  %4  %5  %6")
        .arg(index + 1).arg(id).arg(QStringLiteral("\"%1\"").arg(title), -20).arg(dimensions, -9)
        .arg(plural(LessonPages::countObjects(page.get()), "object"), recorded);
}

QStringList LessonInfo::resourceLines() const
{
    QStringList details;
    qint64 total = 0;
    int files = 0;
    for (const QString &kind : ManifestReader::resourceKinds()) {
        const QStringList names = m_pages.manifest().list(kind);
        if (names.isEmpty())
            continue;
        qint64 bytes = 0;
        QStringList entries;
        for (const QString &name : names) {
            const qint64 size = fileSize(name);
            bytes += qMax<qint64>(size, 0);
            // A name that leads outside says so and nothing about what lies there.
            const LessonPath::Verdict verdict = size < 0 ? LessonPath::inspect(m_pages.folder(), name) : LessonPath::Regular;
            entries << QStringLiteral("    %1  %2").arg(name, size < 0 ? LessonPath::verdictText(verdict) : plural(size, "byte"));
        }
        details << QStringLiteral("  %1: %2, %3").arg(kind, plural(names.size(), "file"), plural(bytes, "byte")) << entries;
        total += bytes;
        files += int(names.size());
    }
    return QStringList{QStringLiteral("resources: %1, %2").arg(plural(files, "file"), plural(total, "byte"))} + details;
}

qint64 LessonInfo::fileSize(const QString &name) const
{
    QFile file;
    return LessonPath::open(&file, m_pages.folder(), name) ? file.size() : -1;
}
