// SPDX-License-Identifier: MIT
#include "console.h"

#include <QFileDevice>
#include <QJsonArray>
#include <QJsonObject>
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

bool isControl(char16_t c)
{
    return c < 0x20 || (c >= 0x7f && c < 0xa0);
}

QString escapedControl(char16_t c)
{
    switch (c) {
    case u'\n': return QStringLiteral("\\n");
    case u'\r': return QStringLiteral("\\r");
    case u'\t': return QStringLiteral("\\t");
    default: return QStringLiteral("\\x%1").arg(int(c), 2, 16, QLatin1Char('0'));
    }
}

// An error is one line a person reads: a name of thousands of characters
// (a lesson can hold one) keeps its start and its end.
QString shortened(const QString &line)
{
    const int keep = 160;
    if (line.size() <= 2 * keep + 3)
        return line;
    return line.left(keep) + QLatin1String("...") + line.right(keep);
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

QString Console::printable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (isControl(c.unicode()))
            result += escapedControl(c.unicode());
        else
            result += c;
    }
    return result;
}

QJsonValue Console::printable(const QJsonValue &value)
{
    if (value.isString())
        return printable(value.toString());
    if (value.isArray()) {
        QJsonArray result;
        for (const QJsonValue &item : value.toArray())
            result.append(printable(item));
        return result;
    }
    if (value.isObject()) {
        QJsonObject result;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it)
            result.insert(printable(it.key()), printable(it.value()));
        return result;
    }
    return value;
}

void Console::out(const QString &lines)
{
    const QStringList parts = lines.split(QLatin1Char('\n'));
    for (const QString &line : parts)
        stream(stdout) << printable(line) << '\n';
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
    stream(stderr) << "lxdoc: " << shortened(printable(message)) << Qt::endl;
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
