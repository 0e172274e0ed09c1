// Stand-ins for "ziplib.so" that fail in one way each. Every call is appended
// to the file named by FAKE_ZIPLIB_LOG, loading and unloading included, so a
// test sees the order of calls and that the library went away after one use.

#include "document/archivetool.h"

#include <cstdio>
#include <cstdlib>

namespace {

void logCall(const char *call)
{
    const char *const path = std::getenv("FAKE_ZIPLIB_LOG");
    if (!path)
        return;
    if (FILE *const log = std::fopen(path, "a")) {
        std::fprintf(log, "%s\n", call);
        std::fclose(log);
    }
}

__attribute__((constructor)) void loaded()
{
    logCall("load");
}

__attribute__((destructor)) void unloaded()
{
    logCall("unload");
}

// Packing and unpacking both fail, without touching the disk.
class FailingTool final : public ArchiveTool {
public:
    int toolVersion() const override { return 0; }
    QString lastError() const override { return QStringLiteral("fake failure"); }
    bool finishArchive() override
    {
        logCall("finish");
        return true;
    }
    bool beginArchive(QString, bool append) override
    {
        logCall(append ? "begin append" : "begin");
        return true;
    }
    bool packFolder(QString, QString) override
    {
        logCall("pack");
        return false;
    }
    bool unpackArchive(QString, QString) override
    {
        logCall("unpack");
        return false;
    }
    void releaseTool() override
    {
        logCall("release");
        delete this;
    }
};

} // namespace

#if defined(FAKE_CASE_NULL)
extern "C" __attribute__((visibility("default"))) ArchiveTool *get_interface()
{
    logCall("get_interface");
    return nullptr;
}
#elif defined(FAKE_CASE_FAIL)
extern "C" __attribute__((visibility("default"))) ArchiveTool *get_interface()
{
    logCall("get_interface");
    return new FailingTool;
}
#else
// No entry point at all: a library of that name that is no archive plug-in.
extern "C" __attribute__((visibility("default"))) ArchiveTool *create_tool()
{
    return new FailingTool;
}
#endif
