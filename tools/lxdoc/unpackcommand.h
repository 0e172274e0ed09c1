// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_UNPACKCOMMAND_H
#define LXDOC_TOOL_UNPACKCOMMAND_H

#include <QStringList>

// "lxdoc unpack": unpacks a lesson archive into a new or empty folder.
class UnpackCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
