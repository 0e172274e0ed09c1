// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONRESCUE_H
#define LXDOC_TOOL_LESSONRESCUE_H

#include <QStringList>

class LessonOutput;

// The last step of every rescue: a copy of a lesson folder is repaired, then
// opened and packed by the library, so the result is a lesson the library
// itself wrote. The folder itself is only read.
class LessonRescue {
public:
    LessonRescue(const QString &folder, bool listUnlistedPages);

    bool writeTo(const LessonOutput &output);
    // One line: "cannot ...: reason".
    QString error() const;
    QStringList repairs() const;
    QStringList losses() const;
    int pageCount() const;

private:
    bool fail(const QString &reason);

    const QString m_folder;
    const bool m_listUnlistedPages;
    QStringList m_repairs;
    QStringList m_losses;
    int m_pageCount = 0;
    QString m_error;
};

#endif
