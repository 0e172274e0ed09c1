// SPDX-License-Identifier: MIT
// lxdoc-bench: whole-lesson work through the library, side by side with
// Info-ZIP and plain QDom on the same files. See bench/README.md.

#include "measurements.h"
#include "strokescaling.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTextStream>

#include <cmath>

namespace {

Measurements::Options parseOptions(const QCommandLineParser &parser)
{
    Measurements::Options options;
    const bool smoke = parser.isSet(QStringLiteral("smoke"));
    options.smoke = smoke;
    options.shape = smoke ? LessonShape::smoke() : LessonShape();
    options.shape.seed = parser.value(QStringLiteral("seed")).toUInt();
    const double scale = parser.value(QStringLiteral("scale")).toDouble();
    if (scale > 0)
        options.shape.pages = qMax(1, int(std::lround(options.shape.pages * scale)));
    const int light = parser.value(QStringLiteral("light")).toInt();
    if (light > 0)
        options.shape = LessonShape::light(light, options.shape.seed);
    options.runs = smoke ? 1 : qMax(1, parser.value(QStringLiteral("runs")).toInt());
    if (parser.isSet(QStringLiteral("runs")))
        options.runs = qMax(1, parser.value(QStringLiteral("runs")).toInt());
    if (!parser.isSet(QStringLiteral("no-growth")))
        options.growthPages = smoke ? QList<int>{5, 10} : QList<int>{25, 50, 100, 200, 400};
    return options;
}

} // namespace

int main(int argc, char *argv[])
{
    // Building a lesson renders a page preview, which needs a GUI platform
    // even on a machine without a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Times whole-lesson work against zip/unzip and plain QDom."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("seed"), QStringLiteral("Seed of the synthetic lesson."), QStringLiteral("n"),
         QStringLiteral("1")},
        {QStringLiteral("scale"), QStringLiteral("Multiplies the page count."), QStringLiteral("factor"),
         QStringLiteral("1")},
        {QStringLiteral("runs"), QStringLiteral("Runs per figure (median)."), QStringLiteral("n"),
         QStringLiteral("5")},
        {QStringLiteral("smoke"), QStringLiteral("A tiny lesson and one run, for CTest.")},
        {QStringLiteral("no-growth"), QStringLiteral("Leave out the growth table.")},
        {QStringLiteral("light"), QStringLiteral("Main table on n light pages (walk memory at scale)."),
         QStringLiteral("n")},
        {QStringLiteral("strokes-only"), QStringLiteral("Only the stroke length table.")},
    });
    QCommandLineOption walk(QStringLiteral("measure-walk"), QString(), QStringLiteral("archive"));
    QCommandLineOption walkMode(QStringLiteral("walk-mode"), QString(), QStringLiteral("mode"));
#if QT_VERSION >= QT_VERSION_CHECK(5, 8, 0)
    walk.setFlags(QCommandLineOption::HiddenFromHelp);
    walkMode.setFlags(QCommandLineOption::HiddenFromHelp);
#endif
    parser.addOption(walk);
    parser.addOption(walkMode);
    parser.process(app);

    if (parser.isSet(walk))
        return Measurements::measureWalkChild(parser.value(walk), parser.value(walkMode));

    QTextStream out(stdout);
    Measurements measurements(parseOptions(parser));
    if (!parser.isSet(QStringLiteral("strokes-only")) && !measurements.run(out))
        return 1;
    out << '\n';
    return StrokeScaling(parser.isSet(QStringLiteral("smoke"))).run(out) ? 0 : 1;
}
