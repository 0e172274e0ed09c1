// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_ARCHIVEBASELINES_H
#define LXDOC_BENCH_ARCHIVEBASELINES_H

#include <QList>
#include <QString>
#include <QStringList>

// The archive tools that packing and opening are timed against, run on the
// same working folder and the same archive: Info-ZIP at the plug-in's
// deflate level (storing the media suffixes the plug-in stores), Info-ZIP at
// its own default, and libarchive's bsdtar. A tool that is not installed
// shows as missing rather than failing the run.
class ArchiveBaselines {
public:
    struct Figure {
        QString tool;
        double ms = -1; // median over the runs so far
        double target = -1; // highest acceptable LXDoc / tool ratio, -1 for none
        qint64 bytes = -1; // of the last archive packed
    };

    ArchiveBaselines();
    // What the tools write goes below scratch and is removed again.
    void timePacking(const QString &folder, const QString &scratch);
    void timeUnpacking(const QString &archive, const QString &scratch);
    QList<Figure> packing() const;
    QList<Figure> unpacking() const;
    // "zip -2: 61.2 MiB, ..." for the archives packed last.
    QString archiveSizes() const;

private:
    struct Tool {
        QString label;
        QString program;
        QStringList arguments; // "%archive" and "%folder" are filled in
        double target = -1;
        QList<double> ms;
        qint64 bytes = -1;
    };

    static Tool tool(const QString &label, const QString &program, const QStringList &arguments,
                     double target);
    double runOnce(const Tool &tool, const QString &archive, const QString &folder,
                   const QString &workingFolder) const;
    static QList<Figure> figures(const QList<Tool> &tools);

    QList<Tool> m_packers;
    QList<Tool> m_unpackers;
};

#endif
