// SPDX-License-Identifier: MIT
#include "limitoption.h"

#include "document/archivelimits.h"
#include "lxdoc.h"
#include "xml/readlimits.h"

#include <QStringList>

#include <climits>

namespace {

// Every limit by the name the option gives it; the fields start out as the
// limits in force, so a name left out keeps its value.
struct Limits {
    LXReadLimits read = ReadLimits::current();
    LXArchiveLimits archive = ArchiveLimits::current();

    bool set(const QString &name, long long value)
    {
        if (name == QLatin1String("entries"))
            archive.maxEntries = value;
        else if (name == QLatin1String("ratio"))
            archive.maxRatio = value;
        else if (value > INT_MAX)
            return false;
        else if (name == QLatin1String("pages"))
            read.maxPages = int(value);
        else if (name == QLatin1String("depth"))
            read.maxXmlDepth = int(value);
        else if (name == QLatin1String("attributes"))
            read.maxXmlAttributes = int(value);
        else
            return false;
        return true;
    }

    void applyEverywhere() const
    {
        ReadLimits::set(read);
        lxdoc_set_read_limits(&read);
        ArchiveLimits::set(archive);
        lxdoc_set_archive_limits(&archive);
    }
};

} // namespace

bool LimitOption::apply(const QString &text, QString *error)
{
    Limits limits;
    for (const QString &item : text.split(QLatin1Char(','))) {
        const int equals = int(item.indexOf(QLatin1Char('=')));
        bool number = false;
        const long long value = item.mid(equals + 1).toLongLong(&number);
        if (equals <= 0 || !number || value < 1 || !limits.set(item.left(equals), value)) {
            *error = QStringLiteral("--limits: '%1' is not NAME=NUMBER with a known name and a positive number "
                                    "(names: pages, depth, attributes, entries, ratio)").arg(item);
            return false;
        }
    }
    limits.applyEverywhere();
    return true;
}

QString LimitOption::describe()
{
    const Limits limits;
    return QStringLiteral("pages=%1,depth=%2,attributes=%3,entries=%4,ratio=%5")
        .arg(limits.read.maxPages)
        .arg(limits.read.maxXmlDepth)
        .arg(limits.read.maxXmlAttributes)
        .arg(limits.archive.maxEntries)
        .arg(limits.archive.maxRatio);
}
