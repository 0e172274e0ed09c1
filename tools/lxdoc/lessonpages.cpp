// SPDX-License-Identifier: MIT
#include "lessonpages.h"

#include "xmlfilecheck.h"

#include <QDir>

LessonPages::LessonPages(ILXDocument *document, const QString &folder)
    : m_document(document)
    , m_folder(folder)
{
    m_manifest.load(QDir(folder).filePath(QStringLiteral("manifest.xml")));
    const QStringList records = m_manifest.list(QStringLiteral("records"));
    m_records = QSet<QString>(records.cbegin(), records.cend());
}

int LessonPages::count() const
{
    return m_document->getPagesCount();
}

Handle<ILXFrontPage> LessonPages::page(int index, int *id) const
{
    return Handle<ILXFrontPage>(m_document->getPageByIndex(index, *id));
}

Handle<ILXRecordPage> LessonPages::record(int id) const
{
    if (!m_records.contains(QStringLiteral("page%1.mtrec").arg(id)))
        return nullptr;
    return Handle<ILXRecordPage>(m_document->getRecPageById(id));
}

QString LessonPages::pageFile(int index) const
{
    return QDir(m_folder).filePath(m_manifest.list(QStringLiteral("pages")).value(index));
}

QString LessonPages::pageFailure(int index) const
{
    const QString name = m_manifest.list(QStringLiteral("pages")).value(index);
    const QString problem = XmlFileCheck::problem(m_folder, name, QStringLiteral("svg"));
    const QString failure = QStringLiteral("page %1 (%2) cannot be read").arg(index + 1).arg(name);
    return problem.isEmpty() ? failure : failure + QStringLiteral(": ") + problem;
}

QString LessonPages::folder() const
{
    return m_folder;
}

const ManifestReader &LessonPages::manifest() const
{
    return m_manifest;
}

int LessonPages::countObjects(ILXFrontPage *page)
{
    int count = 0;
    for (Handle<ILXObject> object(page->getFirstLXObject()); object; object.reset(page->getNextLXObject()))
        ++count;
    return count;
}

int LessonPages::countCommands(ILXRecordPage *record)
{
    int count = 0;
    for (Handle<ILXCmd> command(record->getFirstLXCmd()); command; command.reset(record->getNextLXCmd()))
        ++count;
    return count;
}
