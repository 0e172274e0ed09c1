// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_BENCHSUPPORT_H
#define LXDOC_BENCH_BENCHSUPPORT_H

#include <QList>
#include <QString>

// Small pieces every table of the benchmark uses.
class BenchSupport {
public:
    // The median of the runs that produced a figure; a failed run is -1 and
    // does not count, and -1 comes back when no run produced one.
    static double median(QList<double> values);
    // Removes a file or a whole folder left by a run.
    static void removePath(const QString &path);
};

#endif
