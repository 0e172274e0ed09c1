// SPDX-License-Identifier: MIT
#ifndef LXDOC_ARCHIVECHECK_H
#define LXDOC_ARCHIVECHECK_H

#include <QString>

class ILXDocument;

// The library's side of lxdoc_verify_archive: the document's working folder
// against the archive, compared by the archive plug-in, which knows the
// format (loaded for this one question, like every pack).
class ArchiveCheck {
public:
    static bool verify(ILXDocument *document, const QString &archive, QString *reason);
};

#endif
