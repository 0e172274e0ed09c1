// SPDX-License-Identifier: MIT
#include "document/archivecheck.h"

#include "document/archiveplugin.h"
#include "ilxdocument.h"

namespace {

bool refuse(const QString &why, QString *reason)
{
    if (reason)
        *reason = why;
    return false;
}

} // namespace

bool ArchiveCheck::verify(ILXDocument *document, const QString &archive, QString *reason)
{
    if (!document)
        return refuse(QStringLiteral("no document"), reason);
    const QString folder = document->getDocPath();
    if (folder.isEmpty())
        return refuse(QStringLiteral("the document has no working folder"), reason);
    const ArchivePlugin plugin;
    return plugin.verify(archive, folder, reason);
}
