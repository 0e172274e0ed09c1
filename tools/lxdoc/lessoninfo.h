// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONINFO_H
#define LXDOC_TOOL_LESSONINFO_H

#include <QStringList>

class LessonPages;

// The summary of a lesson: its pages in order and its resources by kind.
class LessonInfo {
public:
    LessonInfo(const LessonPages &pages, const QString &name);
    QStringList lines() const;

private:
    QString pageLine(int index) const;
    QStringList resourceLines() const;
    qint64 fileSize(const QString &name) const;

    const LessonPages &m_pages;
    QString m_name;
};

#endif
