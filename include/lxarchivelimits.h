// SPDX-License-Identifier: MIT
#ifndef LXDOC_LXARCHIVELIMITS_H
#define LXDOC_LXARCHIVELIMITS_H

#include "lxdoc_export.h"

// The bounds the archive plug-in keeps while it unpacks a lesson, so that an
// archive built to explode (a few kilobytes that would write gigabytes, or
// hundreds of thousands of entries) is refused quickly and leaves nothing
// behind. They never refuse what the plug-in itself packs: packing stores
// large files as they are and refuses a folder that would break them.
struct LXArchiveLimits {
    // Files and folders in one archive.
    long long maxEntries;
    // Bytes written per byte stored, for each entry and for the whole archive.
    long long maxRatio;
    // Bytes an entry, or the whole archive, may write before the ratio applies.
    long long ratioCheckedFrom;
};

// The limits in force for this process; the defaults until a host sets others.
extern "C" LXDOC_EXPORT LXArchiveLimits lxdoc_archive_limits();
// Replaces the limits for every later pack and unpack of this process. A value
// below 1 keeps the default for that field; null restores all the defaults.
extern "C" LXDOC_EXPORT void lxdoc_set_archive_limits(const LXArchiveLimits *limits);

#endif
