// SPDX-License-Identifier: MIT
#include "document/archivecheck.h"
#include "document/archivelimits.h"
#include "document/qlxdocument.h"
#include "lxdoc.h"
#include "xml/readlimits.h"

#include <new>

ILXDocument *get_interface()
{
    // A host gets null rather than an exception across the C boundary.
    return new (std::nothrow) QLXDocument;
}

LXArchiveLimits lxdoc_archive_limits()
{
    return ArchiveLimits::current();
}

void lxdoc_set_archive_limits(const LXArchiveLimits *limits)
{
    ArchiveLimits::set(limits ? *limits : ArchiveLimits::defaults());
}

bool lxdoc_verify_archive(ILXDocument *document, const QString &archive, QString *reason)
{
    return ArchiveCheck::verify(document, archive, reason);
}

LXReadLimits lxdoc_read_limits()
{
    return ReadLimits::current();
}

void lxdoc_set_read_limits(const LXReadLimits *limits)
{
    ReadLimits::set(limits ? *limits : ReadLimits::defaults());
}
