// SPDX-License-Identifier: MIT
#include "xml/readlimits.h"

#include "xml/processlimits.h"

namespace {

using Shared = ProcessLimits<LXReadLimits>;

Shared &stored()
{
    static Shared limits(ReadLimits::defaults());
    return limits;
}

} // namespace

// A lesson nests a handful of levels and its elements carry a few dozen
// attributes at most. The largest lessons seen in use have about 2,000
// pages; five times that still opens in well under a second and keeps a
// manifest listing one file over and over from multiplying a reader's work.
LXReadLimits ReadLimits::defaults()
{
    return LXReadLimits{256, 256, 10000};
}

LXReadLimits ReadLimits::current()
{
    return stored().get();
}

void ReadLimits::set(const LXReadLimits &limits)
{
    const LXReadLimits fallback = defaults();
    stored().set(LXReadLimits{Shared::chosen(limits.maxXmlDepth, fallback.maxXmlDepth),
                              Shared::chosen(limits.maxXmlAttributes, fallback.maxXmlAttributes),
                              Shared::chosen(limits.maxPages, fallback.maxPages)});
}
