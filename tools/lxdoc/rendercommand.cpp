// SPDX-License-Identifier: MIT
#include "rendercommand.h"

#include "commandline.h"
#include "console.h"
#include "lessonpages.h"
#include "lessonrenderer.h"
#include "lessonsource.h"
#include "outputfile.h"
#include "pagefolder.h"
#include "privatetemp.h"
#include "renderlimits.h"

#include <QDir>
#include <QSize>

int RenderCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("render"), QStringLiteral("Draws every page to OUTDIR/page-N.png, N with as many "
                                                              "digits as the page count needs."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder; '-' reads an archive from the standard input."));
    line.addArgument(QStringLiteral("OUTDIR"), QStringLiteral("The folder for the PNG files (made when missing; must be empty)."));
    line.addOption(QCommandLineOption(QStringLiteral("size"),
                                      QStringLiteral("Fit each page into WxH pixels, keeping its proportions."),
                                      QStringLiteral("WxH")));
    line.addOption(QCommandLineOption(QStringLiteral("pdf"), QStringLiteral("Also write all pages into one PDF file."),
                                      QStringLiteral("FILE")));
    line.addOption(QCommandLineOption(QStringLiteral("force"), QStringLiteral("Write into an OUTDIR that holds other files, "
                                                                              "and replace a FILE that is not a PDF.")));
    line.addOption(RenderLimits::option());
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    QString limitError;
    if (!RenderLimits::apply(line, &limitError))
        return Console::usage(QStringLiteral("%1: %2").arg(line.command(), limitError), line.usageLine());
    QSize size;
    if (line.isSet(QStringLiteral("size")) && !CommandLine::parseSize(line.value(QStringLiteral("size")), &size))
        return Console::usage(QStringLiteral("render: --size takes WIDTHxHEIGHT, for example 800x600"), line.usageLine());
    return LessonSource::withPages(line.argument(0), [&](const LessonPages &pages) {
        return renderPages(pages, {line.argument(1), line.value(QStringLiteral("pdf")), line.value(QStringLiteral("size")),
                                   line.isSet(QStringLiteral("force"))});
    });
}

int RenderCommand::renderPages(const LessonPages &pages, const Outputs &outputs)
{
    const QString failure = QStringLiteral("cannot render: %1");
    PageFolder folder(outputs.folder, pages.count(), outputs.force);
    OutputFile pdf(outputs.pdf, OutputFile::Pdf, outputs.force);
    if (!folder.prepare())
        return Console::fail(failure.arg(folder.error()));
    if (!outputs.pdf.isEmpty() && !pdf.check())
        return Console::fail(failure.arg(pdf.error()));
    // Pages are drawn in a private folder and moved into place only when
    // every one of them could be drawn.
    const PrivateTemp temp;
    if (!temp.isValid())
        return Console::fail(failure.arg(QStringLiteral("cannot make a temporary folder: %1").arg(temp.errorString())));
    LessonRenderer renderer(pages);
    QSize box;
    if (CommandLine::parseSize(outputs.size, &box))
        renderer.setBox(box);
    QStringList drawn;
    QStringList written;
    if (!renderer.renderImages(temp.filePath(QStringLiteral("pages")), &drawn))
        return Console::fail(failure.arg(renderer.error()));
    const QString drawnPdf = temp.filePath(QStringLiteral("pages.pdf"));
    if (!outputs.pdf.isEmpty() && !renderer.renderPdf(drawnPdf))
        return Console::fail(failure.arg(renderer.error()));
    if (!folder.fill(drawn, &written))
        return Console::fail(failure.arg(folder.error()));
    if (!outputs.pdf.isEmpty() && !pdf.publish(drawnPdf))
        return Console::fail(failure.arg(pdf.error()));
    Console::note(QStringLiteral("rendered %1 page(s) into %2%3").arg(written.size()).arg(QDir::toNativeSeparators(outputs.folder))
                      .arg(outputs.pdf.isEmpty() ? QString() : QStringLiteral(" and %1").arg(outputs.pdf)));
    return ExitOk;
}
