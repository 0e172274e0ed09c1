// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONPAGES_H
#define LXDOC_TOOL_LESSONPAGES_H

#include "handle.h"
#include "manifestreader.h"

#include <QSet>

// The pages of an open lesson in document order, with their recordings.
class LessonPages {
public:
    LessonPages(ILXDocument *document, const QString &folder);

    int count() const;
    // Null when the page file cannot be loaded; id is set otherwise.
    Handle<ILXFrontPage> page(int index, int *id) const;
    // Null when the lesson keeps no recording for the page: asking the
    // document for one it does not list would make an empty file.
    Handle<ILXRecordPage> record(int id) const;
    QString pageFile(int index) const;
    // Why page index cannot be loaded: "page 2 (page2.svg) cannot be read:
    // nested deeper than ...", for a page() that gave nothing.
    QString pageFailure(int index) const;
    QString folder() const;
    const ManifestReader &manifest() const;

    static int countObjects(ILXFrontPage *page);
    static int countCommands(ILXRecordPage *record);

private:
    ILXDocument *m_document;
    QString m_folder;
    ManifestReader m_manifest;
    QSet<QString> m_records;
};

#endif
