#include "console.h"

#include <QTextStream>
#include <QtGlobal>

#include <cstdio>
#include <unistd.h>

namespace {

bool g_progressShown = false;

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
    static const bool verbose = qEnvironmentVariableIsSet("LXDOC_VERBOSE");
    if (verbose || type == QtFatalMsg)
        stream(stderr) << "lxdoc: (qt) " << message.trimmed() << Qt::endl;
}

bool stderrIsTerminal()
{
    return isatty(fileno(stderr)) != 0;
}

} // namespace

void Console::installMessageFilter()
{
    qInstallMessageHandler(filterMessage);
}

void Console::out(const QString &line)
{
    stream(stdout) << line << '\n';
    stream(stdout).flush();
}

int Console::fail(const QString &message, int status)
{
    endProgress();
    stream(stderr) << "lxdoc: " << message << Qt::endl;
    return status;
}

void Console::progress(int done, int total, const QString &what)
{
    if (!stderrIsTerminal())
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
