// SPDX-License-Identifier: MIT
#include "dumpcommand.h"

#include "commandline.h"
#include "console.h"
#include "lessondumper.h"
#include "lessonpages.h"
#include "lessonsource.h"

#include <QJsonArray>
#include <QJsonDocument>

int DumpCommand::run(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("dump"), QStringLiteral("Shows the objects of a lesson's pages."));
    line.addArgument(QStringLiteral("FILE"), QStringLiteral("The lesson archive or folder; '-' reads an archive from the standard input."));
    line.addOption(QCommandLineOption(QStringLiteral("page"), QStringLiteral("Only page N (counting from 1)."), QStringLiteral("N")));
    line.addOption(QCommandLineOption(QStringLiteral("json"), QStringLiteral("Write JSON instead of a tree.")));
    line.addOption(QCommandLineOption(QStringLiteral("records"), QStringLiteral("Also show the recorded commands.")));
    const int status = line.parse(arguments);
    if (status >= 0)
        return status;
    bool ok = true;
    const int page = line.isSet(QStringLiteral("page")) ? line.value(QStringLiteral("page")).toInt(&ok) : 0;
    if (!ok || page < 0 || (line.isSet(QStringLiteral("page")) && page == 0))
        return Console::usage(QStringLiteral("dump: --page takes a page number from 1 on"), line.usageLine());
    return LessonSource::withPages(line.argument(0), [&](const LessonPages &pages) {
        LessonDumper dumper(pages);
        dumper.setRecords(line.isSet(QStringLiteral("records")));
        QJsonArray read;
        QString error;
        if (!dumper.dump(page, &read, &error))
            return Console::fail(QStringLiteral("cannot dump '%1': %2").arg(line.argument(0), error));
        const QJsonArray result = Console::printable(read).toArray();
        if (line.isSet(QStringLiteral("json")))
            Console::out(QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Indented)).trimmed());
        else
            Console::out(LessonDumper::treeLines(result).join(QLatin1Char('\n')));
        return int(ExitOk);
    });
}
