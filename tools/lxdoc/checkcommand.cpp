// SPDX-License-Identifier: MIT
#include "checkcommand.h"

#include "commandline.h"
#include "console.h"
#include "filetree.h"
#include "lessonchecker.h"
#include "lessonrepair.h"
#include "lessonsource.h"

#include <QDir>
#include <QFileInfo>

int CheckCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("check"), QStringLiteral("Checks a lesson: manifest lists against the files present, "
                                                             "unreadable or malformed page and record files, missing "
                                                             "and unlisted resources. Exit status 0 only when clean. "
                                                             "With --fix, repairs a lesson folder in place first "
                                                             "(exit status 3 when something had to be given up)."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder (only read without --fix); "
                                                            "'-' reads an archive from the standard input."));
    const QCommandLineOption fixOption(QStringLiteral("fix"),
                                       QStringLiteral("Rebuild or complete the manifest from the files present, cut "
                                                      "entries naming missing files, set unreadable page files aside."));
    const QCommandLineOption noBackup(QStringLiteral("no-backup"), QStringLiteral("With --fix, keep no FILE.bak copy."));
    line.addOption(fixOption);
    line.addOption(noBackup);
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString path = line.argument(0);
    if (line.isSet(fixOption.names().first()))
        return fix(path, !line.isSet(noBackup.names().first()));
    LessonSource source(path);
    Console::progress(1, 2, QStringLiteral("reading"));
    if (!source.prepareReadOnly())
        return Console::fail(source.error());
    Console::progress(2, 2, QStringLiteral("checking"));
    return check(path, source.folder());
}

int CheckCommand::check(const QString &path, const QString &folder)
{
    LessonChecker checker(folder);
    checker.run();
    Console::endProgress();
    // Each finding is one line, whatever the names in it hold.
    for (const QString &problem : checker.problems())
        Console::out(Console::printable(QStringLiteral("%1: %2").arg(path, problem)));
    for (const QString &note : checker.notes())
        Console::note(Console::printable(QStringLiteral("%1: note: %2").arg(path, note)));
    const int count = int(checker.problems().size());
    const QString name = Console::printable(path);
    Console::out(count == 0 ? QStringLiteral("%1: no problems found").arg(name)
                            : QStringLiteral("%1: %2 problem(s) found").arg(name).arg(count));
    return count == 0 ? ExitOk : ExitFailure;
}

int CheckCommand::fix(const QString &path, bool backup)
{
    const QString failure = QStringLiteral("cannot fix '%1': %2");
    if (!QFileInfo(path).isDir())
        return Console::fail(failure.arg(path, QStringLiteral("--fix works on a lesson folder ('lxdoc salvage' "
                                                              "rescues an archive)")));
    if (!FileTree::isLessonFolder(path))
        return Console::fail(failure.arg(path, QStringLiteral("not a lesson folder (no manifest.xml)")));
    const QString copy = QDir::cleanPath(QFileInfo(path).absoluteFilePath()) + QStringLiteral(".bak");
    if (backup && QFileInfo::exists(copy))
        return Console::fail(failure.arg(path, QStringLiteral("'%1' already exists (move it away or use --no-backup)").arg(copy)));
    QString reason;
    if (backup && !FileTree::copy(path, copy, &reason))
        return Console::fail(failure.arg(path, reason));
    LessonRepair repair(path);
    if (!repair.run())
        return Console::fail(failure.arg(path, repair.errorString()));
    for (const QString &line : repair.repairs())
        Console::out(Console::printable(QStringLiteral("%1: fixed: %2").arg(path, line)));
    for (const QString &line : repair.losses())
        Console::out(Console::printable(QStringLiteral("%1: lost: %2").arg(path, line)));
    const int checked = check(path, path);
    return checked == ExitOk && !repair.losses().isEmpty() ? int(ExitPartial) : checked;
}
