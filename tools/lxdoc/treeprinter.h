// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_TREEPRINTER_H
#define LXDOC_TOOL_TREEPRINTER_H

#include <QJsonObject>
#include <QStringList>

// Prints described objects and commands as an indented tree, one line per
// node: its class, then its properties by name.
class TreePrinter {
public:
    static QStringList lines(const QJsonObject &node, int depth);

private:
    static QString nodeLine(const QJsonObject &node, int depth);
    static QString valueText(const QJsonValue &value);
    static bool isNodeList(const QJsonValue &value);
};

#endif
