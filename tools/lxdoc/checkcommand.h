#ifndef LXDOC_TOOL_CHECKCOMMAND_H
#define LXDOC_TOOL_CHECKCOMMAND_H

#include <QStringList>

// "lxdoc check": what is inconsistent or broken in a lesson; only reads it.
class CheckCommand {
public:
    static int run(const QStringList &arguments);
};

#endif
