// SPDX-License-Identifier: MIT
#include "strokescaling.h"

#include "lxdoc.h"
#include "tableprinter.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>

namespace {

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double elapsedMs(const QElapsedTimer &timer)
{
    return timer.nsecsElapsed() / 1e6;
}

} // namespace

StrokeScaling::StrokeScaling(bool smoke)
    : m_lengths(smoke ? QList<int>{100, 1000} : QList<int>{1000, 10000, 100000}),
      m_runs(smoke ? 1 : 5)
{
}

bool StrokeScaling::measure(const QString &folder, int count, Timing &timing) const
{
    QList<QPointF> points;
    QList<float> widths;
    for (int i = 0; i < count; ++i) {
        points << QPointF(i * 0.37, 300 + (i % 97) * 1.13);
        widths << 1.0f + (i % 5) * 0.25f;
    }
    ILXDocument *document = get_interface();
    bool ok = document && document->newFile(folder, true);
    QList<double> writes;
    QList<double> reads;
    for (int run = 0; ok && run < m_runs; ++run) {
        ILXFrontPage *page = document->insertFrontPage(0, run + 1);
        ILXObject *stroke = page->newLXObject(QStringLiteral("polyline"));
        QElapsedTimer timer;
        timer.start();
        ok = stroke->setPoints(points, widths, true);
        writes << elapsedMs(timer);
        QList<QPointF> readPoints;
        QList<float> readWidths;
        timer.restart();
        ok = ok && stroke->getPolygonPoints(0, readPoints, readWidths);
        reads << elapsedMs(timer);
        ok = ok && readPoints.size() == count && readWidths.size() == count;
        stroke->release();
        page->release();
    }
    if (document)
        document->release(false);
    if (ok) {
        timing.writeMs = median(writes);
        timing.readMs = median(reads);
    }
    return ok;
}

bool StrokeScaling::run(QTextStream &out) const
{
    QTemporaryDir temporary;
    if (!temporary.isValid())
        return false;
    TablePrinter table(QStringLiteral("Stroke length: points and widths written and read per stroke"));
    table.setHeader({QStringLiteral("points"), QStringLiteral("write ms"), QStringLiteral("ns/point"),
                     QStringLiteral("read ms"), QStringLiteral("ns/point"),
                     QStringLiteral("write vs baseline"), QStringLiteral("read vs baseline")});
    double baseWrite = 0;
    double baseRead = 0;
    for (const int length : m_lengths) {
        Timing timing;
        if (!measure(temporary.filePath(QString::number(length)), length, timing)) {
            out << "the stroke of " << length << " points did not read back\n";
            return false;
        }
        const double writePerPoint = timing.writeMs * 1e6 / length;
        const double readPerPoint = timing.readMs * 1e6 / length;
        if (baseWrite == 0) {
            baseWrite = writePerPoint;
            baseRead = readPerPoint;
        }
        table.addRow({QString::number(length), TablePrinter::millis(timing.writeMs),
                      QString::number(writePerPoint, 'f', 0), TablePrinter::millis(timing.readMs),
                      QString::number(readPerPoint, 'f', 0), TablePrinter::ratio(writePerPoint / baseWrite),
                      TablePrinter::ratio(readPerPoint / baseRead)});
    }
    table.addNote(QStringLiteral("baseline: the time per point of the shortest stroke; linear work keeps "
                                 "every ratio near 1"));
    table.print(out);
    return true;
}
