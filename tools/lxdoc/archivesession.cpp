// SPDX-License-Identifier: MIT
#include "archivesession.h"

bool ArchiveSession::isLoaded() const
{
    return m_plugin.tool() != nullptr;
}

QString ArchiveSession::errorString() const
{
    return m_error;
}

bool ArchiveSession::pack(const QString &folder, const QString &archive)
{
    ArchiveTool *tool = m_plugin.tool();
    if (!tool)
        return false;
    // The same three calls, in the same order, as the library's packing.
    tool->beginArchive(archive, false);
    const bool packed = tool->packFolder(folder, archive);
    tool->finishArchive();
    return packed || fail(QStringLiteral("packing failed"));
}

bool ArchiveSession::unpack(const QString &archive, const QString &folder)
{
    ArchiveTool *tool = m_plugin.tool();
    if (!tool)
        return false;
    return tool->unpackArchive(archive, folder) || fail(QStringLiteral("unpacking failed"));
}

bool ArchiveSession::fail(const QString &fallback)
{
    const QString reason = m_plugin.tool()->lastError();
    m_error = reason.isEmpty() ? fallback : reason;
    return false;
}
