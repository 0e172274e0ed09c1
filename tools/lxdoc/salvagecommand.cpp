// SPDX-License-Identifier: MIT
#include "salvagecommand.h"

#include "commandline.h"
#include "console.h"
#include "lessonoutput.h"
#include "lessonrescue.h"
#include "privatetemp.h"
#include "salvagereader.h"


namespace {

int report(const SalvageReader &reader, const LessonRescue &rescue, const QString &output)
{
    Console::out(QStringLiteral("entries read: %1, entries lost: %2").arg(reader.kept().size()).arg(reader.lost().size()));
    for (const QString &line : reader.lost())
        Console::out(QStringLiteral("  lost: %1").arg(line));
    if (reader.endsEarly())
        Console::out(QStringLiteral("  lost: the archive's directory is missing (cut short?): "
                                    "entries after the last one read cannot be known"));
    for (const QString &line : rescue.repairs())
        Console::out(QStringLiteral("  repaired: %1").arg(line));
    for (const QString &line : rescue.losses())
        Console::out(QStringLiteral("  lost: %1").arg(line));
    Console::out(QStringLiteral("%1: %2 page(s) recovered").arg(output).arg(rescue.pageCount()));
    const bool partial = !reader.lost().isEmpty() || reader.endsEarly() || !rescue.losses().isEmpty();
    return partial ? ExitPartial : ExitOk;
}

} // namespace

int SalvageCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("salvage"),
                     QStringLiteral("Reads every entry that can still be read from a damaged lesson archive (also "
                                    "without its directory), rebuilds what is missing and writes a new lesson. "
                                    "Exit status 3 when only part of the lesson came back."));
    line.addArgument(QStringLiteral("BROKEN"), QStringLiteral("The damaged archive (only read)."));
    line.addArgument(QStringLiteral("OUTPUT"), QStringLiteral("The lesson archive to write (*.lzn)."));
    const QCommandLineOption force(QStringLiteral("force"), QStringLiteral("Replace OUTPUT if it exists."));
    line.addOption(force);
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    const QString broken = line.argument(0);
    const LessonOutput output(line.argument(1), line.isSet(force.names().first()));
    const QString failure = QStringLiteral("cannot salvage '%1': %2");
    QString reason;
    if (!output.isUsable(&reason))
        return Console::fail(failure.arg(broken, reason));
    const PrivateTemp temp;
    if (!temp.isValid())
        return Console::fail(failure.arg(broken, QStringLiteral("cannot make a temporary folder")));
    SalvageReader reader(broken);
    const bool read = reader.readInto(temp.path());
    Console::endProgress();
    if (!read)
        return Console::fail(failure.arg(broken, reader.errorString()));
    LessonRescue rescue(temp.path(), false);
    if (!rescue.writeTo(output))
        return Console::fail(failure.arg(broken, rescue.error()));
    return report(reader, rescue, line.argument(1));
}
