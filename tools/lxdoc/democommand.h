// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOCOMMAND_H
#define LXDOC_TOOL_DEMOCOMMAND_H

#include <QStringList>

// "lxdoc demo": builds a sample lesson, reopens it, prints its summary and renders its pages.
class DemoCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
