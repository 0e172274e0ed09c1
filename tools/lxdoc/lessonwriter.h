// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONWRITER_H
#define LXDOC_TOOL_LESSONWRITER_H

#include "handle.h"

#include <QString>

#include <memory>

class LessonSource;
class OutputFile;
class PrivateTemp;

// A lesson written through the document interfaces the way the board saves
// one: the document works in a private temporary folder, and the archive
// reaches its place only when it is complete, so a failure leaves nothing.
class LessonWriter {
public:
    // force: replace an existing file that is not a lesson archive.
    explicit LessonWriter(const QString &archive, bool force = false);
    ~LessonWriter();
    LessonWriter(const LessonWriter &) = delete;
    LessonWriter &operator=(const LessonWriter &) = delete;

    // A new, empty lesson.
    bool startNew();
    // A private copy of an existing lesson; the lesson itself is never changed.
    bool startFrom(const QString &lesson);
    ILXDocument *document() const;
    // A path in the private folder for files made on the way.
    QString scratchFile(const QString &name) const;
    // Packs the lesson and puts the archive in place.
    bool finish();
    QString error() const;
    bool fail(const QString &reason);

private:
    bool checkTarget();

    QString m_archive;
    std::unique_ptr<OutputFile> m_output;
    std::unique_ptr<PrivateTemp> m_temp;
    std::unique_ptr<LessonSource> m_source;
    Handle<ILXDocument> m_document;
    QString m_error;
};

#endif
