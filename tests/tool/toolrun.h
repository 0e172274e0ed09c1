#ifndef LXDOC_TESTS_TOOLRUN_H
#define LXDOC_TESTS_TOOLRUN_H

// The command-line host run as a user runs it.
#include <QProcess>
#include <QString>
#include <QStringList>

struct Run {
    int status = -1;
    QString out;
    QString err;
};

inline QString toolPath()
{
    return QStringLiteral(LXDOC_BIN_DIR "/lxdoc");
}

inline Run runTool(const QStringList &arguments, const QString &folder, int timeout = 120000)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(toolPath(), arguments);
    Run result;
    if (!process.waitForFinished(timeout) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.status = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

#endif
