#ifndef LXDOC_TOOL_CONSOLE_H
#define LXDOC_TOOL_CONSOLE_H

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
    // Qt and library warnings are internal chatter for a command-line user;
    // they are shown only when LXDOC_VERBOSE is set.
    static void installMessageFilter();
    static void out(const QString &line);
    static int fail(const QString &message, int status = ExitFailure);
    static void progress(int done, int total, const QString &what);
    static void endProgress();
};

#endif
