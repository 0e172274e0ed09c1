// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_XMLFILECHECK_H
#define LXDOC_TOOL_XMLFILECHECK_H

#include <QString>

// Whether one XML file of a lesson reads as the library will read it: a
// regular file inside the folder, well-formed, with the expected root.
class XmlFileCheck {
public:
    // Empty when the file is sound, otherwise what is wrong with it
    // ("missing", "not well-formed XML (line 1, column 17: ...)").
    static QString problem(const QString &folder, const QString &name, const QString &root);
};

#endif
