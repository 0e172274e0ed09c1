// SPDX-License-Identifier: MIT
#include "renderlimits.h"

#include "commandline.h"

#include <cmath>

namespace {

struct Named {
    const char *name;
    double RenderLimits::*field;
};

const Named kNames[] = {{"side", &RenderLimits::side},   {"pixels", &RenderLimits::pixels},
                        {"value", &RenderLimits::value}, {"text", &RenderLimits::text},
                        {"coordinate", &RenderLimits::coordinate}, {"drawing", &RenderLimits::drawing}};

// The tool draws on one thread and sets the limits once, from its command
// line, before any page is read.
RenderLimits &limits()
{
    static RenderLimits current;
    return current;
}

QString names()
{
    QStringList all;
    for (const Named &named : kNames)
        all << QLatin1String(named.name);
    return all.join(QStringLiteral(", "));
}

} // namespace

const RenderLimits &RenderLimits::current()
{
    return limits();
}

QCommandLineOption RenderLimits::option()
{
    const RenderLimits defaults;
    QStringList described;
    for (const Named &named : kNames)
        described << QStringLiteral("%1=%2").arg(QLatin1String(named.name)).arg(defaults.*named.field, 0, 'g', 12);
    return QCommandLineOption(QStringLiteral("limit"),
                              QStringLiteral("Raise a drawing limit for a lesson you trust, NAME=NUMBER; "
                                             "may be repeated. Defaults: %1.").arg(described.join(QStringLiteral(", "))),
                              QStringLiteral("NAME=NUMBER"));
}

bool RenderLimits::apply(const CommandLine &line, QString *error)
{
    RenderLimits changed = limits();
    for (const QString &joined : line.values(QStringLiteral("limit"))) {
        for (const QString &assignment : joined.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            if (!changed.set(assignment.trimmed(), error))
                return false;
        }
    }
    limits() = changed;
    return true;
}

bool RenderLimits::set(const QString &assignment, QString *error)
{
    const int equals = assignment.indexOf(QLatin1Char('='));
    const QString name = assignment.left(equals);
    bool ok = false;
    const double number = assignment.mid(equals + 1).toDouble(&ok);
    for (const Named &named : kNames) {
        if (equals <= 0 || name != QLatin1String(named.name))
            continue;
        if (!ok || !std::isfinite(number) || number <= 0) {
            *error = QStringLiteral("--limit %1 takes a positive number").arg(name);
            return false;
        }
        this->*named.field = number;
        return true;
    }
    *error = QStringLiteral("--limit takes NAME=NUMBER, NAME one of %1").arg(names());
    return false;
}
