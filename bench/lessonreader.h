// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_LESSONREADER_H
#define LXDOC_BENCH_LESSONREADER_H

#include <QtGlobal>

class ILXDocument;
class ILXFrontPage;
class ILXRecordPage;

// Walks a lesson as a host does when it shows and plays it back: every page,
// every object with its style, point lists and widths, every recorded command.
// The counts prove the walk saw everything that was written.
class LessonReader {
public:
    struct Counts {
        qint64 pages = 0;
        qint64 objects = 0;
        qint64 points = 0;
        qint64 widths = 0;
        qint64 texts = 0;
        qint64 commands = 0;
        qint64 commandPoints = 0;
    };

    // One page at a time: each page is released before the next is opened.
    static Counts walk(ILXDocument *document);
    static void readFrontPage(ILXFrontPage *page, Counts &counts);
    static void readRecordPage(ILXRecordPage *record, Counts &counts);
};

#endif
