// SPDX-License-Identifier: MIT
#ifndef LXDOC_LXREADLIMITS_H
#define LXDOC_LXREADLIMITS_H

#include "lxdoc_export.h"

// The bounds the library keeps while it reads a lesson's own files, so that a
// manifest, page or recording built to exhaust its reader is refused at once.
// A real lesson stays far inside them; a host that handles larger ones raises
// them, as it raises the archive limits (lxarchivelimits.h).
struct LXReadLimits {
    // Levels of element nesting in any XML file of a lesson.
    int maxXmlDepth;
    // Attributes on one element of any XML file of a lesson.
    int maxXmlAttributes;
    // Entries in the manifest's "pages" list, and in its "records" list: a
    // lesson listing more does not open.
    int maxPages;
};

// The limits in force for this process; the defaults until a host sets others.
extern "C" LXDOC_EXPORT LXReadLimits lxdoc_read_limits();
// Replaces the limits for every later read of this process. A value below 1
// keeps the default for that field; null restores all the defaults.
extern "C" LXDOC_EXPORT void lxdoc_set_read_limits(const LXReadLimits *limits);

#endif
