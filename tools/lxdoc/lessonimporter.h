// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONIMPORTER_H
#define LXDOC_TOOL_LESSONIMPORTER_H

#include "importsources.h"

#include <QImage>
#include <QSize>
#include <QString>

class LessonWriter;
class PdfFile;

// Adds one board page per PDF page or picture to a lesson: the picture
// fills the page as a locked image, so a teacher writes over it, and each
// page gets an empty recording.
class LessonImporter {
public:
    explicit LessonImporter(LessonWriter &writer);

    // Pages fit into box, keeping the source's proportions.
    void setBox(QSize box);
    void setDpi(int dpi);
    bool import(const ImportSources &sources);

private:
    bool importPdf(const ImportSources::Item &item);
    bool importPicture(const ImportSources::Item &item);
    bool addPage(const QString &pictureFile, QSizeF sourceSize, const QString &title);
    bool addResource(const QString &file, bool attachment, QString *name);
    QSize pageSize(QSizeF source) const;
    void nextPageId();
    bool fail(const QString &path, const QString &reason);

    LessonWriter &m_writer;
    QSize m_box = QSize(1024, 1024);
    int m_dpi = 150;
    int m_index = 0;
    int m_nextId = 1;
    int m_done = 0;
    int m_total = 0;
};

#endif
