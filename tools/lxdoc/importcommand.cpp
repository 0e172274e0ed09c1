// SPDX-License-Identifier: MIT
#include "importcommand.h"

#include "commandline.h"
#include "console.h"
#include "importsources.h"
#include "lessonimporter.h"
#include "lessonsource.h"
#include "lessonwriter.h"

#include <QDir>
#include <QFileInfo>

namespace {

// Below this text is unreadable; above it one page no longer fits in memory.
const int kMinDpi = 36;
const int kMaxDpi = 600;

int usage(const CommandLine &line, const QString &message)
{
    return Console::usage(QStringLiteral("import: %1").arg(message), line.usageLine());
}

} // namespace

int ImportCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("import"),
                     QStringLiteral("Makes a lesson from PDF files and pictures: one page per PDF page or picture, "
                                    "the picture filling the page, locked."));
    line.addArgument(QStringLiteral("SOURCE..."),
                     QStringLiteral("A PDF file, a picture, or a folder of pictures (taken in natural name order)."));
    line.addArgument(QStringLiteral("OUTPUT"), QStringLiteral("The lesson archive to write (.lzn)."));
    line.allowMore();
    line.addOption(QCommandLineOption(QStringLiteral("size"),
                                      QStringLiteral("Fit each page into WxH units (default 1024x1024)."),
                                      QStringLiteral("WxH")));
    line.addOption(QCommandLineOption(QStringLiteral("dpi"),
                                      QStringLiteral("Resolution PDF pages are drawn at (default 150)."),
                                      QStringLiteral("N"), QStringLiteral("150")));
    line.addOption(QCommandLineOption(QStringLiteral("append"),
                                      QStringLiteral("Add the pages after those of LESSON (which is left unchanged)."),
                                      QStringLiteral("LESSON")));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    QSize box(1024, 1024);
    if (line.isSet(QStringLiteral("size")) && !CommandLine::parseSize(line.value(QStringLiteral("size")), &box))
        return usage(line, QStringLiteral("--size takes WIDTHxHEIGHT, for example 1024x768"));
    bool isNumber = false;
    const int dpi = line.value(QStringLiteral("dpi")).toInt(&isNumber);
    if (!isNumber || dpi < kMinDpi || dpi > kMaxDpi)
        return usage(line, QStringLiteral("--dpi takes a number from %1 to %2").arg(kMinDpi).arg(kMaxDpi));
    QStringList paths = line.arguments();
    const QString output = paths.takeLast();
    if (!LessonSource::isArchiveName(output))
        return usage(line, QStringLiteral("the output must be a lesson archive (.lzn or .resitem)"));

    const QString append = line.value(QStringLiteral("append"));
    // The appended lesson stays as it was; the pages go into a new archive.
    if (!append.isEmpty() && QFileInfo(append).absoluteFilePath() == QFileInfo(output).absoluteFilePath())
        return usage(line, QStringLiteral("OUTPUT must be another file than the lesson given to --append"));

    ImportSources sources;
    if (!sources.collect(paths))
        return Console::fail(sources.error());
    LessonWriter writer(output);
    if (!(append.isEmpty() ? writer.startNew() : writer.startFrom(append)))
        return Console::fail(writer.error());
    LessonImporter importer(writer);
    importer.setBox(box);
    importer.setDpi(dpi);
    if (!importer.import(sources) || !writer.finish())
        return Console::fail(writer.error());
    Console::out(QStringLiteral("imported %1 page(s) into %2").arg(sources.pageCount()).arg(QDir::toNativeSeparators(output)));
    return ExitOk;
}
