#include "checkcommand.h"

#include "commandline.h"
#include "console.h"
#include "lessonchecker.h"
#include "lessonsource.h"

int CheckCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("check"), QStringLiteral("Checks a lesson: manifest lists against the files present, "
                                                             "unreadable or malformed page and record files, missing "
                                                             "and unlisted resources. Exit status 0 only when clean."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder (only read)."));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString path = line.argument(0);
    LessonSource source(path);
    if (!source.prepareReadOnly())
        return Console::fail(source.error());
    LessonChecker checker(source.folder());
    checker.run();
    // Each finding is one line, whatever the names in it hold.
    for (const QString &problem : checker.problems())
        Console::out(Console::printable(QStringLiteral("%1: %2").arg(path, problem)));
    for (const QString &note : checker.notes())
        Console::out(Console::printable(QStringLiteral("%1: note: %2").arg(path, note)));
    const int count = int(checker.problems().size());
    const QString name = Console::printable(path);
    Console::out(count == 0 ? QStringLiteral("%1: no problems found").arg(name)
                            : QStringLiteral("%1: %2 problem(s) found").arg(name).arg(count));
    return count == 0 ? ExitOk : ExitFailure;
}
