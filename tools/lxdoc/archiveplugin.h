#ifndef LXDOC_TOOL_ARCHIVEPLUGIN_H
#define LXDOC_TOOL_ARCHIVEPLUGIN_H

#include <QString>

class ArchiveTool;

// "ziplib.so" beside the executable, loaded for the lifetime of this object
// exactly as the library loads it around each pack or unpack.
class ArchivePlugin {
public:
    ArchivePlugin();
    ~ArchivePlugin();
    ArchivePlugin(const ArchivePlugin &) = delete;
    ArchivePlugin &operator=(const ArchivePlugin &) = delete;

    bool isLoaded() const;
    // Why the last call failed, in the plug-in's own words when it has some.
    QString errorString() const;

    bool pack(const QString &folder, const QString &archive);
    bool unpack(const QString &archive, const QString &folder);

private:
    bool fail(const QString &fallback);

    void *m_handle = nullptr;
    ArchiveTool *m_tool = nullptr;
    QString m_error;
};

#endif
