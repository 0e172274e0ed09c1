// SPDX-License-Identifier: MIT
#include "manifest/manifestreader.h"
#include "manifest/qlxresmgr.h"
#include "manifest/qmanifest.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestResMgr : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_doc;
    QManifest m_manifest;
    QLXResMgr *m_resMgr = nullptr;

    // A source file with an old time, so a copy that does not keep the time
    // cannot match it by chance.
    QString source(const QString &name, const QByteArray &content = "content")
    {
        const QString path = m_dir.filePath("sources/" + name);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        if (writeFile(path, content) && file.open(QIODevice::ReadOnly))
            file.setFileTime(QDateTime(QDate(2020, 5, 4), QTime(8, 30)), QFileDevice::FileModificationTime);
        return path;
    }
    QString copied(const QString &relative) const { return m_doc + QLatin1Char('/') + relative; }
    QStringList listOnDisk(const QString &identifier)
    {
        m_manifest.saveFile();
        return manifestList(copied("manifest.xml"), identifier);
    }

private slots:
    void init()
    {
        m_doc = m_dir.filePath("doc");
        QDir(m_doc).removeRecursively();
        QDir(m_dir.filePath("sources")).removeRecursively();
        QVERIFY(QDir().mkpath(m_doc));
        QVERIFY(m_manifest.createManifestFile(copied("manifest.xml")));
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
        QTest::newRow("control character left out") << "/x/bell\x01.png" << "images/bell.png";
    }

    void naming()
    {
        QFETCH(QString, source);
        QFETCH(QString, relative);
        QString full;
        QString name;
        QVERIFY(m_resMgr->getNewFilePath(source, "images", full, name));
        QCOMPARE(name, relative);
        QCOMPARE(full, copied(relative));
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
        using Add = bool (ILXResMgr::*)(const QString &, QString &);
        const Add adds[] = {&ILXResMgr::addImageFile, &ILXResMgr::addSoundFile, &ILXResMgr::addAvMediaFile,
                            &ILXResMgr::addFlashFile, &ILXResMgr::addFillblockFile, &ILXResMgr::addAttachmentFile};
        ILXResMgr *const resMgr = m_resMgr;
        QCOMPARE(resMgr->getTempPath(), m_doc);
        QVERIFY(!QFileInfo::exists(copied(folder)));
        QString newPath;
        QVERIFY((resMgr->*adds[kind])(source("media.bin", "media"), newPath));
        QCOMPARE(newPath, copied(folder + "/media.bin"));
        QCOMPARE(readBytes(newPath), QByteArray("media"));
        QCOMPARE(listOnDisk(identifier), QStringList(folder + "/media.bin"));
    }

    void repeatedAdds()
    {
        const QString photo = source("photo.png");
        QString path;
        QVERIFY(m_resMgr->addImageFile(photo, path));
        QVERIFY(m_resMgr->addImageFile(source("b/photo.png", "other"), path));
        QCOMPARE(path, copied("images/photo1.png"));
        QVERIFY(!m_resMgr->addImageFile(photo, path));
        QCOMPARE(path, copied("images/photo.png"));
        // Same size, another time: not the same file.
        QFile copy(path);
        QVERIFY(copy.open(QIODevice::ReadWrite));
        QVERIFY(copy.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime));
        QVERIFY(m_resMgr->addImageFile(photo, path));
        QCOMPARE(path, copied("images/photo2.png"));
        // A source that is gone fails, but the name it would have had is handed back.
        QVERIFY(!m_resMgr->addImageFile(m_dir.filePath("gone/photo.png"), path));
        QCOMPARE(path, copied("images/photo3.png"));
        QVERIFY(!QFileInfo::exists(path));
        QCOMPARE(listOnDisk("images"),
                 QStringList({"images/photo.png", "images/photo1.png", "images/photo2.png"}));

        const QString block = source("block.fb");
        QVERIFY(m_resMgr->addFillblockFile(block, path));
        QVERIFY(m_resMgr->addFillblockFile(block, path));
        QCOMPARE(path, copied("fillblocks/block1.fb"));
    }

    // The copy and the manifest carry one name, so a later file of the
    // cleaned name gets a name of its own.
    void cleanedNameIsTheCopysName()
    {
        QString first;
        QString second;
        QVERIFY(m_resMgr->addSoundFile(source("bell\x01.wav", "one"), first));
        QVERIFY(m_resMgr->addSoundFile(source("bell.wav", "second"), second));
        QCOMPARE(QStringList({first, second}), QStringList({copied("sounds/bell.wav"), copied("sounds/bell1.wav")}));
        QCOMPARE(readBytes(first) + readBytes(second), QByteArray("onesecond"));
        QCOMPARE(listOnDisk("sounds"), QStringList({"sounds/bell.wav", "sounds/bell1.wav"}));
    }
};

QTEST_GUILESS_MAIN(TestResMgr)
#include "tst_resmgr.moc"
