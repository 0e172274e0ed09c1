// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_MEASUREMENTS_H
#define LXDOC_BENCH_MEASUREMENTS_H

#include "archivebaselines.h"
#include "lessongenerator.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class ILXDocument;
class QTextStream;

// Times whole-lesson work through the library side by side with baselines
// run on the same files in the same process: archive tools for packing and
// unpacking (ArchiveBaselines), plain QDomDocument for parsing and saving. Every time is the
// median of several runs.
class Measurements {
public:
    struct Options {
        LessonShape shape;
        int runs = 5;
        QList<int> growthPages;
        bool growthOnly = false;
        bool smoke = false;
        // Where the generated data goes; empty for the system's temporary folder.
        QString dataFolder;
    };

    explicit Measurements(const Options &options);
    // Prints both tables; false when the library failed or a walk did not
    // read back what was written.
    bool run(QTextStream &out);

    // The re-executed child: opens the archive, resets its peak, walks the
    // lesson (mode "walk") or holds its largest page (mode "largest"), and
    // prints "<rss before kB> <peak kB> <reset 0|1>".
    static int measureWalkChild(const QString &archive, const QString &mode);

private:
    // Milliseconds of one run; -1 where a figure was not taken.
    struct Figures {
        double build = -1;
        double pack = -1;
        double open = -1;
        double read = -1;
        double parse = -1;
        double save = -1;
        double plainSave = -1;
        // Parts of build, open and save, for the growth table's breakdown.
        double inserts = -1;
        double pageWrites = -1;
        double manifestLoad = -1;
        double pageSaves = -1;
        double recordSaves = -1;
        qint64 archiveBytes = -1;
        qint64 xmlBytes = -1;
    };
    struct Memory {
        qint64 walk = -1;
        qint64 largest = -1;
        bool reset = false;
    };

    // A document ends with release(true), which also deletes its working folder.
    struct DocumentReleaser {
        void operator()(ILXDocument *document) const;
    };
    using Document = std::unique_ptr<ILXDocument, DocumentReleaser>;

    bool runOnce(const LessonShape &shape, LessonGenerator &generator, bool baselines, Figures &figures);
    bool buildAndPack(const LessonShape &shape, LessonGenerator &generator, bool baselines, Figures &figures);
    bool openAndRead(const LessonShape &shape, bool baselines, Figures &figures);
    bool saveEdited(ILXDocument *document, Figures &figures);
    bool measureMemory(Memory &memory);
    bool runGrowth(QTextStream &out);
    static void printBreakdown(QTextStream &out, const QList<int> &sizes, const QList<QList<Figures>> &results);
    void printMain(QTextStream &out, const QList<Figures> &runs, const Memory &memory) const;

    static QStringList pageFiles(const QString &folder);
    static double plainParse(const QString &folder, const QStringList &files);
    double plainSave(const QString &folder, const QStringList &files) const;

    static Document newDocument();
    void finish(Document document);

    Options m_options;
    QString m_root;
    // Growth runs keep their folders and documents until the table is done
    // (see runGrowth); each then has its own names.
    bool m_keepRuns = false;
    int m_runNumber = 0;
    QString m_lessonName = QStringLiteral("lesson");
    std::vector<Document> m_kept;
    ArchiveBaselines m_archiveBaselines;
};

#endif
