// SPDX-License-Identifier: MIT
#include "lessondumper.h"

#include "console.h"
#include "lessonpages.h"
#include "objectdescriber.h"
#include "treeprinter.h"

#include <QFileInfo>

LessonDumper::LessonDumper(const LessonPages &pages)
    : m_pages(pages)
{
}

void LessonDumper::setRecords(bool on)
{
    m_records = on;
}

bool LessonDumper::dump(int page, QJsonArray *result, QString *error) const
{
    const int count = m_pages.count();
    if (page < 0 || page > count) {
        *error = QStringLiteral("there is no page %1 (the lesson has %2)").arg(page).arg(count);
        return false;
    }
    const int first = page == 0 ? 0 : page - 1;
    const int last = page == 0 ? count - 1 : page - 1;
    for (int index = first; index <= last; ++index) {
        Console::progress(index - first + 1, last - first + 1, QStringLiteral("reading pages"));
        QJsonObject node;
        if (!dumpPage(index, &node, error))
            return false;
        result->append(node);
    }
    Console::endProgress();
    return true;
}

QStringList LessonDumper::treeLines(const QJsonArray &pages)
{
    QStringList lines;
    for (const QJsonValue &value : pages) {
        const QJsonObject page = value.toObject();
        lines << QStringLiteral("page %1  id %2  \"%3\"  %4x%5")
                     .arg(page.value(QLatin1String("page")).toInt()).arg(page.value(QLatin1String("id")).toInt())
                     .arg(page.value(QLatin1String("title")).toString())
                     .arg(page.value(QLatin1String("width")).toInt()).arg(page.value(QLatin1String("height")).toInt());
        for (const char *list : {"objects", "commands"}) {
            const QJsonArray nodes = page.value(QLatin1String(list)).toArray();
            if (page.contains(QLatin1String(list)))
                lines << QStringLiteral("  %1: %2").arg(QLatin1String(list)).arg(nodes.size());
            for (const QJsonValue &node : nodes)
                lines << TreePrinter::lines(node.toObject(), 2);
        }
    }
    return lines;
}

bool LessonDumper::dumpPage(int index, QJsonObject *node, QString *error) const
{
    int id = 0;
    const Handle<ILXFrontPage> page = m_pages.page(index, &id);
    if (!page) {
        *error = m_pages.pageFailure(index);
        return false;
    }
    QString title;
    page->getPageTitle(title);
    QSize size;
    page->getPageSize(size);
    node->insert(QStringLiteral("page"), index + 1);
    node->insert(QStringLiteral("id"), id);
    node->insert(QStringLiteral("title"), title);
    node->insert(QStringLiteral("width"), size.width());
    node->insert(QStringLiteral("height"), size.height());
    node->insert(QStringLiteral("objects"), objects(page.get()));
    if (m_records) {
        QJsonArray list;
        if (!commands(id, &list)) {
            *error = QStringLiteral("page %1: its recording (page%2.mtrec) cannot be read").arg(index + 1).arg(id);
            return false;
        }
        node->insert(QStringLiteral("commands"), list);
    }
    return true;
}

QJsonArray LessonDumper::objects(ILXFrontPage *page) const
{
    QJsonArray result;
    for (Handle<ILXObject> object(page->getFirstLXObject()); object; object.reset(page->getNextLXObject()))
        result.append(ObjectDescriber::object(object.get()));
    return result;
}

bool LessonDumper::commands(int id, QJsonArray *result) const
{
    const Handle<ILXRecordPage> record = m_pages.record(id);
    if (!record)
        return true;
    // A recording the library refused has no root, so no class: it is not
    // an empty one.
    QString recordClass;
    if (!record->getClass(recordClass))
        return false;
    for (Handle<ILXCmd> command(record->getFirstLXCmd()); command; command.reset(record->getNextLXCmd()))
        result->append(ObjectDescriber::command(command.get()));
    return true;
}
