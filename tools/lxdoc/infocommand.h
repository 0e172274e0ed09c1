// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_INFOCOMMAND_H
#define LXDOC_TOOL_INFOCOMMAND_H

#include <QStringList>

// "lxdoc info": the pages of a lesson in order and its resources.
class InfoCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
