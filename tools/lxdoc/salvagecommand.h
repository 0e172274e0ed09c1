// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_SALVAGECOMMAND_H
#define LXDOC_TOOL_SALVAGECOMMAND_H

#include <QStringList>

// lxdoc salvage BROKEN OUTPUT: what can still be read of a damaged archive,
// repaired and written as a new lesson.
class SalvageCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
