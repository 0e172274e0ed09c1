#include "manifest/manifestreader.h"
#include "manifest/qlxresmgr.h"
#include "manifest/qmanifest.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {

using Add = bool (ILXResMgr::*)(const QString &, QString &);

} // namespace

class TestResMgr : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_doc;
    QString m_sources;
    QManifest m_manifest;
    QLXResMgr *m_resMgr = nullptr;

    QString manifestPath() const { return m_doc + QStringLiteral("/manifest.xml"); }

    QString source(const QString &name, const QByteArray &content = "content")
    {
        const QString path = m_sources + QLatin1Char('/') + name;
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(content);
            file.flush();
            // An old time, so a copy that does not keep it cannot match by chance.
            file.setFileTime(QDateTime(QDate(2020, 5, 4), QTime(8, 30)), QFileDevice::FileModificationTime);
        }
        return path;
    }

    QStringList listOnDisk(const QString &identifier)
    {
        m_manifest.saveFile();
        return manifestList(manifestPath(), identifier);
    }

private slots:
    void init()
    {
        m_doc = m_dir.filePath(QStringLiteral("doc"));
        m_sources = m_dir.filePath(QStringLiteral("sources"));
        QDir(m_doc).removeRecursively();
        QDir(m_sources).removeRecursively();
        QVERIFY(QDir().mkpath(m_doc));
        QVERIFY(m_manifest.createManifestFile(manifestPath()));
        m_resMgr = new QLXResMgr(&m_manifest, m_doc);
    }

    void cleanup()
    {
        m_resMgr->release();
        m_manifest.closeFile(false);
    }

    void naming_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("relative");
        QTest::newRow("plain") << "/x/photo.png" << "images/photo.png";
        QTest::newRow("last dot splits") << "/x/archive.tar.gz" << "images/archive.tar.gz";
        QTest::newRow("no dot doubles the name") << "/x/README" << "images/README.README";
        QTest::newRow("dot in folder only") << "/x.d/notes" << "images/notes.notes";
        QTest::newRow("no slash") << "clip.ogg" << "images/clip.ogg";
        QTest::newRow("hidden name") << "/x/.profile" << "images/.profile";
    }

    void naming()
    {
        QFETCH(QString, source);
        QFETCH(QString, relative);
        QString full;
        QString name;
        QVERIFY(m_resMgr->getNewFilePath(source, QStringLiteral("images"), full, name));
        QCOMPARE(name, relative);
        QCOMPARE(full, m_doc + QLatin1Char('/') + relative);
    }

    void kinds_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("identifier");
        QTest::newRow("image") << 0 << "images" << "images";
        QTest::newRow("sound") << 1 << "sounds" << "sounds";
        QTest::newRow("avmedia") << 2 << "avmedia" << "avmedia";
        QTest::newRow("flash folder, flashes list") << 3 << "flash" << "flashes";
        QTest::newRow("fillblock") << 4 << "fillblocks" << "fillblocks";
        QTest::newRow("attachment") << 5 << "attachments" << "attachments";
    }

    void kinds()
    {
        QFETCH(int, kind);
        QFETCH(QString, folder);
        QFETCH(QString, identifier);
        const Add adds[] = {&ILXResMgr::addImageFile, &ILXResMgr::addSoundFile, &ILXResMgr::addAvMediaFile,
                            &ILXResMgr::addFlashFile, &ILXResMgr::addFillblockFile, &ILXResMgr::addAttachmentFile};
        ILXResMgr *const resMgr = m_resMgr;
        QVERIFY(!QFileInfo::exists(m_doc + QLatin1Char('/') + folder));
        QString newPath;
        QVERIFY((resMgr->*adds[kind])(source(QStringLiteral("media.bin"), "media"), newPath));
        const QString relative = folder + QStringLiteral("/media.bin");
        QCOMPARE(newPath, m_doc + QLatin1Char('/') + relative);
        QFile copy(newPath);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), QByteArray("media"));
        QCOMPARE(listOnDisk(identifier), QStringList(relative));
    }

    void identicalCopyIsReused()
    {
        const QString photo = source(QStringLiteral("photo.png"));
        QString first;
        QString second;
        QVERIFY(m_resMgr->addImageFile(photo, first));
        QCOMPARE(QFileInfo(first).lastModified(), QFileInfo(photo).lastModified());
        QVERIFY(!m_resMgr->addImageFile(photo, second));
        QCOMPARE(second, m_doc + QStringLiteral("/images/photo.png"));
        QCOMPARE(listOnDisk(QStringLiteral("images")), QStringList(QStringLiteral("images/photo.png")));
    }

    void differentFilesOfOneNameGetCounters()
    {
        QString path;
        QVERIFY(m_resMgr->addImageFile(source(QStringLiteral("a/photo.png"), "one"), path));
        QVERIFY(m_resMgr->addImageFile(source(QStringLiteral("b/photo.png"), "two!"), path));
        QCOMPARE(path, m_doc + QStringLiteral("/images/photo1.png"));
        QVERIFY(m_resMgr->addImageFile(source(QStringLiteral("c/photo.png"), "three"), path));
        QCOMPARE(path, m_doc + QStringLiteral("/images/photo2.png"));
        QCOMPARE(listOnDisk(QStringLiteral("images")),
                 QStringList({"images/photo.png", "images/photo1.png", "images/photo2.png"}));
    }

    void sameSizeNewerTimeIsAnotherFile()
    {
        const QString photo = source(QStringLiteral("photo.png"));
        QString path;
        QVERIFY(m_resMgr->addImageFile(photo, path));
        QFile copy(path);
        QVERIFY(copy.open(QIODevice::ReadWrite));
        QVERIFY(copy.setFileTime(QFileInfo(photo).lastModified().addSecs(60), QFileDevice::FileModificationTime));
        copy.close();
        QVERIFY(m_resMgr->addImageFile(photo, path));
        QCOMPARE(path, m_doc + QStringLiteral("/images/photo1.png"));
    }

    void identicalCopyFoundPastTakenNames()
    {
        QString path;
        QVERIFY(m_resMgr->addSoundFile(source(QStringLiteral("a/bell.wav"), "other"), path));
        const QString bell = source(QStringLiteral("b/bell.wav"), "ring");
        QVERIFY(m_resMgr->addSoundFile(bell, path));
        QVERIFY(!m_resMgr->addSoundFile(bell, path));
        QCOMPARE(path, m_doc + QStringLiteral("/sounds/bell1.wav"));
    }

    void fillblocksAreAlwaysCopied()
    {
        const QString block = source(QStringLiteral("block.fb"));
        QString path;
        QVERIFY(m_resMgr->addFillblockFile(block, path));
        QVERIFY(m_resMgr->addFillblockFile(block, path));
        QCOMPARE(path, m_doc + QStringLiteral("/fillblocks/block1.fb"));
        QCOMPARE(listOnDisk(QStringLiteral("fillblocks")), QStringList({"fillblocks/block.fb", "fillblocks/block1.fb"}));
    }

    void missingSourceFailsWithoutEntry()
    {
        QString path;
        QVERIFY(!m_resMgr->addImageFile(m_sources + QStringLiteral("/gone.png"), path));
        QCOMPARE(path, m_doc + QStringLiteral("/images/gone.png"));
        QVERIFY(!QFileInfo::exists(path));
        QCOMPARE(listOnDisk(QStringLiteral("images")), QStringList());
    }

    void missingSourceIsNotAnIdenticalCopy()
    {
        QString path;
        QVERIFY(m_resMgr->addImageFile(source(QStringLiteral("photo.png")), path));
        QVERIFY(!m_resMgr->addImageFile(m_sources + QStringLiteral("/x/photo.png"), path));
        QCOMPARE(path, m_doc + QStringLiteral("/images/photo1.png"));
    }

    void tempPathIsTheWorkingFolder()
    {
        QCOMPARE(m_resMgr->getTempPath(), m_doc);
    }
};

QTEST_GUILESS_MAIN(TestResMgr)
#include "tst_resmgr.moc"
