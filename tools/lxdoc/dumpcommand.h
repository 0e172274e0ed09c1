// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DUMPCOMMAND_H
#define LXDOC_TOOL_DUMPCOMMAND_H

#include <QStringList>

// "lxdoc dump": the objects (and recorded commands) of a lesson as a tree or JSON.
class DumpCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
