#include "ziparchivetool.h"

#include <QtGlobal>

#include <new>

// The plug-in's only export; the loader looks it up by this exact name.
extern "C" Q_DECL_EXPORT ArchiveTool *get_interface()
{
    return new (std::nothrow) ZipArchiveTool;
}
