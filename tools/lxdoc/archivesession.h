// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_ARCHIVESESSION_H
#define LXDOC_TOOL_ARCHIVESESSION_H

#include "document/archiveplugin.h"

#include <QString>

// One pack or unpack through "ziplib.so", loaded by the library's own loader
// so the tool drives the plug-in exactly as the library does.
class ArchiveSession {
public:
    bool isLoaded() const;
    // Why the last call failed, in the plug-in's own words when it has some.
    QString errorString() const;

    bool pack(const QString &folder, const QString &archive);
    bool unpack(const QString &archive, const QString &folder);

private:
    bool fail(const QString &fallback);

    ArchivePlugin m_plugin;
    QString m_error = m_plugin.errorString();
};

#endif
