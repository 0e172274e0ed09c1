#ifndef LXDOC_TESTS_HOSTILENAMES_H
#define LXDOC_TESTS_HOSTILENAMES_H

// Names a host may pass where an element or attribute name is expected, with
// whether the library must take them. Shared by the name rule's own test and
// the tests that push the names through every setter and creator.

#include <QList>
#include <QString>
#include <QtTest>

struct HostileName {
    const char *row;
    QString name;
    bool valid;
};

inline QList<HostileName> hostileNames()
{
    return {
        {"plain", QStringLiteral("max-gid"), true},
        {"all name characters", QStringLiteral("_x-y.z9"), true},
        {"prefixed", QStringLiteral("xlink:href"), true},
        {"non-ASCII letters", QString::fromUtf8("\xc3\xa9t\xc3\xa9\xe5\x90\x8d"), true},
        {"longest Qt reads", QString(4096, QLatin1Char('n')), true},
        {"too long", QString(4097, QLatin1Char('n')), false},
        {"space", QStringLiteral("a b"), false},
        {"leading digit", QStringLiteral("1x"), false},
        {"leading minus", QStringLiteral("-a"), false},
        {"dot", QStringLiteral("."), false},
        {"colon", QStringLiteral(":"), false},
        {"leading colon", QStringLiteral(":a"), false},
        {"trailing colon", QStringLiteral("a:"), false},
        {"two colons", QStringLiteral("a:b:c"), false},
        {"equals", QStringLiteral("a=b"), false},
        {"quote", QStringLiteral("a\"b"), false},
        {"less than", QStringLiteral("a<b"), false},
        {"greater than", QStringLiteral("a>"), false},
        {"slash", QStringLiteral("a/b"), false},
        {"control character", QStringLiteral("a") + QChar(1) + QStringLiteral("b"), false},
        {"lone surrogate", QStringLiteral("a") + QChar(0xd800), false},
        {"empty", QString(), false},
        // A letter of the current name tables that Qt's parser does not know.
        {"letter Qt cannot read", QStringLiteral("a") + QChar(0xd83d) + QChar(0xde00), false},
    };
}

inline void addHostileNameRows()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("valid");
    for (const HostileName &entry : hostileNames())
        QTest::newRow(entry.row) << entry.name << entry.valid;
}

#endif
