#include "packcommand.h"

#include "archivesession.h"
#include "commandline.h"
#include "console.h"
#include "document/savelock.h"
#include "filetree.h"
#include "privatefolder.h"

#include <QDir>
#include <QFileInfo>

int PackCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("pack"), QStringLiteral("Packs an unpacked lesson folder into a lesson archive."));
    line.addArgument(QStringLiteral("FOLDER"), QStringLiteral("The lesson folder (holding manifest.xml)."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The archive to write, usually *.lzn."));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString folder = line.argument(0);
    const QString archive = line.argument(1);
    const QString failure = QStringLiteral("cannot pack '%1': %2");
    if (!QFileInfo(folder).isDir())
        return Console::fail(failure.arg(folder, QStringLiteral("no such folder")));
    if (!FileTree::isLessonFolder(folder))
        return Console::fail(failure.arg(folder, QStringLiteral("not a lesson folder (no manifest.xml)")));
    const PrivateFolder temp(QDir::tempPath() + QStringLiteral("/lxdoc-XXXXXX"));
    if (!temp.isValid())
        return Console::fail(failure.arg(folder, QStringLiteral("cannot make a temporary folder")));
    const QString packed = temp.filePath(QStringLiteral("packed.lzn"));
    ArchiveSession plugin;
    if (!plugin.isLoaded() || !plugin.pack(QFileInfo(folder).absoluteFilePath(), packed))
        return Console::fail(failure.arg(folder, plugin.errorString()));
    // A host saving the same archive waits for this pack, and it for the host.
    SaveLock lock(archive);
    if (!lock.acquire(SaveLock::WaitMs))
        return Console::fail(failure.arg(folder, QStringLiteral("another save of '%1' is still running").arg(archive)));
    QString reason;
    if (!FileTree::publish(packed, archive, &reason))
        return Console::fail(failure.arg(folder, reason));
    return ExitOk;
}
