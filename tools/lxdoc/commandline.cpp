#include "commandline.h"

#include "console.h"

#include <QRegularExpression>
#include <QTextStream>

#include <climits>

#include <cstdio>

CommandLine::CommandLine(const QString &command, const QString &description)
    : m_command(command)
{
    m_parser.setApplicationDescription(description);
    m_parser.addHelpOption();
    m_parser.addPositionalArgument(command, QStringLiteral("(this command)"), command);
}

void CommandLine::addArgument(const QString &name, const QString &description, bool optional)
{
    m_parser.addPositionalArgument(name, description, optional ? QStringLiteral("[%1]").arg(name) : name);
    ++m_total;
    if (!optional)
        ++m_required;
}

void CommandLine::allowMore()
{
    m_total = INT_MAX;
}

void CommandLine::addOption(const QCommandLineOption &option)
{
    m_parser.addOption(option);
}

int CommandLine::parse(const QStringList &arguments)
{
    if (!m_parser.parse(arguments))
        return Console::fail(QStringLiteral("%1: %2 (see 'lxdoc %1 --help')").arg(m_command, m_parser.errorText()), ExitUsage);
    if (m_parser.isSet(QStringLiteral("help")) || m_parser.optionNames().contains(QStringLiteral("help-all"))) {
        QTextStream(stdout) << m_parser.helpText();
        return ExitOk;
    }
    const int count = int(this->arguments().size());
    if (count < m_required || count > m_total)
        return Console::fail(QStringLiteral("%1: expected %2 argument(s), got %3 (see 'lxdoc %1 --help')")
                                 .arg(m_command).arg(m_required).arg(count), ExitUsage);
    return -1;
}

QStringList CommandLine::arguments() const
{
    // The first positional argument is the subcommand itself.
    return m_parser.positionalArguments().mid(1);
}

QString CommandLine::argument(int index, const QString &fallback) const
{
    return arguments().value(index, fallback);
}

bool CommandLine::isSet(const QString &name) const
{
    return m_parser.isSet(name);
}

QString CommandLine::value(const QString &name) const
{
    return m_parser.value(name);
}

QString CommandLine::command() const
{
    return m_command;
}

bool CommandLine::parseSize(const QString &text, QSize *size)
{
    const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("^(\\d+)x(\\d+)$")).match(text);
    if (!match.hasMatch())
        return false;
    // Beyond this an image no longer fits in memory comfortably.
    const int largest = 20000;
    *size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    return !size->isEmpty() && size->width() <= largest && size->height() <= largest;
}
