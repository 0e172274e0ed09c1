// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_COMMANDLINE_H
#define LXDOC_TOOL_COMMANDLINE_H

#include <QCommandLineParser>
#include <QSize>
#include <QStringList>

// The options of one subcommand. The subcommand's name is its first
// positional argument, so "lxdoc dump --help" shows "lxdoc dump ..." usage.
class CommandLine {
public:
    CommandLine(const QString &command, const QString &description);

    void addArgument(const QString &name, const QString &description, bool optional = false);
    void addOption(const QCommandLineOption &option);
    // The last argument may be given any number of times.
    void allowMore();

    // Returns -1 when the command should run, otherwise the exit status
    // (help shown, or a usage error already reported).
    int parse(const QStringList &arguments);

    QStringList arguments() const;
    QString argument(int index, const QString &fallback = QString()) const;
    bool isSet(const QString &name) const;
    QString value(const QString &name) const;
    // Every value of an option given more than once.
    QStringList values(const QString &name) const;
    QString command() const;
    // "lxdoc COMMAND [options] ARGS", the bare program name.
    QString usageLine() const;

    // "WxH" with both sides positive and of a size an image can have.
    static bool parseSize(const QString &text, QSize *size);

private:
    QString helpText() const;
    // "1 argument", "0 or 1 argument", "2 arguments".
    QString expectedCount() const;

    QCommandLineParser m_parser;
    QString m_command;
    QStringList m_syntax;
    int m_required = 0;
    int m_total = 0;
};

#endif
