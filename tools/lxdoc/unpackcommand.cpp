// SPDX-License-Identifier: MIT
#include "unpackcommand.h"

#include "commandline.h"
#include "console.h"
#include "filetree.h"
#include "lessonsource.h"
#include "privatefolder.h"

#include <QDir>
#include <QFileInfo>

int UnpackCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("unpack"), QStringLiteral("Unpacks a lesson archive into a new or empty folder."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive (.lzn or .resitem); '-' reads it from the standard input."));
    line.addArgument(QStringLiteral("FOLDER"), QStringLiteral("The folder to fill; it must be empty or missing."));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString archive = line.argument(0);
    const QString folder = line.argument(1);
    if (!LessonSource::isStandardStream(archive) && QFileInfo(archive).isDir())
        return Console::fail(QStringLiteral("cannot unpack '%1': it is a folder, not an archive").arg(archive));
    if (!FileTree::isEmptyOrMissing(folder))
        return Console::fail(QStringLiteral("cannot unpack into '%1': it exists and is not an empty folder").arg(folder));
    LessonSource source(archive);
    Console::progress(1, 2, QStringLiteral("unpacking"));
    if (!source.prepareReadOnly())
        return Console::fail(source.error());
    // Built beside the target and moved into place whole, so a failure never
    // leaves part of a lesson in the user's folder.
    // "out/" and "./out" name the same folder; the staging folder is named
    // after its last step.
    const QFileInfo target(QDir::cleanPath(QDir::current().absoluteFilePath(folder)));
    const QString failure = QStringLiteral("cannot unpack into '%1': %2");
    if (!QDir().mkpath(target.absolutePath()))
        return Console::fail(failure.arg(folder, QStringLiteral("cannot make its parent folder")));
    PrivateFolder staging(target.absolutePath() + QStringLiteral("/.") + target.fileName() + QStringLiteral(".XXXXXX"));
    if (!staging.isValid())
        return Console::fail(failure.arg(folder, QStringLiteral("cannot make a folder beside it")));
    Console::progress(2, 2, QStringLiteral("copying"));
    QString reason;
    if (!FileTree::copy(source.folder(), staging.path(), &reason))
        return Console::fail(failure.arg(folder, reason));
    if (!staging.moveTo(target.absoluteFilePath()))
        return Console::fail(failure.arg(folder, QStringLiteral("cannot move the unpacked lesson into place")));
    Console::endProgress();
    return ExitOk;
}
