// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ZIPARCHIVETOOL_H
#define ZIPLIB_ZIPARCHIVETOOL_H

#include "document/archivetool.h"

#include <QString>

// The plug-in's archive tool: lesson archives are ordinary ZIP files.
// Packing replaces the archive atomically; unpacking writes nothing unless
// the whole archive is sound and safe.
class ZipArchiveTool final : public ArchiveTool {
public:
    int toolVersion() const override;
    QString lastError() const override;
    bool finishArchive() override;
    bool beginArchive(QString archive, bool append) override;
    bool packFolder(QString folder, QString archive) override;
    bool unpackArchive(QString archive, QString folder) override;
    void releaseTool() override;

private:
    template<typename Step>
    bool guarded(const QString &context, Step step);
    bool pack(const QString &folder, const QString &archive);
    bool unpack(const QString &archive, const QString &folder);
    bool fail(const QString &what);

    QString m_lastError;
};

#endif
