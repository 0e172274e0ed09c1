#include "rendercommand.h"

#include "commandline.h"
#include "console.h"
#include "lessonpages.h"
#include "lessonrenderer.h"
#include "lessonsource.h"

#include <QDir>
#include <QSize>

int RenderCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("render"), QStringLiteral("Draws every page to OUTDIR/page-N.png."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder."));
    line.addArgument(QStringLiteral("OUTDIR"), QStringLiteral("The folder for the PNG files (made when missing)."));
    line.addOption(QCommandLineOption(QStringLiteral("size"),
                                      QStringLiteral("Fit each page into WxH pixels, keeping its proportions."),
                                      QStringLiteral("WxH")));
    line.addOption(QCommandLineOption(QStringLiteral("pdf"), QStringLiteral("Also write all pages into one PDF file."),
                                      QStringLiteral("FILE")));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    QSize size;
    if (line.isSet(QStringLiteral("size")) && !CommandLine::parseSize(line.value(QStringLiteral("size")), &size))
        return Console::fail(QStringLiteral("render: --size takes WIDTHxHEIGHT, for example 800x600"), ExitUsage);
    return LessonSource::withPages(line.argument(0), [&](const LessonPages &pages) {
        return renderPages(pages, line.argument(1), line.value(QStringLiteral("pdf")), line.value(QStringLiteral("size")));
    });
}

int RenderCommand::renderPages(const LessonPages &pages, const QString &folder, const QString &pdf, const QString &size)
{
    LessonRenderer renderer(pages);
    QSize box;
    if (CommandLine::parseSize(size, &box))
        renderer.setBox(box);
    QStringList written;
    if (!renderer.renderImages(folder, &written))
        return Console::fail(QStringLiteral("cannot render: %1").arg(renderer.error()));
    if (!pdf.isEmpty() && !renderer.renderPdf(pdf))
        return Console::fail(QStringLiteral("cannot render: %1").arg(renderer.error()));
    Console::out(QStringLiteral("rendered %1 page(s) into %2%3").arg(written.size()).arg(QDir::toNativeSeparators(folder))
                     .arg(pdf.isEmpty() ? QString() : QStringLiteral(" and %1").arg(pdf)));
    return ExitOk;
}
