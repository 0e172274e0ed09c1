#ifndef LXDOC_TOOL_TEMPROOTS_H
#define LXDOC_TOOL_TEMPROOTS_H

#include <QStringList>

// Where hosts keep the working folders of the lessons they edit.
class TempRoots {
public:
    // The temp root of a host installed beside lxdoc ("Temp" beside the
    // executable), then the one LXDOC_TEMP_ROOT names when it is set.
    static QStringList candidates();
    static bool isRoot(const QString &folder);
    // Whether folder lies directly inside one of the candidates.
    static bool holds(const QString &folder);
};

#endif
