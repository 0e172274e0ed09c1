#include "archivecommands.h"

#include "archivesession.h"
#include "commandline.h"
#include "console.h"
#include "filetree.h"
#include "lessonsource.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

int ArchiveCommands::pack(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("pack"), QStringLiteral("Packs an unpacked lesson folder into a lesson archive."));
    line.addArgument(QStringLiteral("FOLDER"), QStringLiteral("The lesson folder (holding manifest.xml)."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The archive to write, usually *.lzn."));
    const int status = line.parse(arguments);
    return status >= 0 ? status : packFolder(line.argument(0), line.argument(1));
}

int ArchiveCommands::unpack(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("unpack"), QStringLiteral("Unpacks a lesson archive into a new or empty folder."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive (.lzn or .resitem)."));
    line.addArgument(QStringLiteral("FOLDER"), QStringLiteral("The folder to fill; it must be empty or missing."));
    const int status = line.parse(arguments);
    return status >= 0 ? status : unpackArchive(line.argument(0), line.argument(1));
}

int ArchiveCommands::packFolder(const QString &folder, const QString &archive)
{
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

int ArchiveCommands::unpackArchive(const QString &archive, const QString &folder)
{
    if (QFileInfo(archive).isDir())
        return Console::fail(QStringLiteral("cannot unpack '%1': it is a folder, not an archive").arg(archive));
    if (!FileTree::isEmptyOrMissing(folder))
        return Console::fail(QStringLiteral("cannot unpack into '%1': it exists and is not an empty folder").arg(folder));
    LessonSource source(archive);
    if (!source.prepareReadOnly())
        return Console::fail(source.error());
    QString reason;
    if (!FileTree::copy(source.folder(), folder, &reason))
        return Console::fail(QStringLiteral("cannot unpack into '%1': %2").arg(folder, reason));
    return ExitOk;
}
