// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_RECOVERCOMMAND_H
#define LXDOC_TOOL_RECOVERCOMMAND_H

#include <QStringList>

// lxdoc recover: the working folders that hosts which died left under their
// temp root, listed, packed into lessons or removed.
class RecoverCommand {
public:
    static int run(const QStringList &arguments);

private:
    static int list(const QStringList &roots, const QString &archiveFolder);
    static int recover(const QString &folder, const QString &output, bool force);
    static int remove(const QString &folder);
    static int clean(const QStringList &roots, int days);
};

#endif
