// SPDX-License-Identifier: MIT
#ifndef LXDOC_BENCH_STROKESCALING_H
#define LXDOC_BENCH_STROKESCALING_H

#include <QList>

class QTextStream;

// One free-hand stroke of growing length, written with its widths and read
// back through the public interfaces: the time per point must stay flat from
// the shortest stroke (the baseline) to the longest.
class StrokeScaling {
public:
    explicit StrokeScaling(bool smoke);
    bool run(QTextStream &out) const;

private:
    struct Timing {
        double writeMs = 0;
        double readMs = 0;
    };
    bool measure(const QString &folder, int points, Timing &timing) const;

    QList<int> m_lengths;
    int m_runs;
};

#endif
