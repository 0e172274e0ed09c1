#include "archiveplugin.h"

#include "document/archivetool.h"

#include <QCoreApplication>

#include <dlfcn.h>

ArchivePlugin::ArchivePlugin()
{
    const QByteArray path = (QCoreApplication::applicationDirPath() + QStringLiteral("/ziplib.so")).toUtf8();
    m_handle = dlopen(path.constData(), RTLD_LAZY);
    if (!m_handle) {
        m_error = QStringLiteral("cannot load the archive plug-in: %1").arg(QString::fromLocal8Bit(dlerror()));
        return;
    }
    const auto factory = reinterpret_cast<ArchiveToolFactory>(dlsym(m_handle, "get_interface"));
    m_tool = factory ? factory() : nullptr;
    if (!m_tool)
        m_error = QStringLiteral("the archive plug-in '%1' gives no archive tool").arg(QString::fromUtf8(path));
}

ArchivePlugin::~ArchivePlugin()
{
    if (m_tool)
        m_tool->releaseTool();
    if (m_handle)
        dlclose(m_handle);
}

bool ArchivePlugin::isLoaded() const
{
    return m_tool != nullptr;
}

QString ArchivePlugin::errorString() const
{
    return m_error;
}

bool ArchivePlugin::pack(const QString &folder, const QString &archive)
{
    if (!m_tool)
        return false;
    // The same three calls, in the same order, as the library's packing.
    m_tool->beginArchive(archive, false);
    const bool packed = m_tool->packFolder(folder, archive);
    m_tool->finishArchive();
    return packed || fail(QStringLiteral("packing failed"));
}

bool ArchivePlugin::unpack(const QString &archive, const QString &folder)
{
    if (!m_tool)
        return false;
    return m_tool->unpackArchive(archive, folder) || fail(QStringLiteral("unpacking failed"));
}

bool ArchivePlugin::fail(const QString &fallback)
{
    const QString reason = m_tool->lastError();
    m_error = reason.isEmpty() ? fallback : reason;
    return false;
}
