// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONREPAIR_H
#define LXDOC_TOOL_LESSONREPAIR_H

#include <QMap>
#include <QStringList>

class ManifestReader;

// Puts a lesson folder right so that the library opens it and every list of
// its manifest names a sound file that is there: a manifest that is missing
// or does not parse is rebuilt from the files present (pages in id order,
// resources by folder), a missing list is rebuilt the same way, entries
// naming missing files are cut, and files present in a resource folder but
// unlisted are listed. A page or record file that does not parse is set
// aside under its name with ".damaged" added, never deleted.
class LessonRepair {
public:
    explicit LessonRepair(const QString &folder);

    // A host writes each page's file as it saves the page, but the manifest
    // only when it saves the whole lesson, so the last pages of a host that
    // died in between are on disk and unlisted: recovery lists them again.
    // Anywhere else an unlisted page file is one a deleted page left behind
    // on purpose, and stays unlisted.
    void setListUnlistedPages(bool list);

    // False only when the repaired manifest cannot be written.
    bool run();
    // What was put right, one line each.
    QStringList repairs() const;
    // What the lesson no longer has, one line each.
    QStringList losses() const;
    int pageCount() const;
    QString errorString() const;

    static QString setAsideName(const QString &name);

private:
    void setAside(const QString &name, const QString &problem);
    bool readManifest(ManifestReader *manifest);
    void repairPageList(const ManifestReader &manifest, const QString &list);
    void repairResourceList(const ManifestReader &manifest, const QString &kind);
    void listUnlistedResources();
    // Page or record files present, in id order; broken ones are set aside.
    QStringList pageFiles(const QString &list);
    bool writeManifest();
    void repair(const QString &line);
    void lose(const QString &line);

    const QString m_folder;
    bool m_listUnlistedPages = false;
    bool m_rebuilt = false;
    bool m_changed = false;
    QMap<QString, QStringList> m_lists;
    QStringList m_repairs;
    QStringList m_losses;
    QString m_error;
};

#endif
