// SPDX-License-Identifier: MIT
#ifndef LXDOC_TEMPROOT_H
#define LXDOC_TEMPROOT_H

#include <QString>
#include <QStringList>

// The folder that holds working folders. "Temp" beside the executable where
// that folder is writable or can be made there; otherwise a private folder of
// the user's own: LXDOC_TEMP_ROOT, else "lxdoc" under $XDG_RUNTIME_DIR, else
// "lxdoc" in the user's cache folder.
class TempRoot {
public:
    // The folder in use, ending with "/", or empty when none is usable. The
    // folder beside the executable is not made here (init() does that); a
    // private folder is made with mode 0700 as soon as it is chosen.
    static QString path();
    // The same choice for a given folder beside the executable (empty: none).
    static QString choose(const QString &besideExecutable);

    // Every place a temp root may lie, usable or not, without making any:
    // what a clean-up of earlier runs has to look through.
    static QStringList places();

    // The running executable's folder; empty without an application object,
    // where Qt would report an empty path and callers would build "/Temp".
    static QString executableFolder();

private:
    static QString besideExecutable();
    static QStringList privateCandidates();
};

#endif
