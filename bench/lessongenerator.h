// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_LESSONGENERATOR_H
#define LXDOC_BENCH_LESSONGENERATOR_H

#include <QList>
#include <QPointF>
#include <QString>
#include <QStringList>

class ILXDocument;
class QRandomGenerator;

// What a synthetic lesson holds. The defaults are a heavy real lesson: a
// teacher who writes a lot by hand and records everything.
struct LessonShape {
    int pages = 100;
    int strokes = 300;        // free-hand strokes per page
    int strokePoints = 200;   // points (with widths) per stroke
    int shapes = 20;          // per page
    int texts = 2;            // per page
    int commands = 2000;      // recorded commands per page
    int commandPoints = 4;    // points per recorded command
    int mediaFiles = 40;      // video clips of incompressible data
    int mediaBytes = 256 * 1024;
    int images = 20;          // PNG pictures
    quint32 seed = 1;

    static LessonShape smoke();
    // Pages light enough for the growth table to reach 400 of them quickly.
    static LessonShape light(int pages, quint32 seed);
    qint64 expectedPoints() const;
};

// Builds a lesson through the library's host interfaces, as a host does:
// media through the resource manager, every page through savePage and the
// host page's own savePageTo. The same seed gives the same lesson.
class LessonGenerator {
public:
    explicit LessonGenerator(const LessonShape &shape);

    // Writes the media and picture files that build() adds to the lesson.
    bool prepareSources(const QString &folder);
    // Fills the open document; false when the library refused a step.
    bool build(ILXDocument *document);
    bool writePage(ILXDocument *document, int index);

    static int pageId(int index);

    // Where build() spent its time, summed since the generator was made or
    // the last reset: the page inserts (each writes the manifest) and the
    // page and record saves.
    struct StepTimes {
        qint64 insertNs = 0;
        qint64 saveNs = 0;
    };
    const StepTimes &stepTimes() const { return m_times; }
    void resetStepTimes() { m_times = StepTimes(); }

private:
    bool writeFrontPage(ILXDocument *document, int index, QRandomGenerator &random);
    bool writeRecordPage(ILXDocument *document, int index, QRandomGenerator &random);
    bool addMedia(ILXDocument *document);
    QList<QPointF> stroke(QRandomGenerator &random) const;

    LessonShape m_shape;
    QStringList m_media;
    QStringList m_images;
    StepTimes m_times;
};

#endif
