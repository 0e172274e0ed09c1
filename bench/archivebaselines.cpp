// SPDX-License-Identifier: MIT
#include "archivebaselines.h"

#include "benchsupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>

namespace {

// The deflate level the plug-in packs with.
const QString PluginLevel = QStringLiteral("2");
// The generated lesson's media, which the plug-in stores as they are.
const QString StoredSuffixes = QStringLiteral(".mp4:.png");



} // namespace

ArchiveBaselines::ArchiveBaselines()
{
    const QString zip = QStringLiteral("zip");
    const QString bsdtar = QStringLiteral("bsdtar");
    const QStringList zipSame{QStringLiteral("-r"), QStringLiteral("-q"), QLatin1Char('-') + PluginLevel,
                              QStringLiteral("-n"), StoredSuffixes, QStringLiteral("%archive"), QStringLiteral(".")};
    m_packers << tool(QStringLiteral("zip -r -q -") + PluginLevel + QStringLiteral(" -n"), zip, zipSame, 0.8)
              << tool(QStringLiteral("zip -r -q (-6)"), zip,
                      {QStringLiteral("-r"), QStringLiteral("-q"), QStringLiteral("%archive"), QStringLiteral(".")}, -1)
              << tool(QStringLiteral("bsdtar zip -") + PluginLevel, bsdtar,
                      {QStringLiteral("-c"), QStringLiteral("-f"), QStringLiteral("%archive"), QStringLiteral("--format"),
                       QStringLiteral("zip"), QStringLiteral("--options"),
                       QStringLiteral("zip:compression-level=") + PluginLevel, QStringLiteral(".")},
                      -1);
    m_unpackers << tool(QStringLiteral("unzip -q"), QStringLiteral("unzip"),
                        {QStringLiteral("-q"), QStringLiteral("%archive"), QStringLiteral("-d"), QStringLiteral("%folder")},
                        1.0)
                << tool(QStringLiteral("bsdtar -xf"), bsdtar,
                        {QStringLiteral("-x"), QStringLiteral("-f"), QStringLiteral("%archive"), QStringLiteral("-C"),
                         QStringLiteral("%folder")},
                        -1);
}

ArchiveBaselines::Tool ArchiveBaselines::tool(const QString &label, const QString &program,
                                              const QStringList &arguments, double target)
{
    Tool made;
    made.program = QStandardPaths::findExecutable(program);
    made.label = made.program.isEmpty() ? program + QStringLiteral(" missing") : label;
    made.arguments = arguments;
    made.target = target;
    return made;
}

void ArchiveBaselines::timePacking(const QString &folder, const QString &scratch)
{
    const QString archive = scratch + QStringLiteral("/baseline.zip");
    for (Tool &packer : m_packers) {
        BenchSupport::removePath(archive);
        const double ms = runOnce(packer, archive, QString(), folder);
        if (ms >= 0)
            packer.ms << ms;
        packer.bytes = QFileInfo(archive).size();
    }
    BenchSupport::removePath(archive);
}

void ArchiveBaselines::timeUnpacking(const QString &archive, const QString &scratch)
{
    const QString folder = scratch + QStringLiteral("/baseline-unpacked");
    for (Tool &unpacker : m_unpackers) {
        BenchSupport::removePath(folder);
        // bsdtar extracts into a folder that exists; unzip makes its own.
        QDir().mkpath(folder);
        const double ms = runOnce(unpacker, archive, folder, scratch);
        if (ms >= 0)
            unpacker.ms << ms;
    }
    BenchSupport::removePath(folder);
}

double ArchiveBaselines::runOnce(const Tool &tool, const QString &archive, const QString &folder,
                                 const QString &workingFolder) const
{
    if (tool.program.isEmpty())
        return -1;
    QStringList arguments = tool.arguments;
    arguments.replaceInStrings(QStringLiteral("%archive"), archive);
    arguments.replaceInStrings(QStringLiteral("%folder"), folder);
    QProcess process;
    process.setWorkingDirectory(workingFolder);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    process.start(tool.program, arguments);
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return -1;
    return double(timer.nsecsElapsed()) / 1e6;
}

QList<ArchiveBaselines::Figure> ArchiveBaselines::figures(const QList<Tool> &tools)
{
    QList<Figure> result;
    for (const Tool &tool : tools)
        result << Figure{tool.label, BenchSupport::median(tool.ms), tool.target, tool.bytes};
    return result;
}

QList<ArchiveBaselines::Figure> ArchiveBaselines::packing() const
{
    return figures(m_packers);
}

QList<ArchiveBaselines::Figure> ArchiveBaselines::unpacking() const
{
    return figures(m_unpackers);
}

QString ArchiveBaselines::archiveSizes() const
{
    QStringList sizes;
    for (const Tool &packer : m_packers) {
        if (packer.bytes > 0)
            sizes << QStringLiteral("%1: %2 MiB").arg(packer.label).arg(double(packer.bytes) / (1 << 20), 0, 'f', 1);
    }
    return sizes.join(QStringLiteral(", "));
}
