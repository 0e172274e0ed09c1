// SPDX-License-Identifier: MIT
#ifndef LXDOC_ARCHIVEPLUGIN_H
#define LXDOC_ARCHIVEPLUGIN_H

#include "document/archivetool.h"

#include <QString>

// One use of the "ziplib.so" plug-in (beside the executable, else the one
// installed with the library): loaded on construction, its tool released and
// the library unloaded on destruction. Nothing is kept between uses, so every
// pack or unpack loads it afresh.
class ArchivePlugin {
public:
    ArchivePlugin();
    ~ArchivePlugin();
    ArchivePlugin(const ArchivePlugin &) = delete;
    ArchivePlugin &operator=(const ArchivePlugin &) = delete;

    // Null when the plug-in could not be loaded or gave no tool; then
    // errorString() says why.
    ArchiveTool *tool() const;
    QString errorString() const;
    // Whether the archive holds exactly the folder as it is now; when not,
    // reason says why (the plug-in's own text, or why it could not answer).
    bool verify(const QString &archive, const QString &folder, QString *reason) const;

private:
    void unload();

    void *m_handle = nullptr;
    ArchiveTool *m_tool = nullptr;
    QString m_error;
};

#endif
