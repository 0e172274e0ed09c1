#ifndef LXDOC_TOOL_ARCHIVECOMMANDS_H
#define LXDOC_TOOL_ARCHIVECOMMANDS_H

#include <QStringList>

// "lxdoc pack" and "lxdoc unpack", through the archive plug-in the
// document itself uses.
class ArchiveCommands {
public:
    static int pack(const QStringList &arguments);
    static int unpack(const QStringList &arguments);

private:
    static int packFolder(const QString &folder, const QString &archive);
    static int unpackArchive(const QString &archive, const QString &folder);
};

#endif
