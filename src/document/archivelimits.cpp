// SPDX-License-Identifier: MIT
#include "document/archivelimits.h"

#include "xml/processlimits.h"

namespace {

using Shared = ProcessLimits<LXArchiveLimits>;

Shared &stored()
{
    static Shared limits(ArchiveLimits::defaults());
    return limits;
}

} // namespace

// Real lessons are mostly PNG and JPEG media and number-text pages, which
// compress far less than 100:1; a 2,000-page lesson has some 4,000 files.
LXArchiveLimits ArchiveLimits::defaults()
{
    return LXArchiveLimits{50000, 200, 16LL << 20};
}

LXArchiveLimits ArchiveLimits::current()
{
    return stored().get();
}

void ArchiveLimits::set(const LXArchiveLimits &limits)
{
    const LXArchiveLimits fallback = defaults();
    stored().set(LXArchiveLimits{Shared::chosen(limits.maxEntries, fallback.maxEntries),
                                 Shared::chosen(limits.maxRatio, fallback.maxRatio),
                                 Shared::chosen(limits.ratioCheckedFrom, fallback.ratioCheckedFrom)});
}
