// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_EXPORTCOMMAND_H
#define LXDOC_TOOL_EXPORTCOMMAND_H

#include <QStringList>

// lxdoc export --html LESSON OUTDIR
class ExportCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
