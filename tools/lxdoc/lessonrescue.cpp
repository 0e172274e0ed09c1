// SPDX-License-Identifier: MIT
#include "lessonrescue.h"

#include "filetree.h"
#include "lessonoutput.h"
#include "lessonrepair.h"
#include "lessonsource.h"
#include "privatetemp.h"


LessonRescue::LessonRescue(const QString &folder, bool listUnlistedPages)
    : m_folder(folder)
    , m_listUnlistedPages(listUnlistedPages)
{
}

bool LessonRescue::writeTo(const LessonOutput &output)
{
    const PrivateTemp temp;
    if (!temp.isValid())
        return fail(QStringLiteral("cannot make a temporary folder"));
    const QString copy = temp.filePath(QStringLiteral("lesson"));
    QString reason;
    if (!FileTree::copy(m_folder, copy, &reason))
        return fail(reason);
    LessonRepair repair(copy);
    repair.setListUnlistedPages(m_listUnlistedPages);
    if (!repair.run())
        return fail(repair.errorString());
    m_repairs = repair.repairs();
    m_losses = repair.losses();
    m_pageCount = repair.pageCount();
    LessonSource source(copy);
    if (!source.open())
        return fail(source.error());
    return output.write(source.document(), &reason) || fail(reason);
}

QString LessonRescue::error() const
{
    return m_error;
}

QStringList LessonRescue::repairs() const
{
    return m_repairs;
}

QStringList LessonRescue::losses() const
{
    return m_losses;
}

int LessonRescue::pageCount() const
{
    return m_pageCount;
}

bool LessonRescue::fail(const QString &reason)
{
    m_error = QStringLiteral("cannot write the lesson: %1").arg(reason);
    return false;
}
