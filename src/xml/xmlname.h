// SPDX-License-Identifier: MIT
#ifndef LXDOC_XMLNAME_H
#define LXDOC_XMLNAME_H

#include <QDomNode>
#include <QString>
#include <QStringView>

// The one rule for names that enter a tree: an element or attribute name is
// taken only when it is an XML Name that reads back as written. Files are
// parsed without namespace processing, but other tools read them with it, so
// a colon must split the name into two names of its own ("a:b", never ":a",
// "a:" or "a:b:c").
class XmlName {
public:
    static bool isQualifiedName(QStringView name);
    // Every element and attribute name of the subtree, the node's own included.
    static bool isNamedTree(const QDomNode &node);
    // The text with every character XML 1.0 cannot carry at all left out
    // (controls other than tab, line feed and carriage return, lone
    // surrogates, U+FFFE and U+FFFF); the writer leaves out the same ones.
    static QString carried(QStringView text);
};

#endif
