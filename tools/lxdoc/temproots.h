// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_TEMPROOTS_H
#define LXDOC_TOOL_TEMPROOTS_H

#include <QStringList>

// Where hosts keep the working folders of the lessons they edit.
class TempRoots {
public:
    // Every place the library may keep its temp root: "Temp" beside the
    // executable (a host installed beside lxdoc), then the private per-user
    // places (LXDOC_TEMP_ROOT, the runtime folder, the cache folder).
    static QStringList candidates();
    static bool isRoot(const QString &folder);
    // Whether folder lies directly inside one of the candidates.
    static bool holds(const QString &folder);
};

#endif
