// SPDX-License-Identifier: MIT
#ifndef LXDOC_READLIMITS_H
#define LXDOC_READLIMITS_H

#include "lxreadlimits.h"

// The process-wide limits on what the library reads from a lesson: XML
// nesting and attributes (XmlLimits) and pages per lesson (the document).
class ReadLimits {
public:
    static LXReadLimits defaults();
    static LXReadLimits current();
    static void set(const LXReadLimits &limits);
};

#endif
