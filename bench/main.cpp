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
    options.dataFolder = parser.value(QStringLiteral("dir"));
    options.growthOnly = parser.isSet(QStringLiteral("growth-only"));
    if (parser.isSet(QStringLiteral("no-growth")))
        return options;
    if (smoke) {
        options.growthPages = {5, 10};
        return options;
    }
    for (const QString &size : parser.value(QStringLiteral("growth")).split(QLatin1Char(','))) {
        const int pages = size.trimmed().toInt();
        if (pages > 0)
            options.growthPages << pages;
    }
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
        {QStringLiteral("growth"),
         QStringLiteral("Page counts of the growth table; 25,100,400,1000,2000 takes long on a disk."),
         QStringLiteral("list"), QStringLiteral("25,100,400")},
        {QStringLiteral("growth-only"), QStringLiteral("Only the growth table.")},
        {QStringLiteral("dir"),
         QStringLiteral("Folder for the generated data (the document temp root stays beside the executable)."),
         QStringLiteral("folder")},
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
    if (parser.isSet(QStringLiteral("growth-only")))
        return 0;
    out << '\n';
    return StrokeScaling(parser.isSet(QStringLiteral("smoke"))).run(out) ? 0 : 1;
}
