// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_ARCHIVEHANDLE_H
#define ZIPLIB_ARCHIVEHANDLE_H

#include <archive.h>
#include <archive_entry.h>

#include <memory>

// libarchive objects freed on every path out of a function.
struct ArchiveReadFree {
    void operator()(archive *handle) const { archive_read_free(handle); }
};
struct ArchiveWriteFree {
    void operator()(archive *handle) const { archive_write_free(handle); }
};
struct ArchiveEntryFree {
    void operator()(archive_entry *entry) const { archive_entry_free(entry); }
};

using ArchiveReader = std::unique_ptr<archive, ArchiveReadFree>;
using ArchiveWriter = std::unique_ptr<archive, ArchiveWriteFree>;
using ArchiveEntry = std::unique_ptr<archive_entry, ArchiveEntryFree>;

#endif
