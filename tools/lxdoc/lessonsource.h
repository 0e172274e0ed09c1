// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONSOURCE_H
#define LXDOC_TOOL_LESSONSOURCE_H

#include "handle.h"

#include <QString>

#include <functional>
#include <memory>

class LessonPages;
class PrivateTemp;

// A lesson named on the command line: an archive or an unpacked folder.
// The library deletes the working folder of a document on release and opens
// folders in place, so it only ever gets a private copy. The path "-" is an
// archive read from the standard input.
class LessonSource {
public:
    explicit LessonSource(const QString &path);
    ~LessonSource();

    // A folder to read and never change: the user's folder itself, or the
    // archive unpacked into a private temporary folder.
    bool prepareReadOnly();
    // A private copy, opened as a document.
    bool open();

    QString folder() const;
    ILXDocument *document() const;
    // One line: "cannot open 'x': reason".
    QString error() const;

    static bool isArchiveName(const QString &path);
    static bool isStandardStream(const QString &path);
    // How messages name a path: "'x.lzn'", or "the standard input" for "-".
    static QString displayName(const QString &path);
    // The one way a command reaches a lesson's pages: opens a private copy of
    // the lesson at path, hands its pages to work and returns work's status
    // (or reports why the lesson cannot be opened).
    static int withPages(const QString &path, const std::function<int(const LessonPages &)> &work);

private:
    bool checkPath();
    bool makeTemporaryFolder();
    bool unpackArchive();
    bool readStandardInput(const QString &file);
    bool copyFolder();
    bool fail(const QString &reason);

    QString m_path;
    bool m_isFolder = false;
    std::unique_ptr<PrivateTemp> m_temp;
    QString m_folder;
    Handle<ILXDocument> m_document;
    QString m_error;
};

#endif
