#ifndef LXDOC_TOOL_CONSOLE_H
#define LXDOC_TOOL_CONSOLE_H

#include <QJsonValue>
#include <QString>

enum ExitStatus {
    ExitOk = 0,
    ExitFailure = 1,
    ExitUsage = 2
};

// The tool's only ways to talk: results on stdout, one-line errors and
// progress on stderr.
class Console {
public:
    // Qt and library warnings are internal chatter for a command-line user;
    // they are shown only when LXDOC_VERBOSE is set.
    static void installMessageFilter();
    // Names read from a lesson may hold terminal controls or line breaks:
    // every one is shown as an escape ("\x1b", "\n") before it is printed.
    static QString printable(const QString &text);
    // The same for every key and string of a JSON tree.
    static QJsonValue printable(const QJsonValue &value);
    // Lines of text; controls other than the line breaks between them are
    // escaped here too, so a name that slipped through stays harmless.
    static void out(const QString &lines);
    static int fail(const QString &message, int status = ExitFailure);
    static void progress(int done, int total, const QString &what);
    static void endProgress();
};

#endif
