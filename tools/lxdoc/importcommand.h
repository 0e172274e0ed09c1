// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_IMPORTCOMMAND_H
#define LXDOC_TOOL_IMPORTCOMMAND_H

#include <QStringList>

// lxdoc import SOURCE... OUTPUT.lzn [--size WxH] [--dpi N] [--append LESSON]
class ImportCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
