#include "document/archiveplugin.h"

#include "document/archivelimits.h"

#include <QCoreApplication>
#include <QtGlobal>

#include <dlfcn.h>

ArchivePlugin::ArchivePlugin()
{
    const QByteArray path = (QCoreApplication::applicationDirPath() + QLatin1String("/ziplib.so")).toUtf8();
    m_handle = dlopen(path.constData(), RTLD_LAZY);
    if (!m_handle) {
        const char *reason = dlerror();
        qWarning("create ziplib: dlopen(): %s\n", reason);
        m_error = QStringLiteral("cannot load the archive plug-in: %1").arg(QString::fromLocal8Bit(reason));
        return;
    }
    // A library without the entry point is no archive plug-in: unusable,
    // like one whose entry point gives no tool.
    const auto factory = reinterpret_cast<ArchiveToolFactory>(dlsym(m_handle, "get_interface"));
    m_tool = factory ? factory() : nullptr;
    // Optional: a plug-in without it keeps its own default limits.
    const auto setLimits = reinterpret_cast<ArchiveLimitsSetter>(dlsym(m_handle, "set_archive_limits"));
    if (m_tool && setLimits) {
        const LXArchiveLimits limits = ArchiveLimits::current();
        setLimits(&limits);
    }
    if (!m_tool) {
        m_error = QStringLiteral("the archive plug-in '%1' gives no archive tool").arg(QString::fromUtf8(path));
        unload();
    }
}

ArchivePlugin::~ArchivePlugin()
{
    if (m_tool)
        m_tool->releaseTool();
    m_tool = nullptr;
    unload();
}

ArchiveTool *ArchivePlugin::tool() const
{
    return m_tool;
}

QString ArchivePlugin::errorString() const
{
    return m_error;
}

void ArchivePlugin::unload()
{
    if (m_handle)
        dlclose(m_handle);
    m_handle = nullptr;
}
