// SPDX-License-Identifier: MIT
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
