// SPDX-License-Identifier: MIT
#include "democommand.h"

#include "commandline.h"
#include "console.h"
#include "demolesson.h"
#include "lessoninfo.h"
#include "lessonpages.h"
#include "lessonsource.h"
#include "rendercommand.h"

#include <QDir>
#include <QFileInfo>

int DemoCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("demo"), QStringLiteral("Builds a sample lesson, reopens it, prints its summary "
                                                            "and renders its pages into FILE's folder."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The archive to write (default: sample.lzn)."), true);
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString file = line.argument(0, QStringLiteral("sample.lzn"));
    DemoLesson lesson(file);
    if (!lesson.create())
        return Console::fail(lesson.error());
    const QFileInfo info(file);
    const QString folder = info.dir().filePath(info.completeBaseName() + QStringLiteral("-pages"));
    return LessonSource::withPages(file, [&](const LessonPages &pages) {
        for (const QString &text : LessonInfo(pages, file).lines())
            Console::out(text);
        // The page folder is the demo's own: a new run replaces its pages.
        return RenderCommand::renderPages(pages, {folder, QString(), QString(), true});
    });
}
