// SPDX-License-Identifier: MIT
#include "recovercommand.h"

#include "commandline.h"
#include "console.h"
#include "filetree.h"
#include "lessonoutput.h"
#include "lessonrescue.h"
#include "temproots.h"
#include "workingfolder.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

const QString kRemove = QStringLiteral("remove");
const QString kClean = QStringLiteral("clean");
const QString kOlderThan = QStringLiteral("older-than");
const QString kArchives = QStringLiteral("archives");
const QString kForce = QStringLiteral("force");

void addOptions(CommandLine &line)
{
    line.addOption({kForce, QStringLiteral("Replace OUTPUT if it exists.")});
    line.addOption({kRemove, QStringLiteral("Remove the working folder FOLDER (refused while a process uses it).")});
    line.addOption({kClean, QStringLiteral("Remove every working folder under the temp root that no process uses "
                                           "and whose newest file is older than --older-than days.")});
    line.addOption({kOlderThan, QStringLiteral("Days for --clean (default 7)."), QStringLiteral("DAYS"),
                    QStringLiteral("7")});
    line.addOption({kArchives, QStringLiteral("Where to look for the archives the folders came from "
                                              "(default: the current folder)."), QStringLiteral("DIR"),
                    QStringLiteral(".")});
}

bool removeFolder(const WorkingFolder &folder, QString *reason)
{
    const qint64 pid = folder.holder();
    if (pid != 0)
        *reason = QStringLiteral("in use by process %1").arg(pid);
    else if (!QDir(folder.path()).removeRecursively())
        *reason = QStringLiteral("cannot remove all of it");
    else
        return true;
    return false;
}

} // namespace

int RecoverCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("recover"),
                     QStringLiteral("Without OUTPUT, lists the working folders that hosts left under their temp root "
                                    "(default: the temp root beside lxdoc, and LXDOC_TEMP_ROOT when set). With OUTPUT, "
                                    "repairs a copy of FOLDER and packs it into a lesson; exit status 3 when part of "
                                    "it is missing. The folder itself is never changed."));
    line.addArgument(QStringLiteral("FOLDER"), QStringLiteral("A temp root to list, or the working folder to recover."), true);
    line.addArgument(QStringLiteral("OUTPUT"), QStringLiteral("The lesson archive to write (*.lzn)."), true);
    addOptions(line);
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString folder = line.argument(0);
    const QStringList roots = folder.isEmpty() ? TempRoots::candidates() : QStringList{folder};
    if (line.isSet(kRemove))
        return folder.isEmpty() ? Console::usage(QStringLiteral("recover: --remove needs FOLDER"), line.usageLine()) : remove(folder);
    if (line.isSet(kClean)) {
        bool isNumber = false;
        const int days = line.value(kOlderThan).toInt(&isNumber);
        if (!isNumber || days < 0)
            return Console::usage(QStringLiteral("recover: --older-than takes a number of days"), line.usageLine());
        return clean(roots, days);
    }
    if (line.arguments().size() == 2)
        return recover(folder, line.argument(1), line.isSet(kForce));
    return list(roots, line.value(kArchives));
}

int RecoverCommand::list(const QStringList &roots, const QString &archiveFolder)
{
    for (const QString &root : roots) {
        // A working folder named by itself is described alone.
        const QList<WorkingFolder> folders = FileTree::isLessonFolder(root)
            ? QList<WorkingFolder>{WorkingFolder(root, archiveFolder)}
            : WorkingFolder::scan(root, archiveFolder);
        if (folders.isEmpty())
            Console::out(QStringLiteral("%1: no working folders").arg(root));
        for (const WorkingFolder &folder : folders)
            Console::out(folder.describe());
    }
    return ExitOk;
}

int RecoverCommand::recover(const QString &folder, const QString &output, bool force)
{
    const QString failure = QStringLiteral("cannot recover '%1': %2");
    if (!FileTree::isLessonFolder(folder))
        return Console::fail(failure.arg(folder, QStringLiteral("not a lesson working folder (no manifest.xml)")));
    const LessonOutput target(output, force);
    QString reason;
    if (!target.isUsable(&reason))
        return Console::fail(failure.arg(folder, reason));
    LessonRescue rescue(folder, true);
    if (!rescue.writeTo(target))
        return Console::fail(failure.arg(folder, rescue.error()));
    for (const QString &line : rescue.repairs())
        Console::out(QStringLiteral("  repaired: %1").arg(line));
    for (const QString &line : rescue.losses())
        Console::out(QStringLiteral("  lost: %1").arg(line));
    Console::out(QStringLiteral("%1: %2 page(s) recovered").arg(output).arg(rescue.pageCount()));
    return rescue.losses().isEmpty() ? ExitOk : ExitPartial;
}

int RecoverCommand::remove(const QString &folder)
{
    const QString failure = QStringLiteral("cannot remove '%1': %2");
    // Only a host's own folders go: never a lesson folder a user keeps.
    if (!FileTree::isLessonFolder(folder) || !TempRoots::holds(folder))
        return Console::fail(failure.arg(folder, QStringLiteral("not a working folder under a temp root")));
    QString reason;
    if (!removeFolder(WorkingFolder(folder, QString()), &reason))
        return Console::fail(failure.arg(folder, reason));
    Console::out(QStringLiteral("removed %1").arg(folder));
    return ExitOk;
}

int RecoverCommand::clean(const QStringList &roots, int days)
{
    const QDateTime limit = QDateTime::currentDateTime().addDays(-days);
    int status = ExitOk;
    for (const QString &root : roots) {
        // Most of the places a temp root may lie do not exist on a machine.
        if (!QFileInfo::exists(root))
            continue;
        // A folder of lessons a user keeps looks the same as a temp root.
        if (!TempRoots::isRoot(root))
            return Console::fail(QStringLiteral("cannot clean '%1': not a host's temp root "
                                                "(LXDOC_TEMP_ROOT names another one)").arg(root));
        for (const WorkingFolder &folder : WorkingFolder::scan(root, QString())) {
            if (folder.newest().isValid() && folder.newest() > limit)
                continue;
            QString reason;
            if (removeFolder(folder, &reason))
                Console::out(QStringLiteral("removed %1").arg(folder.path()));
            else
                status = Console::fail(QStringLiteral("cannot remove '%1': %2").arg(folder.path(), reason));
        }
    }
    return status;
}
