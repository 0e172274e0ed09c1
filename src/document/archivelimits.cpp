// SPDX-License-Identifier: MIT
#include "document/archivelimits.h"

#include <QMutex>

namespace {

QMutex &guard()
{
    static QMutex mutex;
    return mutex;
}

LXArchiveLimits &stored()
{
    static LXArchiveLimits limits = ArchiveLimits::defaults();
    return limits;
}

long long chosen(long long wanted, long long fallback)
{
    return wanted >= 1 ? wanted : fallback;
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
    const QMutexLocker lock(&guard());
    return stored();
}

void ArchiveLimits::set(const LXArchiveLimits &limits)
{
    const LXArchiveLimits fallback = defaults();
    const QMutexLocker lock(&guard());
    stored() = LXArchiveLimits{chosen(limits.maxEntries, fallback.maxEntries),
                               chosen(limits.maxRatio, fallback.maxRatio),
                               chosen(limits.ratioCheckedFrom, fallback.ratioCheckedFrom)};
}
