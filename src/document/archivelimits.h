// SPDX-License-Identifier: MIT
#ifndef LXDOC_ARCHIVELIMITS_H
#define LXDOC_ARCHIVELIMITS_H

#include "lxarchivelimits.h"

// The process-wide archive limits, handed to the plug-in each time it is
// loaded. The plug-in exports "set_archive_limits" to receive them; one that
// does not keeps its own defaults.
class ArchiveLimits {
public:
    static LXArchiveLimits defaults();
    static LXArchiveLimits current();
    static void set(const LXArchiveLimits &limits);
};

extern "C" {
typedef void (*ArchiveLimitsSetter)(const LXArchiveLimits *);
}

#endif
