#include "manifest/qmanifest.h"
#include "manifest/manifestreader.h"

#include <QTemporaryDir>
#include <QtTest>

class TestManifest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString path(const QString &name = QStringLiteral("manifest.xml")) const { return m_dir.filePath(name); }
    void writeFile(const QString &name, const QByteArray &content)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

private slots:
    void init() { QFile::remove(path()); }

    void newManifestTree()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        const QDomElement root = manifestRoot(path());
        QCOMPARE(root.tagName(), QStringLiteral("manifest"));
        QCOMPARE(root.attributes().count(), 2);
        QCOMPARE(root.attribute(QStringLiteral("identifier")), QStringLiteral("lzn"));
        QCOMPARE(root.attribute(QStringLiteral("version")), QStringLiteral("6.0.0"));
        QStringList identifiers;
        for (QDomElement child = root.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
            QCOMPARE(child.tagName(), QStringLiteral("resource"));
            QVERIFY(child.firstChildElement().isNull());
            identifiers << child.attribute(QStringLiteral("identifier"));
        }
        QCOMPARE(identifiers, QStringList({"pages", "records", "images", "sounds", "flashes", "avmedia",
                                           "fillblocks", "attachments"}));
        manifest.closeFile(false);
    }

    void createNeverOverwrites()
    {
        writeFile(QStringLiteral("manifest.xml"), "keep");
        QManifest manifest;
        QTest::ignoreMessage(QtWarningMsg, "XML file had exist!");
        QVERIFY(!manifest.createManifestFile(path()));
        QVERIFY(!manifest.insertFrontPage(0, QStringLiteral("page1.svg")));
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("keep"));
    }

    void insertRule_data()
    {
        QTest::addColumn<bool>("records");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("after");
        const QStringList abc = {"a", "b", "c"};
        QTest::newRow("-1 first") << false << abc << -1 << QStringList({"x", "a", "b", "c"});
        QTest::newRow("0 first") << false << abc << 0 << QStringList({"x", "a", "b", "c"});
        QTest::newRow("middle") << false << abc << 2 << QStringList({"a", "b", "x", "c"});
        QTest::newRow("size appends") << false << abc << 3 << QStringList({"a", "b", "c", "x"});
        QTest::newRow("past end appends") << false << abc << 40 << QStringList({"a", "b", "c", "x"});
        QTest::newRow("-2 inserts nothing") << false << abc << -2 << abc;
        QTest::newRow("empty list takes any index") << false << QStringList() << -7 << QStringList({"x"});
        QTest::newRow("records middle") << true << abc << 1 << QStringList({"a", "x", "b", "c"});
        QTest::newRow("records -2") << true << abc << -2 << abc;
        QTest::newRow("no duplicate check") << true << QStringList({"x"}) << 1 << QStringList({"x", "x"});
    }

    void insertRule()
    {
        QFETCH(bool, records);
        QFETCH(QStringList, before);
        QFETCH(int, index);
        QFETCH(QStringList, after);
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        const auto insert = [&](int at, const QString &name) {
            return records ? manifest.insertRecPage(at, name) : manifest.insertFrontPage(at, name);
        };
        for (const QString &name : before)
            QVERIFY(insert(name == before.first() ? -1 : before.size(), name));
        QVERIFY(insert(index, QStringLiteral("x")));
        manifest.saveFile();
        const QString listName = records ? QStringLiteral("records") : QStringLiteral("pages");
        QCOMPARE(manifestList(path(), listName), after);
        if (!records)
            QCOMPARE(manifest.getPagesList(), after);
        QCOMPARE(manifestList(path(), records ? QStringLiteral("pages") : QStringLiteral("records")),
                 QStringList());
        manifest.closeFile(false);
    }

    void pageEditsNeedAnOpenManifest()
    {
        QManifest manifest;
        QVERIFY(!manifest.insertFrontPage(0, QStringLiteral("page1.svg")));
        QVERIFY(!manifest.insertRecPage(0, QStringLiteral("page1.mtrec")));
        QVERIFY(!manifest.deleteFrontPage(QStringLiteral("page1.svg")));
        QVERIFY(!manifest.deleteRecPage(QStringLiteral("page1.mtrec")));
        QVERIFY(manifest.getPagesList().isEmpty());
    }

    void deleteRemovesFirstMatchOnly()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        for (const char *name : {"p1", "p2", "p1"})
            manifest.insertFrontPage(99, QString::fromLatin1(name));
        manifest.insertRecPage(0, QStringLiteral("r1"));
        QVERIFY(manifest.deleteFrontPage(QStringLiteral("p1")));
        QVERIFY(manifest.deleteRecPage(QStringLiteral("R1")));
        QVERIFY(manifest.deleteRecPage(QStringLiteral("absent")));
        manifest.saveFile();
        QCOMPARE(manifestList(path(), QStringLiteral("pages")), QStringList({"p2", "p1"}));
        QCOMPARE(manifestList(path(), QStringLiteral("records")), QStringList({"r1"}));
        manifest.closeFile(false);
    }

    void resourceListsWriteTheirElements_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("identifier");
        QTest::newRow("images") << 0 << "images";
        QTest::newRow("sounds") << 1 << "sounds";
        QTest::newRow("avmedia") << 2 << "avmedia";
        QTest::newRow("flashes") << 3 << "flashes";
        QTest::newRow("fillblocks") << 4 << "fillblocks";
        QTest::newRow("attachments") << 5 << "attachments";
    }

    void resourceListsWriteTheirElements()
    {
        QFETCH(int, kind);
        QFETCH(QString, identifier);
        using Add = bool (QManifest::*)(const QString &);
        const Add adds[] = {&QManifest::addImageFile, &QManifest::addSoundFile, &QManifest::addAvMediaFile,
                            &QManifest::addFlashFile, &QManifest::addFillblockFile, &QManifest::addAttachment};
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        QVERIFY((manifest.*adds[kind])(QStringLiteral("dir/one.png")));
        QVERIFY((manifest.*adds[kind])(QStringLiteral("dir/two.png")));
        manifest.closeFile(true);
        QCOMPARE(manifestList(path(), identifier), QStringList({"dir/one.png", "dir/two.png"}));
        int filled = 0;
        for (const char *other : {"pages", "records", "images", "sounds", "flashes", "avmedia", "fillblocks",
                                  "attachments"})
            filled += manifestList(path(), QString::fromLatin1(other)).size();
        QCOMPARE(filled, 2);
    }

    void attachmentsAndFillblocksCross()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        QVERIFY(manifest.addAttachment(QStringLiteral("attachments/A.doc")));
        QVERIFY(manifest.addFillblockFile(QStringLiteral("fillblocks/B.fb")));
        manifest.closeFile(true);
        QCOMPARE(manifestList(path(), QStringLiteral("attachments")), QStringList({"attachments/A.doc"}));
        QCOMPARE(manifestList(path(), QStringLiteral("fillblocks")),
                 QStringList({"attachments/A.doc", "fillblocks/B.fb"}));
    }

    void reopenedListsAreNotCarriedIntoFillblocks()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        manifest.addFillblockFile(QStringLiteral("fillblocks/old.fb"));
        manifest.addAttachment(QStringLiteral("attachments/old.doc"));
        manifest.closeFile(true);

        QVERIFY(manifest.loadManifestFile(path()));
        QVERIFY(manifest.addFillblockFile(QStringLiteral("fillblocks/new.fb")));
        QVERIFY(manifest.addAttachment(QStringLiteral("attachments/new.doc")));
        manifest.closeFile(true);
        QCOMPARE(manifestList(path(), QStringLiteral("fillblocks")), QStringList({"fillblocks/new.fb"}));
        QCOMPARE(manifestList(path(), QStringLiteral("attachments")),
                 QStringList({"fillblocks/new.fb", "attachments/new.doc"}));
    }

    void loadReadsListsInOrder()
    {
        writeFile(QStringLiteral("manifest.xml"),
                  "<?xml version='1.0'?>\n<anything version=\"1\">\n"
                  " <resource identifier=\"images\"><file href=\"images/b.png\"/><x href=\"images/a.png\"/>"
                  "<file href=\"\"/><file/></resource>\n"
                  " <resource identifier=\"pages\"><file href=\"page3.svg\"/><file href=\"page1.svg\"/></resource>\n"
                  " <resource identifier=\"records\"/><resource identifier=\"sounds\"/>"
                  "<resource identifier=\"flashes\"/><resource identifier=\"avmedia\"/>"
                  "<resource identifier=\"attachments\"/>\n</anything>\n");
        QManifest manifest;
        QVERIFY(manifest.loadManifestFile(path()));
        QCOMPARE(manifest.getPagesList(), QStringList({"page3.svg", "page1.svg"}));
        // The loaded images list is what a later add rewrites the element from.
        QVERIFY(manifest.addImageFile(QStringLiteral("images/c.png")));
        manifest.closeFile(false);
        QVERIFY(manifest.getPagesList().isEmpty());

        QVERIFY(manifest.loadManifestFile(path()));
        QCOMPARE(manifest.getPagesList(), QStringList({"page3.svg", "page1.svg"}));
        manifest.addImageFile(QStringLiteral("images/c.png"));
        manifest.saveFile();
        QCOMPARE(manifestList(path(), QStringLiteral("images")),
                 QStringList({"images/b.png", "images/a.png", "images/c.png"}));
        manifest.closeFile(false);
    }

    void missingListIsReported_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("message");
        QTest::newRow("pages") << "pages" << "Get pages list failed!\n";
        QTest::newRow("records") << "records" << "Get records list failed!\n";
        QTest::newRow("images") << "images" << "Get image list failed!\n";
        QTest::newRow("sounds") << "sounds" << "Get sounds list failed!\n";
        QTest::newRow("flashes") << "flashes" << "Get flashes list failed!\n";
        QTest::newRow("avmedia") << "avmedia" << "Get avmedia list failed!\n";
        QTest::newRow("attachments") << "attachments" << "Get attachment list failed!\n";
        QTest::newRow("fillblocks is never read") << "fillblocks" << QString();
    }

    void missingListIsReported()
    {
        QFETCH(QString, identifier);
        QFETCH(QString, message);
        QByteArray content = "<?xml version='1.0'?>\n<manifest identifier=\"lzn\" version=\"6.0.0\">\n";
        for (const char *name : {"pages", "records", "images", "sounds", "flashes", "avmedia", "fillblocks",
                                 "attachments"}) {
            if (identifier != QLatin1String(name))
                content += QByteArray("<resource identifier=\"") + name + "\"/>\n";
        }
        writeFile(QStringLiteral("manifest.xml"), content + "</manifest>\n");
        if (!message.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, message.toLatin1().constData());
        QManifest manifest;
        QVERIFY(manifest.loadManifestFile(path()));
        manifest.closeFile(false);
    }

    void loadFailures()
    {
        QManifest manifest;
        QVERIFY(!manifest.loadManifestFile(path(QStringLiteral("absent.xml"))));
        QVERIFY(!manifest.insertFrontPage(0, QStringLiteral("page1.svg")));
        writeFile(QStringLiteral("broken.xml"), "<manifest><resource");
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        QVERIFY(!manifest.loadManifestFile(path(QStringLiteral("broken.xml"))));
        QVERIFY(!manifest.insertFrontPage(0, QStringLiteral("page1.svg")));
    }

    void closeWithoutSavingDiscards()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        manifest.insertFrontPage(0, QStringLiteral("saved.svg"));
        manifest.saveFile();
        manifest.insertFrontPage(1, QStringLiteral("dropped.svg"));
        manifest.closeFile(false);
        QCOMPARE(manifestList(path(), QStringLiteral("pages")), QStringList({"saved.svg"}));
        QVERIFY(manifest.getPagesList().isEmpty());
        QVERIFY(!manifest.insertFrontPage(0, QStringLiteral("late.svg")));
    }
};

QTEST_GUILESS_MAIN(TestManifest)
#include "tst_manifest.moc"
