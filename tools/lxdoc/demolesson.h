// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOLESSON_H
#define LXDOC_TOOL_DEMOLESSON_H

#include <QString>

class ILXDocument;
class LessonWriter;

// Builds the sample lesson through the document interfaces, the way the
// board saves a lesson: each page through savePage, then saveFile packing.
class DemoLesson {
public:
    explicit DemoLesson(const QString &archive);

    bool create();
    QString error() const;

private:
    static bool build(LessonWriter &writer, const QString &pictureFile);
    static bool addPicture(LessonWriter &writer, const QString &pictureFile, QString *name);

    QString m_archive;
    QString m_error;
};

#endif
