#include "console.h"

#include <QFileDevice>
#include <QTextStream>
#include <QtGlobal>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

bool g_progressShown = false;
Console::Level g_level = Console::Normal;

QTextStream &makeUtf8(QTextStream &stream)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // Qt 5 streams write in the locale's encoding; lesson titles are UTF-8.
    stream.setCodec("UTF-8");
#endif
    return stream;
}

QTextStream &stream(FILE *file)
{
    static QTextStream outStream(stdout);
    static QTextStream errStream(stderr);
    static QTextStream &out = makeUtf8(outStream);
    static QTextStream &err = makeUtf8(errStream);
    return file == stdout ? out : err;
}

void filterMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (g_level == Console::Verbose || type == QtFatalMsg)
        stream(stderr) << "lxdoc: (qt) " << message.trimmed() << Qt::endl;
}

bool stderrIsTerminal()
{
    return isatty(fileno(stderr)) != 0;
}

} // namespace

void Console::installMessageFilter()
{
    // "0" and an empty value switch it off, as with most tools' switches.
    const QByteArray verbose = qgetenv("LXDOC_VERBOSE");
    if (!verbose.isEmpty() && verbose != "0")
        g_level = Verbose;
    qInstallMessageHandler(filterMessage);
}

void Console::setLevel(Level level)
{
    g_level = level;
}

void Console::out(const QString &line)
{
    stream(stdout) << line << '\n';
    stream(stdout).flush();
}

void Console::note(const QString &line)
{
    if (g_level != Quiet)
        out(line);
}

int Console::fail(const QString &message, int status)
{
    endProgress();
    stream(stderr) << "lxdoc: " << message << Qt::endl;
    return status;
}

int Console::usage(const QString &message, const QString &usageLine)
{
    fail(message);
    stream(stderr) << "Usage: " << usageLine << Qt::endl;
    return ExitUsage;
}

void Console::progress(int done, int total, const QString &what)
{
    if (g_level == Quiet || !stderrIsTerminal())
        return;
    stream(stderr) << "\r\033[K" << what << ' ' << done << '/' << total;
    stream(stderr).flush();
    g_progressShown = true;
}

void Console::endProgress()
{
    if (!g_progressShown)
        return;
    stream(stderr) << "\r\033[K";
    stream(stderr).flush();
    g_progressShown = false;
}

int Console::finish(int status)
{
    stream(stdout).flush();
    errno = 0;
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return status;
    // The stream's file saw the first failure and kept the system's reason.
    const auto *file = qobject_cast<QFileDevice *>(stream(stdout).device());
    const QString reason = file && file->error() != QFileDevice::NoError ? file->errorString() : systemReason(errno ? errno : EIO);
    return fail(QStringLiteral("cannot write the standard output: %1").arg(reason));
}

QString Console::systemReason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}
