// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_COMMANDDISPATCHER_H
#define LXDOC_TOOL_COMMANDDISPATCHER_H

#include <QStringList>

// Picks the subcommand named by the first argument and runs it. Each
// command lives in a file pair of its own (democommand, infocommand, ...)
// with one entry point, run(arguments); this table is the only list of them.
class CommandDispatcher {
public:
    int run(const QStringList &arguments) const;

private:
    static int showHelp(const QStringList &topics);
    static int showOverview(int status);
};

#endif
