// SPDX-License-Identifier: MIT
// Every input that once crashed a fuzz target or broke one of its promises is
// kept under tests/data/fuzz/<target>/ and replayed here through the same
// entry function the fuzzer runs, together with the seed corpus.

#include "../../fuzz/lxfuzz.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QtTest>

namespace {

using Entry = QString (*)(const QByteArray &);

Entry entryFor(const QString &target)
{
    if (target == QLatin1String("xmlstream"))
        return lxfuzz::runXmlStream;
    if (target == QLatin1String("loaders"))
        return lxfuzz::runLoaders;
    if (target == QLatin1String("textparsers"))
        return lxfuzz::runTextParsers;
    if (target == QLatin1String("unpack"))
        return lxfuzz::runUnpack;
    return nullptr;
}

// The library warns on every malformed input; the replay is about crashes.
void quiet(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg)
        qFatal("%s", qPrintable(message));
}

} // namespace

class TestFuzzRegressions : public QObject {
    Q_OBJECT

private slots:
    void replay_data();
    void replay();
};

void TestFuzzRegressions::replay_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("path");
    const QString crashes = QStringLiteral(LXDOC_TEST_DATA "/fuzz");
    const QString seeds = QStringLiteral(LXDOC_TEST_DATA "/../../fuzz/corpus");
    int crashCount = 0;
    for (const QString &root : {crashes, seeds}) {
        const QStringList targets = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString &target : targets) {
            const QFileInfoList inputs = QDir(root + QLatin1Char('/') + target).entryInfoList(QDir::Files, QDir::Name);
            for (const QFileInfo &input : inputs) {
                crashCount += root == crashes;
                QTest::newRow(qPrintable(target + QLatin1Char('/') + input.fileName()))
                    << target << input.absoluteFilePath();
            }
        }
    }
    QVERIFY2(crashCount > 0, "the kept crash inputs are missing");
}

void TestFuzzRegressions::replay()
{
    QFETCH(QString, target);
    QFETCH(QString, path);
    const Entry entry = entryFor(target);
    QVERIFY2(entry, qPrintable(QStringLiteral("no fuzz target named ") + target));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray data = file.readAll();
    const QtMessageHandler previous = qInstallMessageHandler(quiet);
    const QString problem = entry(data);
    qInstallMessageHandler(previous);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
}

QTEST_GUILESS_MAIN(TestFuzzRegressions)
#include "tst_fuzzregressions.moc"
