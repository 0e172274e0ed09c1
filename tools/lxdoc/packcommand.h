// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PACKCOMMAND_H
#define LXDOC_TOOL_PACKCOMMAND_H

#include <QStringList>

// "lxdoc pack": packs a lesson folder into an archive through the archive plug-in.
class PackCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
