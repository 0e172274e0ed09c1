// SPDX-License-Identifier: MIT
// Where working folders go: "Temp" beside the executable when it can be used,
// else a private folder of the user's own, and never one that is not.

#include "document/temproot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

int modeOf(const QString &path)
{
    struct stat status;
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 0777) : -1;
}

} // namespace

class TestTempRoot : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString tmp(const QString &name) const { return m_dir.filePath(name); }

    // Each setup names one way a candidate folder can be found on disk.
    bool prepare(const QString &how, const QString &path) const
    {
        if (how == QLatin1String("folder"))
            return QDir().mkpath(path);
        if (how == QLatin1String("open folder"))
            return QDir().mkpath(path) && ::chmod(QFile::encodeName(path).constData(), 0755) == 0;
        if (how == QLatin1String("file"))
            return QFile(path).open(QIODevice::WriteOnly);
        if (how == QLatin1String("link"))
            return QDir().mkpath(tmp("target")) && QFile::link(tmp("target"), path);
        if (how == QLatin1String("dangling link"))
            return QFile::link(tmp("nowhere"), path);
        if (how == QLatin1String("foreign folder"))
            return QDir().mkpath(path) && ::chown(QFile::encodeName(path).constData(), 65534, 65534) == 0;
        return true;
    }

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        const QStringList left = QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System);
        for (const QString &name : left) {
            QFile::remove(tmp(name));
            QDir(tmp(name)).removeRecursively();
        }
        QVERIFY(QDir().mkpath(tmp("run")));
        qputenv("XDG_CACHE_HOME", QFile::encodeName(tmp("cache")));
    }

    void choose_data()
    {
        QTest::addColumn<QString>("beside");      // state of "Temp" beside the executable
        QTest::addColumn<QString>("chosen");      // LXDOC_TEMP_ROOT: a name under the test folder, or as is
        QTest::addColumn<QString>("chosenState");
        QTest::addColumn<bool>("runtime");        // XDG_RUNTIME_DIR set
        QTest::addColumn<QString>("expected");    // "beside", "chosen", "runtime" or "cache"

        QTest::newRow("beside exists") << "folder" << "mine" << "" << true << "beside";
        QTest::newRow("beside can be made") << "missing" << "mine" << "" << true << "beside";
        QTest::newRow("beside is a file") << "file" << "mine" << "" << true << "chosen";
        QTest::newRow("beside is a dangling link") << "dangling link" << "" << "" << true << "runtime";
        QTest::newRow("no executable folder") << "none" << "" << "" << false << "cache";
        QTest::newRow("chosen made private") << "none" << "mine" << "" << true << "chosen";
        QTest::newRow("chosen narrowed to the user") << "none" << "mine" << "open folder" << true << "chosen";
        QTest::newRow("chosen is a link") << "none" << "mine" << "link" << true << "runtime";
        QTest::newRow("chosen is a file") << "none" << "mine" << "file" << false << "cache";
        QTest::newRow("chosen of another user") << "none" << "mine" << "foreign folder" << true << "runtime";
        QTest::newRow("chosen is the root") << "none" << "/" << "" << true << "runtime";
        QTest::newRow("chosen is the shared temp") << "none" << QDir::tempPath() << "" << true << "runtime";
        QTest::newRow("chosen is relative") << "none" << "relative/root" << "" << true << "runtime";
    }

    void choose()
    {
        QFETCH(QString, beside);
        QFETCH(QString, chosen);
        QFETCH(QString, chosenState);
        QFETCH(bool, runtime);
        QFETCH(QString, expected);
        if (chosenState == QLatin1String("foreign folder") && ::geteuid() != 0)
            QSKIP("only root can give a folder to another user");

        const QString besidePath = beside == QLatin1String("none") ? QString() : tmp("bin/Temp");
        QVERIFY(QDir().mkpath(tmp("bin")) && prepare(beside, besidePath));
        const bool underTest = !chosen.isEmpty() && !chosen.startsWith(QLatin1Char('/')) && !chosen.contains('/');
        const QString chosenPath = underTest ? tmp(chosen) : chosen;
        QVERIFY(prepare(chosenState, chosenPath));
        qputenv("LXDOC_TEMP_ROOT", QFile::encodeName(chosenPath));
        if (runtime)
            qputenv("XDG_RUNTIME_DIR", QFile::encodeName(tmp("run")));
        else
            qunsetenv("XDG_RUNTIME_DIR");

        const QMap<QString, QString> places = {{QStringLiteral("beside"), besidePath},
                                               {QStringLiteral("chosen"), chosenPath},
                                               {QStringLiteral("runtime"), tmp("run/lxdoc")},
                                               {QStringLiteral("cache"), tmp("cache/lxdoc")}};
        QCOMPARE(TempRoot::choose(besidePath), places.value(expected) + QLatin1Char('/'));
        if (expected == QLatin1String("beside"))
            QCOMPARE(QFileInfo::exists(besidePath), beside == QLatin1String("folder"));
        else
            QCOMPARE(modeOf(places.value(expected)), 0700);
        QVERIFY(!QFileInfo::exists(QStringLiteral("/Temp")));
    }

    void placesListsEveryCandidate()
    {
        qputenv("LXDOC_TEMP_ROOT", QFile::encodeName(tmp("mine")));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(tmp("run")));
        const QStringList expected = {QCoreApplication::applicationDirPath() + "/Temp", tmp("mine"),
                                      tmp("run/lxdoc"), tmp("cache/lxdoc")};
        QCOMPARE(TempRoot::places(), expected);
        QVERIFY(!QFileInfo::exists(tmp("mine")) && !QFileInfo::exists(tmp("cache")));
    }
};

QTEST_GUILESS_MAIN(TestTempRoot)
#include "tst_temproot.moc"
