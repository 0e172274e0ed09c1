// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_CONSOLE_H
#define LXDOC_TOOL_CONSOLE_H

#include <QJsonValue>
#include <QString>

enum ExitStatus {
    ExitOk = 0,
    ExitFailure = 1,
    ExitUsage = 2,
    // A rescue that brought back only part of a lesson.
    ExitPartial = 3
};

// The tool's only ways to talk: results on stdout, one-line errors and
// progress on stderr.
class Console {
public:
    enum Level { Quiet, Normal, Verbose };

    // Qt and library warnings are internal chatter for a command-line user;
    // they are shown only at the verbose level.
    static void installMessageFilter();
    static void setLevel(Level level);
    // A result line that --quiet leaves out ("rendered 3 page(s) ...").
    static void note(const QString &line);
    // Names read from a lesson may hold terminal controls or line breaks:
    // every one is shown as an escape ("\x1b", "\n") before it is printed.
    static QString printable(const QString &text);
    // The same for every key and string of a JSON tree.
    static QJsonValue printable(const QJsonValue &value);
    // Lines of text; controls other than the line breaks between them are
    // escaped here too, so a name that slipped through stays harmless.
    static void out(const QString &lines);
    static int fail(const QString &message, int status = ExitFailure);
    // A usage error: the message, then the short usage of the command.
    static int usage(const QString &message, const QString &usageLine);
    static void progress(int done, int total, const QString &what);
    static void endProgress();
    // Flushes stdout: a result that could not be written in full is a
    // failure, even when the command itself went well.
    static int finish(int status);
    // The system's reason for the last failed call, as strerror gives it.
    static QString systemReason(int error);
};

#endif
