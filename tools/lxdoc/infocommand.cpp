// SPDX-License-Identifier: MIT
#include "infocommand.h"

#include "commandline.h"
#include "console.h"
#include "lessoninfo.h"
#include "lessonpages.h"
#include "lessonsource.h"

int InfoCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("info"), QStringLiteral("Shows the pages of a lesson in order (id, title, size, "
                                                            "objects, recorded commands) and its resources."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder; '-' reads an archive from the standard input."));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString path = line.argument(0);
    return LessonSource::withPages(path, [&](const LessonPages &pages) {
        for (const QString &text : LessonInfo(pages, path).lines())
            Console::out(Console::printable(text));
        return int(ExitOk);
    });
}
