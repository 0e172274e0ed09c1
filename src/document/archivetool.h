// SPDX-License-Identifier: MIT
#ifndef LXDOC_ARCHIVETOOL_H
#define LXDOC_ARCHIVETOOL_H

#include <QString>

// The archive tool of the "ziplib.so" plug-in, shared by the loader and the
// plug-in. The plug-in is bound by position: the document calls the last five
// operations, in exactly this order; the two leading ones are for tools that
// want to know more (the command-line host prints lastError()).
class ArchiveTool {
public:
    virtual int toolVersion() const = 0;
    virtual QString lastError() const = 0;
    virtual bool finishArchive() = 0;
    virtual bool beginArchive(QString archive, bool append) = 0;
    virtual bool packFolder(QString folder, QString archive) = 0;
    virtual bool unpackArchive(QString archive, QString folder) = 0;
    virtual void releaseTool() = 0;

protected:
    ~ArchiveTool() = default;
};

// The plug-in's only export, unmangled: a new tool, or null.
extern "C" {
typedef ArchiveTool *(*ArchiveToolFactory)();
// Optional export "verify_archive": whether the archive holds exactly the
// folder as it is now, with the reason when not. A plug-in without it
// cannot answer, and the loader says so.
typedef bool (*ArchiveVerifierFunction)(const QString *archive, const QString *folder, QString *reason);
}

#endif
