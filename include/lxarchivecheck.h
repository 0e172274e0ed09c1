// SPDX-License-Identifier: MIT
#ifndef LXDOC_LXARCHIVECHECK_H
#define LXDOC_LXARCHIVECHECK_H

#include "ilxdocument.h"
#include "lxdoc_export.h"

#include <QString>

// Whether the archive at the path is, right now, exactly what packing the
// document would give: it exists, it is a complete archive the archive
// plug-in accepts, and it holds the document's working folder as it lies on
// disk (every folder and regular file by name, each file with the same size
// and CRC-32; nothing more, nothing less).
//
// saveFile(archive, true) returns true even when packing failed (the old
// archive, if any, then stays as it was), so a host that must know whether
// a save took calls this right after it. When the answer is false and reason
// is not null, it receives one short English line saying why ("cannot open
// the archive: No such file or directory", "\"page3.svg\" differs from the
// working folder", ...). The system's error from the failed save itself (a
// full disk, say) is gone by then: the reason describes the archive found.
// Changes made after saveFile and not yet written (the manifest is written
// by saveFile) count as differences once they reach the folder.
LXDOC_EXPORT bool lxdoc_verify_archive(ILXDocument *document, const QString &archive, QString *reason);

#endif
