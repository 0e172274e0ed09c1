// SPDX-License-Identifier: MIT
#include "packcommand.h"

#include "archivesession.h"
#include "commandline.h"
#include "console.h"
#include "document/savelock.h"
#include "filetree.h"
#include "outputfile.h"
#include "privatetemp.h"

#include <QFileInfo>

int PackCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("pack"), QStringLiteral("Packs an unpacked lesson folder into a lesson archive."));
    line.addArgument(QStringLiteral("FOLDER"), QStringLiteral("The lesson folder (holding manifest.xml)."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The archive to write, usually *.lzn; '-' writes it to the standard output."));
    line.addOption(QCommandLineOption(QStringLiteral("force"), QStringLiteral("Replace FILE even when it is not a lesson archive.")));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString folder = line.argument(0);
    const QString failure = QStringLiteral("cannot pack '%1': %2");
    if (!QFileInfo(folder).isDir())
        return Console::fail(failure.arg(folder, QStringLiteral("no such folder")));
    if (!FileTree::isLessonFolder(folder))
        return Console::fail(failure.arg(folder, QStringLiteral("not a lesson folder (no manifest.xml)")));
    const QString archive = line.argument(1);
    OutputFile output(archive, OutputFile::Archive, line.isSet(QStringLiteral("force")));
    if (!output.check())
        return Console::fail(output.error());
    const PrivateTemp temp;
    if (!temp.isValid())
        return Console::fail(failure.arg(folder, QStringLiteral("cannot make a temporary folder: %1").arg(temp.errorString())));
    const QString packed = temp.filePath(QStringLiteral("packed.lzn"));
    ArchiveSession plugin;
    Console::progress(1, 2, QStringLiteral("packing"));
    if (!plugin.isLoaded() || !plugin.pack(QFileInfo(folder).absoluteFilePath(), packed))
        return Console::fail(failure.arg(folder, plugin.errorString()));
    Console::progress(2, 2, QStringLiteral("writing"));
    // A host saving the same archive waits for this pack, and it for the host.
    SaveLock lock(archive);
    if (!output.isStandardOutput() && !lock.acquire(SaveLock::WaitMs))
        return Console::fail(failure.arg(folder, QStringLiteral("another save of '%1' is still running").arg(archive)));
    if (!output.publish(packed))
        return Console::fail(output.error());
    Console::endProgress();
    return ExitOk;
}
