// SPDX-License-Identifier: MIT
// Stand-ins for "ziplib.so" that fail in one way each. Every call is appended
// to the file named by FAKE_ZIPLIB_LOG, loading and unloading included, so a
// test sees the order of calls and that the library went away after one use.

#include "document/archivetool.h"

#include <cstdio>
#include <cstdlib>

#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

bool logCall(const char *call, bool result = true)
{
    const char *const path = std::getenv("FAKE_ZIPLIB_LOG");
    if (FILE *const log = path ? std::fopen(path, "a") : nullptr) {
        std::fprintf(log, "%s\n", call);
        std::fclose(log);
    }
    return result;
}

__attribute__((constructor)) void loaded() { logCall("load"); }
__attribute__((destructor)) void unloaded() { logCall("unload"); }

// Packing and unpacking both fail, without touching the disk.
class FailingTool final : public ArchiveTool {
public:
    int toolVersion() const override { return 0; }
    QString lastError() const override { return QStringLiteral("fake failure"); }
    bool finishArchive() override { return logCall("finish"); }
    bool beginArchive(QString, bool append) override { return logCall(append ? "begin append" : "begin"); }
    bool packFolder(QString, QString) override { return logCall("pack", false); }
    bool unpackArchive(QString, QString) override { return logCall("unpack", false); }
    void releaseTool() override
    {
        logCall("release");
        delete this;
    }
};

} // namespace

#if defined(FAKE_CASE_NOSYMBOL)
// No entry point at all: a library of that name that is no archive plug-in.
FAKE_EXPORT ArchiveTool *create_tool()
{
    return new FailingTool;
}
#else
FAKE_EXPORT ArchiveTool *get_interface()
{
    logCall("get_interface");
#if defined(FAKE_CASE_FAIL)
    return new FailingTool;
#else
    return nullptr;
#endif
}
#endif
