// SPDX-License-Identifier: MIT
#include "manifest/manifestreader.h"
#include "manifest/qmanifest.h"

#include <QTemporaryDir>
#include <thread>
#include <vector>
#include <QtTest>

namespace {

const QStringList kIdentifiers = {"pages", "records", "images", "sounds", "flashes", "avmedia", "fillblocks",
                                  "attachments"};

} // namespace

class TestManifest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path() const { return m_dir.filePath("manifest.xml"); }
    QStringList listed(const QString &identifier) const { return manifestList(path(), identifier); }

private slots:
    void init() { QFile::remove(path()); }

    void newManifestTree()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()));
        manifest.closeFile(false);
        const QDomElement root = manifestRoot(path());
        QStringList seen = {root.tagName(), QString::number(root.attributes().count()), root.attribute("identifier"),
                            root.attribute("version")};
        QStringList expected = {"manifest", "2", "lzn", "6.0.0"};
        for (QDomElement child = root.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
            seen << child.tagName() + ' ' + child.attribute("identifier") + (child.hasChildNodes() ? " filled" : "");
        for (const QString &identifier : kIdentifiers)
            expected << "resource " + identifier;
        QCOMPARE(seen, expected);
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
        QTest::newRow("middle") << true << abc << 2 << QStringList({"a", "b", "x", "c"});
        QTest::newRow("size appends") << false << abc << 3 << QStringList({"a", "b", "c", "x"});
        QTest::newRow("past end appends") << true << abc << 40 << QStringList({"a", "b", "c", "x"});
        QTest::newRow("-2 inserts nothing") << false << abc << -2 << abc;
        QTest::newRow("empty list takes any index") << true << QStringList() << -7 << QStringList({"x"});
        QTest::newRow("no duplicate check") << false << QStringList({"x"}) << 1 << QStringList({"x", "x"});
    }

    void insertRule()
    {
        QFETCH(bool, records);
        QFETCH(QStringList, before);
        QFETCH(int, index);
        QFETCH(QStringList, after);
        QManifest manifest;
        QVERIFY(!manifest.insertFrontPage(0, "closed"));
        QVERIFY(manifest.createManifestFile(path()));
        const auto insert = [&](int at, const QString &name) {
            return records ? manifest.insertRecPage(at, name) : manifest.insertFrontPage(at, name);
        };
        for (const QString &name : before)
            QVERIFY(insert(before.size(), name));
        QVERIFY(insert(index, "x"));
        manifest.closeFile(true);
        QCOMPARE(listed(records ? "records" : "pages"), after);
        QCOMPARE(listed(records ? "pages" : "records"), QStringList());
        QVERIFY(manifest.getPagesList().isEmpty());
    }

    // A change made in place must leave the very bytes a rewrite of every
    // list from the final lists gives, whatever the element held before.
    void editsWriteWhatARewriteWrites_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QStringList>("edits");
        QTest::addColumn<QStringList>("pages");
        QTest::newRow("appends") << "new" << QStringList({"f 0 a", "r 0 a", "f 1 b", "r 1 b", "f 9 c"})
                                 << QStringList({"a", "b", "c"});
        QTest::newRow("front, middle, removals, moves")
            << "new" << QStringList({"f 0 a", "f -1 b", "f 1 c", "f 3 d", "-f c", "-f zz", "f 2 c", "-f b", "f 0 b",
                                     "r 0 a", "r 0 b", "-r a", "r 5 a", "f -2 q"})
            << QStringList({"b", "a", "c", "d"});
        QTest::newRow("element read from disk") << "reloaded" << QStringList({"f 1 b", "r 0 b", "-f a"})
                                                << QStringList({"b"});
        QTest::newRow("element written from another list") << "foreign" << QStringList({"f 1 b", "-r a"})
                                                           << QStringList({"a", "b"});
        QTest::newRow("list changed from outside") << "new" << QStringList({"f 0 a", "r 0 a", "x o", "f 9 b", "r 9 b"})
                                                   << QStringList({"a", "o", "b"});
        QTest::newRow("resources after a reopening") << "reloaded" << QStringList({"i x", "i y", "fb u", "at v", "fb w"})
                                                     << QStringList({"a"});
    }

    void editsWriteWhatARewriteWrites()
    {
        QFETCH(QString, start);
        QFETCH(QStringList, edits);
        QFETCH(QStringList, pages);
        const auto begin = [&](QManifest &manifest, const QString &file) {
            if (start == QLatin1String("reloaded")) {
                QVERIFY(writeFile(file, "<manifest><resource identifier=\"pages\"><file href=\"a\"/><x href=\"\"/>"
                                        "</resource><resource identifier=\"records\"><file href=\"a\">t</file>"
                                        "</resource><resource identifier=\"images\"><file href=\"i\"/></resource>"
                                        "<resource identifier=\"fillblocks\"><file href=\"f\"/></resource>"
                                        "<resource identifier=\"attachments\"/></manifest>"));
                QVERIFY(manifest.loadManifestFile(file));
                return;
            }
            QVERIFY(manifest.createManifestFile(file));
            if (start == QLatin1String("foreign")) {
                QStringList other("q");
                QVERIFY(manifest.insertFrontPage(0, "a") && manifest.insertRecPage(0, "a"));
                QVERIFY(manifest.setResourceList(other, "pages") && manifest.setResourceList(other, "records"));
            }
        };
        QManifest manifest;
        begin(manifest, path());
        QSet<QString> edited;
        for (const QString &edit : edits) {
            const QStringList part = edit.split(' ');
            const QString &kind = part[0];
            const QString &name = part.last();
            if (kind == "f" || kind == "r")
                (kind == "f" ? manifest.insertFrontPage(part[1].toInt(), name)
                             : manifest.insertRecPage(part[1].toInt(), name));
            else if (kind == "-f" || kind == "-r")
                (kind == "-f" ? manifest.deleteFrontPage(name) : manifest.deleteRecPage(name));
            else if (kind == "i")
                manifest.addImageFile(name);
            else if (kind == "x")
                manifest.getPagesList().append(name);
            else
                (kind == "fb" ? manifest.addFillblockFile(name) : manifest.addAttachment(name));
            const QHash<QString, QString> lists = {{"f", "pages"},   {"-f", "pages"},      {"r", "records"},
                                                   {"-r", "records"}, {"i", "images"},     {"fb", "fillblocks"},
                                                   {"at", "attachments"}, {"x", "pages"}};
            edited << lists.value(kind);
        }
        QCOMPARE(manifest.getPagesList(), pages);
        // A save during editing writes remembered entries; closing walks them all.
        manifest.saveFile();
        const QByteArray saved = readBytes(path());
        manifest.closeFile(true);
        if (edited.contains("pages"))
            QCOMPARE(listed("pages"), pages);
        QCOMPARE(saved, readBytes(path()));

        // The same start with every edited list rewritten whole.
        const QString rewritten = m_dir.filePath("rewritten.xml");
        QFile::remove(rewritten);
        QManifest reference;
        begin(reference, rewritten);
        for (const QString &identifier : std::as_const(edited)) {
            QStringList list = listed(identifier);
            QVERIFY(reference.setResourceList(list, identifier));
        }
        reference.closeFile(true);
        QCOMPARE(readBytes(path()), readBytes(rewritten));
    }

    // Lessons open in several threads at once each write their own lists.
    void manifestsInSeveralThreads()
    {
        const int lessons = 6;
        const int pages = 400;
        std::vector<std::thread> threads;
        std::vector<char> closed(lessons, 0);
        for (int t = 0; t < lessons; ++t) {
            threads.emplace_back([&, t] {
                QManifest manifest;
                if (!manifest.createManifestFile(m_dir.filePath(QStringLiteral("thread%1.xml").arg(t))))
                    return;
                for (int i = 0; i < pages; ++i) {
                    const QString name = QStringLiteral("page%1-%2.svg").arg(t).arg(i);
                    manifest.insertFrontPage(i % 3 == 0 ? 0 : i, name);
                    manifest.insertRecPage(i, name);
                }
                manifest.closeFile(true);
                closed[t] = 1;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        for (int t = 0; t < lessons; ++t) {
            QVERIFY(closed[t]);
            const QString file = m_dir.filePath(QStringLiteral("thread%1.xml").arg(t));
            QStringList expected;
            for (int i = 0; i < pages; ++i) {
                const QString name = QStringLiteral("page%1-%2.svg").arg(t).arg(i);
                expected.insert(i % 3 == 0 ? 0 : qMin(i, int(expected.size())), name);
            }
            QCOMPARE(manifestList(file, "pages"), expected);
            QCOMPARE(manifestList(file, "records").size(), pages);
        }
    }

    void attachmentsAndFillblocksCross()
    {
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(path()) && manifest.addAttachment("A") && manifest.addFillblockFile("B"));
        manifest.closeFile(true);
        QCOMPARE(listed("attachments"), QStringList({"A"}));
        QCOMPARE(listed("fillblocks"), QStringList({"A", "B"}));

        // Neither loaded list carries over: fillblocks is never read and the
        // attachments member is never written.
        QVERIFY(manifest.loadManifestFile(path()) && manifest.addFillblockFile("C"));
        QVERIFY(manifest.addAttachment("D") && manifest.addImageFile("E"));
        manifest.closeFile(true);
        QCOMPARE(listed("fillblocks"), QStringList({"C"}));
        QCOMPARE(listed("attachments"), QStringList({"C", "D"}));
        QCOMPARE(listed("images"), QStringList({"E"}));
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
        QByteArray content = "<?xml version='1.0'?>\n<other>\n";
        for (const QString &name : kIdentifiers) {
            if (name != identifier)
                content += "<resource identifier=\"" + name.toLatin1() + "\"><file href=\"" + name.toLatin1()
                    + "/1\"/><x href=\"\"/><file/></resource>\n";
        }
        QVERIFY(writeFile(path(), content + "</other>\n"));
        if (!message.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, message.toLatin1().constData());
        QManifest manifest;
        QVERIFY(manifest.loadManifestFile(path()));
        const bool pagesMissing = identifier == QLatin1String("pages");
        QCOMPARE(manifest.getPagesList(), pagesMissing ? QStringList() : QStringList("pages/1"));
        manifest.closeFile(false);
    }

    void createAndLoadFailures()
    {
        QManifest manifest;
        QVERIFY(!manifest.loadManifestFile(m_dir.filePath("absent.xml")));
        QVERIFY(writeFile(path(), "<manifest><resource"));
        QTest::ignoreMessage(QtWarningMsg, "XML file had exist!");
        QVERIFY(!manifest.createManifestFile(path()));
        QVERIFY(manifestRoot(path()).isNull());
        QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        QVERIFY(!manifest.loadManifestFile(path()));
        QVERIFY(!manifest.insertFrontPage(0, "page1.svg"));
        // The broken file is left as it was, for whoever can still mend it.
        QCOMPARE(readBytes(path()), QByteArray("<manifest><resource"));
    }
};

QTEST_GUILESS_MAIN(TestManifest)
#include "tst_manifest.moc"
