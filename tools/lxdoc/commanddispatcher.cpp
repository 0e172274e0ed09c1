// SPDX-License-Identifier: MIT
#include "commanddispatcher.h"

#include "checkcommand.h"
#include "console.h"
#include "democommand.h"
#include "dumpcommand.h"
#include "exportcommand.h"
#include "importcommand.h"
#include "infocommand.h"
#include "limitoption.h"
#include "packcommand.h"
#include "recovercommand.h"
#include "rendercommand.h"
#include "salvagecommand.h"
#include "unpackcommand.h"

#include <initializer_list>

namespace {

struct Command {
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

// One row per command, in the order the overview lists them.
const Command commands[] = {
    {"demo", "build a sample lesson, show its summary and render its pages", &DemoCommand::run},
    {"info", "pages and resources of a lesson", &InfoCommand::run},
    {"dump", "objects (and recorded commands) of a lesson as a tree or JSON", &DumpCommand::run},
    {"check", "report what is inconsistent or broken in a lesson", &CheckCommand::run},
    {"render", "draw every page to PNG (and to one PDF)", &RenderCommand::run},
    {"pack", "pack a lesson folder into an archive", &PackCommand::run},
    {"unpack", "unpack a lesson archive into a folder", &UnpackCommand::run},
    {"recover", "list, recover or remove the working folders of hosts that died", &RecoverCommand::run},
    {"salvage", "read what is left of a damaged archive into a new lesson", &SalvageCommand::run},
    {"import", "make a lesson from PDF files and pictures", &ImportCommand::run},
    {"export", "write a lesson as a web page that opens in any browser", &ExportCommand::run},
};

} // namespace

namespace {

const char kUsage[] = "lxdoc COMMAND [options] ARGS";

const Command *find(const QString &name)
{
    for (const Command &command : commands) {
        if (name == QLatin1String(command.name))
            return &command;
    }
    return nullptr;
}

bool isOneOf(const QString &argument, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        if (argument == QLatin1String(name))
            return true;
    }
    return false;
}

// -q, -v and --limits mean the same for every command, wherever they stand
// before "--". False with a reason for limits that cannot be used.
bool takeCommonOptions(const QStringList &arguments, QStringList *rest, QString *error)
{
    bool flags = true;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        flags = flags && argument != QLatin1String("--");
        if (flags && isOneOf(argument, {"-q", "--quiet"}))
            Console::setLevel(Console::Quiet);
        else if (flags && isOneOf(argument, {"-v", "--verbose"}))
            Console::setLevel(Console::Verbose);
        else if (flags && (argument == QLatin1String("--limits") || argument.startsWith(QLatin1String("--limits=")))) {
            const QString value = argument.size() > 8 ? argument.mid(9) : arguments.value(++i);
            if (!LimitOption::apply(value, error))
                return false;
        } else
            *rest << argument;
    }
    return true;
}

} // namespace

int CommandDispatcher::run(const QStringList &given) const
{
    QStringList arguments;
    QString error;
    if (!takeCommonOptions(given, &arguments, &error))
        return Console::usage(error, QLatin1String(kUsage));
    const QString name = arguments.value(1);
    if (name.isEmpty())
        return showOverview(ExitUsage);
    if (isOneOf(name, {"--version", "version"})) {
        Console::out(QStringLiteral("lxdoc " LXDOC_VERSION));
        return ExitOk;
    }
    if (isOneOf(name, {"help", "--help", "-h"}))
        return showHelp(arguments.mid(2));
    if (const Command *command = find(name))
        return command->run(arguments);
    return Console::usage(QStringLiteral("unknown command '%1' (see 'lxdoc --help')").arg(name), QLatin1String(kUsage));
}

int CommandDispatcher::showHelp(const QStringList &topics)
{
    if (topics.isEmpty())
        return showOverview(ExitOk);
    if (topics.size() > 1)
        return Console::usage(QStringLiteral("help: expected 0 or 1 argument, got %1").arg(topics.size()),
                              QStringLiteral("lxdoc help [COMMAND]"));
    if (const Command *command = find(topics.first()))
        return command->run({QStringLiteral("lxdoc"), topics.first(), QStringLiteral("--help")});
    return Console::usage(QStringLiteral("help: no such command '%1'").arg(topics.first()), QStringLiteral("lxdoc help [COMMAND]"));
}

int CommandDispatcher::showOverview(int status)
{
    QStringList lines{QStringLiteral("Usage: %1\n\nCommands:").arg(QLatin1String(kUsage))};
    for (const Command &command : commands)
        lines << QStringLiteral("  %1 %2").arg(QLatin1String(command.name), -8).arg(QLatin1String(command.summary));
    lines << QStringLiteral("\nOptions for every command:\n"
                            "  -q, --quiet    show only results and errors\n"
                            "  -v, --verbose  also show warnings from Qt and the document library\n"
                            "  --limits LIST  raise the reading limits, e.g. pages=20000,depth=512\n"
                            "                 (in force: %1)\n"
                            "  --version      show the version\n\n"
                            "FILE is a lesson archive (.lzn, .resitem) or an unpacked lesson folder; '-' reads an\n"
                            "archive from the standard input. 'lxdoc COMMAND --help' describes a command.")
                 .arg(LimitOption::describe());
    // Asked for, the overview is the result; without a command it is a usage error.
    if (status == ExitOk)
        Console::out(lines.join(QLatin1Char('\n')));
    else
        Console::usage(QStringLiteral("no command given"), QLatin1String(kUsage));
    return status;
}
