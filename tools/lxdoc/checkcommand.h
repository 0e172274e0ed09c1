// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_CHECKCOMMAND_H
#define LXDOC_TOOL_CHECKCOMMAND_H

#include <QStringList>

class CheckCommand {
public:
    static int run(const QStringList &arguments);

private:
    static int check(const QString &path, const QString &folder);
    static int fix(const QString &path, bool backup);
};

#endif
