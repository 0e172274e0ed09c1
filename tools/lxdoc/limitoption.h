// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LIMITOPTION_H
#define LXDOC_TOOL_LIMITOPTION_H

#include <QString>

// "--limits pages=20000,depth=512": raises (or lowers) the reading limits of
// the document library and the archive plug-in for one run of any command.
// The tool keeps its own copies of the rules it shares with the library, so
// both are set.
class LimitOption {
public:
    // Applies text, a comma-separated list of NAME=NUMBER; false with a
    // one-line reason for an unknown name or a number that is not positive.
    static bool apply(const QString &text, QString *error);
    // The names and the limits in force, for the overview.
    static QString describe();
};

#endif
