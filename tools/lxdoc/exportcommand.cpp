// SPDX-License-Identifier: MIT
#include "exportcommand.h"

#include "commandline.h"
#include "console.h"
#include "filetree.h"
#include "lessonpages.h"
#include "lessonsource.h"
#include "renderlimits.h"
#include "webexporter.h"

#include <QDir>
#include <QFileInfo>

int ExportCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("export"),
                     QStringLiteral("Writes a lesson as a web lesson (OUTDIR/index.html) that opens from the file "
                                    "system in any browser, with no network."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder."));
    line.addArgument(QStringLiteral("OUTDIR"), QStringLiteral("A new or empty folder for the web lesson."));
    line.addOption(QCommandLineOption(QStringLiteral("html"), QStringLiteral("Export as a web lesson (the only form).")));
    line.addOption(RenderLimits::option());
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    QString limitError;
    if (!RenderLimits::apply(line, &limitError))
        return Console::usage(QStringLiteral("%1: %2").arg(line.command(), limitError), line.usageLine());
    if (!line.isSet(QStringLiteral("html")))
        return Console::usage(QStringLiteral("export: name the form, --html"), line.usageLine());
    const QString folder = line.argument(1);
    if (!FileTree::isEmptyOrMissing(folder))
        return Console::fail(QStringLiteral("cannot export into '%1': the folder is not empty").arg(folder));
    const QString file = line.argument(0);
    return LessonSource::withPages(file, [&](const LessonPages &pages) {
        WebExporter exporter(pages, folder);
        if (!exporter.write(QFileInfo(file).completeBaseName()))
            return Console::fail(QStringLiteral("cannot export '%1': %2").arg(file, exporter.error()));
        Console::out(QStringLiteral("exported %1 page(s) into %2").arg(pages.count())
                         .arg(QDir::toNativeSeparators(QDir(folder).filePath(QStringLiteral("index.html")))));
        return int(ExitOk);
    });
}
