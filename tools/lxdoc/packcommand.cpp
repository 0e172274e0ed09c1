#include "packcommand.h"

#include "archivesession.h"
#include "commandline.h"
#include "console.h"
#include "filetree.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

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
    const QTemporaryDir temp(QDir::tempPath() + QStringLiteral("/lxdoc-XXXXXX"));
    if (!temp.isValid())
        return Console::fail(failure.arg(folder, QStringLiteral("cannot make a temporary folder")));
    const QString packed = temp.filePath(QStringLiteral("packed.lzn"));
    ArchiveSession plugin;
    if (!plugin.isLoaded() || !plugin.pack(QFileInfo(folder).absoluteFilePath(), packed))
        return Console::fail(failure.arg(folder, plugin.errorString()));
    QString reason;
    if (!FileTree::publish(packed, archive, &reason))
        return Console::fail(failure.arg(folder, reason));
    return ExitOk;
}
