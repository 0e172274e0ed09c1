// SPDX-License-Identifier: MIT
#include "document/archiveplugin.h"

#include "document/archivelimits.h"
#include "document/temproot.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QtGlobal>

#include <dlfcn.h>
#include <link.h>

#ifndef LXDOC_PLUGIN_RELDIR
#error "LXDOC_PLUGIN_RELDIR names the installed plug-in folder relative to this binary"
#endif

namespace {

const char *const kPluginName = "/ziplib.so";

void moduleAnchor()
{
}

// The folder of the binary holding this code: the installed library, or the
// executable that compiled the loader in. The main program's link map has no
// name, and its folder is the one Qt reports.
QString moduleFolder()
{
    Dl_info info;
    link_map *map = nullptr;
    if (!dladdr1(reinterpret_cast<void *>(&moduleAnchor), &info, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP)
        || !map)
        return QString();
    if (map->l_name && map->l_name[0])
        return QFileInfo(QFile::decodeName(map->l_name)).canonicalPath();
    return TempRoot::executableFolder();
}

// Beside the executable first, so a host can bring its own plug-in; then the
// installed plug-in folder; then LXDOC_PLUGIN_DIR. Never a bare name, which
// the loader would look up in the system's library folders, and never the
// root folder when there is no executable folder to speak of.
QStringList candidates()
{
    QStringList result;
    const QString executable = TempRoot::executableFolder();
    if (!executable.isEmpty())
        result << executable + QLatin1String(kPluginName);
    const QString module = moduleFolder();
    if (!module.isEmpty())
        result << module + QLatin1String("/" LXDOC_PLUGIN_RELDIR) + QLatin1String(kPluginName);
    const QString chosen = qEnvironmentVariable("LXDOC_PLUGIN_DIR");
    if (!chosen.isEmpty())
        result << chosen + QLatin1String(kPluginName);
    return result;
}

// The first that exists; else the first place looked at, so the loader's
// message names it.
QByteArray pluginPath()
{
    const QStringList places = candidates();
    for (const QString &place : places) {
        if (QFileInfo::exists(place))
            return QFile::encodeName(place);
    }
    return places.isEmpty() ? QByteArray() : QFile::encodeName(places.first());
}

} // namespace

ArchivePlugin::ArchivePlugin()
{
    const QByteArray path = pluginPath();
    m_handle = path.isEmpty() ? nullptr : dlopen(path.constData(), RTLD_LAZY);
    if (!m_handle) {
        const char *reason = path.isEmpty() ? "ziplib.so not found" : dlerror();
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

bool ArchivePlugin::verify(const QString &archive, const QString &folder, QString *reason) const
{
    const auto check = m_tool ? reinterpret_cast<ArchiveVerifierFunction>(dlsym(m_handle, "verify_archive")) : nullptr;
    QString why;
    const bool same = check ? check(&archive, &folder, &why) : false;
    if (!check)
        why = m_tool ? QStringLiteral("the archive plug-in cannot check archives") : m_error;
    // A deep copy: text the plug-in made from a literal lives in its image,
    // which is unmapped when the plug-in is unloaded.
    if (reason)
        *reason = same ? QString() : QString(why.constData(), why.size());
    return same;
}

void ArchivePlugin::unload()
{
    if (m_handle)
        dlclose(m_handle);
    m_handle = nullptr;
}
