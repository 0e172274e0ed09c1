// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_WORKINGFOLDER_H
#define LXDOC_TOOL_WORKINGFOLDER_H

#include <QDateTime>
#include <QList>
#include <QString>

// A lesson's working folder under a temp root, as a host left it.
class WorkingFolder {
public:
    // The working folders directly under root, by name.
    static QList<WorkingFolder> scan(const QString &root, const QString &archiveFolder);
    // archiveFolder is where the lesson archives are looked for: a host
    // unpacks "lesson.lzn" into "lesson" (or "lesson0", "lesson1", ...).
    WorkingFolder(const QString &path, const QString &archiveFolder);

    QString path() const;
    QDateTime newest() const;
    // A process that holds a file open in it (a host still running), or 0.
    qint64 holder() const;
    // One line for the listing.
    QString describe() const;

private:
    void findArchive(const QString &archiveFolder);
    bool isNewerThanArchive() const;
    bool isNewLesson() const;

    QString m_path;
    int m_pageCount = 0;
    QDateTime m_newest;
    // The archive it was unpacked from, empty when none is found.
    QString m_archive;
};

#endif
