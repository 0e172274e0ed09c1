// SPDX-License-Identifier: MIT
#include "archiveverifier.h"
#include "ziparchivetool.h"

#include "document/archivelimits.h"

#include <QtGlobal>

#include <new>

// The plug-in's only export; the loader looks it up by this exact name.
extern "C" Q_DECL_EXPORT ArchiveTool *get_interface()
{
    return new (std::nothrow) ZipArchiveTool;
}

// Called by the library right after loading, with the limits its host set.
extern "C" Q_DECL_EXPORT void set_archive_limits(const LXArchiveLimits *limits)
{
    if (limits)
        ArchiveLimits::set(*limits);
}

// Whether the archive holds exactly the folder as it is now; the reason
// otherwise. No exception may cross into the host.
extern "C" Q_DECL_EXPORT bool verify_archive(const QString *archive, const QString *folder, QString *reason)
{
    QString why;
    bool same = false;
    try {
        ArchiveVerifier verifier;
        same = archive && folder && verifier.verify(*archive, *folder);
        why = verifier.errorString();
    } catch (...) {
        why = QStringLiteral("unexpected internal error");
    }
    if (reason)
        *reason = why;
    return same;
}
