// SPDX-License-Identifier: MIT
#ifndef LXDOC_TESTS_TOOLRUNNER_H
#define LXDOC_TESTS_TOOLRUNNER_H

// Runs the built "lxdoc" as a user runs it and keeps what it said.

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

struct ToolRun {
    int status = -1; // -1: did not end normally (crash, signal, time-out)
    QByteArray bytes; // stdout as written
    QString out;
    QString err;
};

struct ToolCall {
    QString folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QByteArray input;
    QString outputFile; // stdout goes there when set
    int timeout = 120000;
};

inline QString toolPath()
{
    return QStringLiteral(LXDOC_BIN_DIR "/lxdoc");
}

inline ToolRun runTool(const QStringList &arguments, const ToolCall &call)
{
    QProcess process;
    process.setWorkingDirectory(call.folder);
    process.setProcessEnvironment(call.environment);
    if (!call.outputFile.isEmpty())
        process.setStandardOutputFile(call.outputFile);
    process.start(toolPath(), arguments);
    process.write(call.input);
    process.closeWriteChannel();
    ToolRun result;
    if (!process.waitForFinished(call.timeout) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.status = process.exitCode();
    result.bytes = process.readAllStandardOutput();
    result.out = QString::fromUtf8(result.bytes);
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

inline ToolRun runTool(const QStringList &arguments, const QString &folder, int timeout = 120000)
{
    ToolCall call;
    call.folder = folder;
    call.timeout = timeout;
    return runTool(arguments, call);
}

using Run = ToolRun;

#endif
