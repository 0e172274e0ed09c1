// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_SVGTREE_H
#define LXDOC_TOOL_SVGTREE_H

#include <QByteArray>
#include <QString>
#include <QXmlStreamAttributes>

#include <vector>

// One element of a page held in memory, or (with an empty name) a run of
// character data between elements.
struct SvgNode {
    QString name;
    QXmlStreamAttributes attributes;
    QString text;
    std::vector<SvgNode> children;

    bool isElement() const { return !name.isEmpty(); }
    QString value(const QString &attribute) const { return attributes.value(attribute).toString(); }
};

// Reads a page file into SvgNodes without recursion, refusing pages nested
// deeper than a board ever draws, so every later walk over the tree is
// bounded by maxDepth. Elements of foreign namespaces (an editor's own
// markup) are left out.
class SvgTree {
public:
    static const int maxDepth = 256;

    bool parse(const QByteArray &data);
    const SvgNode &root() const;
    QString error() const;

private:
    SvgNode m_root;
    QString m_error;
};

#endif
