#include "commanddispatcher.h"

#include "checkcommand.h"
#include "console.h"
#include "democommand.h"
#include "dumpcommand.h"
#include "exportcommand.h"
#include "importcommand.h"
#include "infocommand.h"
#include "packcommand.h"
#include "recovercommand.h"
#include "rendercommand.h"
#include "salvagecommand.h"
#include "unpackcommand.h"

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

int CommandDispatcher::run(const QStringList &arguments) const
{
    const QString name = arguments.value(1);
    if (name.isEmpty() || name == QLatin1String("help") || name == QLatin1String("--help") || name == QLatin1String("-h")) {
        const QString topic = arguments.value(2);
        for (const Command &command : commands) {
            if (topic == QLatin1String(command.name))
                return command.run({arguments.first(), topic, QStringLiteral("--help")});
        }
        return showOverview(name);
    }
    for (const Command &command : commands) {
        if (name == QLatin1String(command.name))
            return command.run(arguments);
    }
    return Console::fail(QStringLiteral("unknown command '%1' (see 'lxdoc --help')").arg(name), ExitUsage);
}

int CommandDispatcher::showOverview(const QString &name)
{
    Console::out(QStringLiteral("Usage: lxdoc COMMAND [options] [arguments]\n\nCommands:"));
    for (const Command &command : commands)
        Console::out(QStringLiteral("  %1 %2").arg(QLatin1String(command.name), -8).arg(QLatin1String(command.summary)));
    Console::out(QStringLiteral("\nFILE is a lesson archive (.lzn, .resitem) or an unpacked lesson folder.\n"
                                "'lxdoc COMMAND --help' describes a command."));
    return name.isEmpty() ? ExitUsage : ExitOk;
}
