// SPDX-License-Identifier: MIT
#include "commandline.h"

#include "console.h"
#include "renderlimits.h"

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
    // Taken off the command line before a command sees it; listed so that
    // every command's help shows them.
    m_parser.addOption(QCommandLineOption({QStringLiteral("q"), QStringLiteral("quiet")},
                                          QStringLiteral("Show only results and errors: no progress, no summary lines.")));
    m_parser.addOption(QCommandLineOption({QStringLiteral("v"), QStringLiteral("verbose")},
                                          QStringLiteral("Also show warnings from Qt and the document library.")));
    m_parser.addOption(QCommandLineOption(QStringLiteral("limits"),
                                          QStringLiteral("Raise the reading limits: pages, depth, attributes, entries, ratio "
                                                         "(e.g. pages=20000,depth=512)."),
                                          QStringLiteral("LIST")));
}

void CommandLine::addArgument(const QString &name, const QString &description, bool optional)
{
    const QString syntax = optional ? QStringLiteral("[%1]").arg(name) : name;
    m_parser.addPositionalArgument(name, description, syntax);
    m_syntax << syntax;
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
        return Console::usage(QStringLiteral("%1: %2").arg(m_command, m_parser.errorText()), usageLine());
    if (m_parser.isSet(QStringLiteral("help")) || m_parser.optionNames().contains(QStringLiteral("help-all"))) {
        Console::out(helpText());
        return ExitOk;
    }
    const int count = int(this->arguments().size());
    if (count < m_required || count > m_total)
        return Console::usage(QStringLiteral("%1: expected %2, got %3").arg(m_command, expectedCount()).arg(count), usageLine());
    return -1;
}

QString CommandLine::usageLine() const
{
    return QStringLiteral("lxdoc %1 [options] %2").arg(m_command, m_syntax.join(QLatin1Char(' '))).trimmed();
}

QString CommandLine::helpText() const
{
    // Qt's own first line names the executable by its full path and puts the
    // options before the command.
    QString text = m_parser.helpText();
    text.replace(0, text.indexOf(QLatin1Char('\n')), QStringLiteral("Usage: ") + usageLine());
    return text.trimmed();
}

QString CommandLine::expectedCount() const
{
    const QString noun = m_total == 1 ? QStringLiteral("argument") : QStringLiteral("arguments");
    if (m_required == m_total)
        return QStringLiteral("%1 %2").arg(m_total).arg(noun);
    const QString range = m_total == m_required + 1 ? QStringLiteral("%1 or %2") : QStringLiteral("%1 to %2");
    return range.arg(m_required).arg(m_total) + QLatin1Char(' ') + noun;
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

QStringList CommandLine::values(const QString &name) const
{
    return m_parser.values(name);
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
    const double largest = RenderLimits::current().side;
    *size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    return !size->isEmpty() && size->width() <= largest && size->height() <= largest;
}
