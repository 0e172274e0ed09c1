// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONCHECKER_H
#define LXDOC_TOOL_LESSONCHECKER_H

#include <QSet>
#include <QStringList>

class ManifestReader;

// Compares an unpacked lesson's manifest with the files it holds. Reads
// only: the folder may be the user's own.
class LessonChecker {
public:
    explicit LessonChecker(const QString &folder);

    void run();
    // "file: what is wrong", one line each.
    QStringList problems() const;
    // Findings that do not make the lesson unsound.
    QStringList notes() const;

private:
    void checkPageFiles(const ManifestReader &manifest, const QString &list, const QString &root);
    void checkResources(const ManifestReader &manifest);
    void checkUnlistedResources(const QSet<QString> &listed);
    void checkUnlistedPages(const ManifestReader &manifest);
    void checkDuplicates(const QStringList &entries, const QString &list);
    QString xmlProblem(const QString &name, const QString &root) const;

    QString m_folder;
    QStringList m_problems;
    QStringList m_notes;
};

#endif
