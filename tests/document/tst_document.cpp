#include "document/scopeddocument.h"
#include "idrawpage.h"
#include "ilxfrontpage.h"
#include "ilxrecordpage.h"
#include "ilxresmgr.h"
#include "manifest/manifestreader.h"
#include "manifest/qmanifest.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QPixmap>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QStringList kSubfolders = {"attachments", "avmedia", "fillblocks", "flash",
                                 "images",      "previews", "sounds",    "temp"};

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

// A working folder's entries in name order: the subfolders and the given files.
QStringList withSubfolders(QStringList files)
{
    files << kSubfolders;
    files.sort();
    return files;
}

bool writeFile(const QString &path, const QByteArray &content = "x")
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Every file below the folder by its relative path, with its content.
QMap<QString, QByteArray> folderContents(const QString &folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly))
            contents.insert(file.fileName().mid(folder.size()), file.readAll());
    }
    return contents;
}

QStringList pageNames(std::initializer_list<int> ids, const char *pattern = "page%1.svg")
{
    QStringList names;
    for (const int id : ids)
        names << QString::fromLatin1(pattern).arg(id);
    return names;
}

class FakeDrawPage : public IDrawPage {
public:
    bool result = true;
    int previews = 0;
    ILXDocument *document = nullptr;
    int index = -1;
    unsigned int flags = 0;

    bool renderPreview(QPixmap *target, QSize size, int reserved) override
    {
        ++previews;
        if (target->size() == size && reserved == 0)
            target->fill(Qt::red);
        return true;
    }
    bool savePageTo(ILXDocument *to, int at, unsigned int with) override
    {
        document = to;
        index = at;
        flags = with;
        return result;
    }
};

} // namespace

class TestDocument : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString tmp(const QString &name) const { return m_dir.filePath(name); }
    static QString tempRoot() { return QCoreApplication::applicationDirPath() + QStringLiteral("/Temp/"); }
    static bool hasPlugin() { return QFileInfo::exists(QCoreApplication::applicationDirPath() + "/ziplib.so"); }

    // A working folder left by an earlier session, listing the given pages.
    static void makeWorkingFolder(const QString &folder, const QStringList &pages)
    {
        QVERIFY(QDir().mkpath(folder));
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(folder + QStringLiteral("/manifest.xml")));
        for (const QString &page : pages)
            manifest.insertFrontPage(pages.size(), page);
        manifest.closeFile(true);
    }

private slots:
    void initTestCase() { QDir(tempRoot()).removeRecursively(); }

    void freshDocumentAndInit()
    {
        ScopedDocument doc;
        QCOMPARE(doc->getTempPath(), tempRoot());
        QVERIFY(doc->getDocPath().isEmpty());
        QVERIFY(!doc->getLXResMgr());
        QVERIFY(doc->init(tmp(QStringLiteral("given")), true));
        QVERIFY(!QFileInfo::exists(tmp(QStringLiteral("given"))) && !QFileInfo::exists(tempRoot()));
        QVERIFY(doc->init(QString(), false));
        QVERIFY(QFileInfo(tempRoot()).isDir());
    }

    void createFolder()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("create"));
        QVERIFY(!doc->createFolder(folder, false));
        QVERIFY(QFileInfo(folder).isDir());
        QCOMPARE(entries(folder), QStringList());
        for (int twice = 0; twice < 2; ++twice) {
            QVERIFY(doc->createFolder(folder, true));
            QCOMPARE(entries(folder), kSubfolders);
        }
        QVERIFY(doc->createFolder(tmp(QStringLiteral("no/parent")), true));
        QVERIFY(!QFileInfo::exists(tmp(QStringLiteral("no"))));
    }

    void removeFolder()
    {
        ScopedDocument doc;
        const QString root = tmp(QStringLiteral("remove"));
        const QString outside = tmp(QStringLiteral("outside"));
        QVERIFY(QDir().mkpath(root + QStringLiteral("/a/b")) && QDir().mkpath(root + QStringLiteral("/c")));
        QVERIFY(QDir().mkpath(outside + QStringLiteral("/target")));
        for (const char *file : {"/a/b/deep.txt", "/a/top.txt", "/plain.txt", "/.hidden", "/c/.hidden"})
            QVERIFY(writeFile(root + QLatin1String(file)));
        QVERIFY(writeFile(outside + QStringLiteral("/kept.txt")));
        QVERIFY(writeFile(outside + QStringLiteral("/target/inside.txt")));
        QVERIFY(QFile::link(outside + QStringLiteral("/kept.txt"), root + QStringLiteral("/filelink")));
        QVERIFY(QFile::link(outside + QStringLiteral("/target"), root + QStringLiteral("/dirlink")));

        QVERIFY(doc->removeFolder(root, false));
        // Hidden files and links stay, and so does a subfolder holding one;
        // nothing behind a link is touched.
        QCOMPARE(entries(root), QStringList({".hidden", "c", "dirlink", "filelink"}));
        QCOMPARE(entries(root + QStringLiteral("/c")), QStringList(".hidden"));
        QVERIFY(QFileInfo::exists(outside + QStringLiteral("/kept.txt")));
        QCOMPARE(entries(outside + QStringLiteral("/target")), QStringList("inside.txt"));
        QVERIFY(doc->removeFolder(root, true));
        QVERIFY(QFileInfo::exists(root));
        QVERIFY(!doc->removeFolder(QString(), true));
        QVERIFY(QFile::remove(root + QStringLiteral("/.hidden")) && QFile::remove(root + QStringLiteral("/c/.hidden")));
        QVERIFY(doc->removeFolder(root, true));
        QCOMPARE(entries(root), QStringList({"dirlink", "filelink"}));
    }

    void newFile()
    {
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        QVERIFY(doc->newFile(QString(), true));
        const QString folder = tempRoot() + QStringLiteral("newDocument");
        QCOMPARE(doc->getDocPath(), folder);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml"}));
        QCOMPARE(doc->getLXResMgr()->getTempPath(), folder);

        // The next new document drops the old folder and empties a caller's one.
        const QString given = tmp(QStringLiteral("given"));
        QVERIFY(QDir().mkpath(given + QStringLiteral("/old")));
        QVERIFY(writeFile(given + QStringLiteral("/manifest.xml"), "stale"));
        QVERIFY(doc->newFile(given, false));
        QVERIFY(!QFileInfo::exists(folder));
        QCOMPARE(entries(given), QStringList("manifest.xml"));
        QCOMPARE(manifestList(given + QStringLiteral("/manifest.xml"), QStringLiteral("pages")), QStringList());

        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!doc->newFile(tmp(QStringLiteral("missing/parent")), true));
        QVERIFY(!doc->getLXResMgr());
        QVERIFY(!QFileInfo::exists(given));
        QVERIFY(doc->newFile(given, true));
        doc.release();
        QVERIFY(!QFileInfo::exists(given));
    }

    void openDocumentInPlace()
    {
        ScopedDocument doc;
        QVERIFY(doc->newFile(tmp(QStringLiteral("current")), true));
        ILXResMgr *const before = doc->getLXResMgr();
        const QString bare = tmp(QStringLiteral("nomanifest"));
        QVERIFY(QDir().mkpath(bare));
        QVERIFY(!doc->openDocument(bare));
        QCOMPARE(doc->getDocPath(), bare);
        QCOMPARE(entries(bare), kSubfolders);
        QCOMPARE(doc->getLXResMgr(), before);
        QVERIFY(QFileInfo::exists(tmp(QStringLiteral("current"))));

        const QString folder = tmp(QStringLiteral("inplace"));
        makeWorkingFolder(folder, pageNames({4, 2}));
        QVERIFY(doc->openDocument(folder));
        QCOMPARE(doc->getPagesCount(), 2);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml"}));
        QCOMPARE(doc->getLXResMgr()->getTempPath(), folder);
        doc.release();
        QVERIFY(!QFileInfo::exists(folder));
    }

    void openFileOfEachKind()
    {
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        const QString old = tmp(QStringLiteral("old"));
        QVERIFY(doc->newFile(old, true));
        QVERIFY(!doc->openFile(tmp(QStringLiteral("absent.lzn"))));
        QVERIFY(!QFileInfo::exists(old));

        const QString folder = tmp(QStringLiteral("folder"));
        makeWorkingFolder(folder, pageNames({1}));
        QVERIFY(doc->openFile(folder));
        QCOMPARE(doc->getDocPath(), folder);
        QCOMPARE(doc->getPagesCount(), 1);

        const QString pdf = tmp(QStringLiteral("handout.pdf"));
        QVERIFY(writeFile(pdf, "%PDF-1.4"));
        QVERIFY(doc->openFile(pdf));
        QCOMPARE(doc->getDocPath(), tempRoot() + QStringLiteral("newDocument"));
        QCOMPARE(doc->getPagesCount(), 0);
        QVERIFY(!QFileInfo::exists(folder) && QFileInfo::exists(pdf));
    }

    void pageAccess()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("pages"));
        QVERIFY(doc->newFile(folder, true));
        doc->insertFrontPage(0, 7)->release();
        QCOMPARE(doc->getPagesCount(), 1);
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("pages")), pageNames({7}));

        int id = -99;
        QVERIFY(!doc->getPageByIndex(-1, id));
        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!doc->getPageByIndex(1, id));
        QVERIFY(!doc->getPageByIndex(2, id));
        QCOMPARE(id, -99);
        ILXFrontPage *const page = doc->getPageByIndex(0, id);
        QVERIFY(page);
        page->release();
        QCOMPARE(id, 7);
        QVERIFY(QFile::remove(folder + QStringLiteral("/page7.svg")));
        QVERIFY(!doc->getPageByIndex(0, id));
        QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/page7.svg")));

        // Pages asked for by id are made but never listed.
        doc->getPageById(99)->release();
        doc->getRecPageById(5)->release();
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page99.svg")));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page5.mtrec")));
        QCOMPARE(doc->getPagesCount(), 1);
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("records")), QStringList());
    }

    void adjustPageIndex_data()
    {
        QTest::addColumn<int>("newIndex");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("to 2") << 2 << pageNames({2, 3, 1, 4, 5});
        QTest::newRow("to 4 appends") << 4 << pageNames({2, 3, 4, 5, 1});
        QTest::newRow("-1 first") << -1 << pageNames({1, 2, 3, 4, 5});
        QTest::newRow("-2 drops it") << -2 << pageNames({2, 3, 4, 5});
    }

    void adjustPageIndex()
    {
        QFETCH(int, newIndex);
        QFETCH(QStringList, order);
        ScopedDocument doc;
        const QString manifest = tmp(QStringLiteral("adjust/manifest.xml"));
        QVERIFY(doc->newFile(tmp(QStringLiteral("adjust")), true));
        for (int id = 1; id <= 5; ++id)
            doc->insertFrontPage(id, id)->release();
        QVERIFY(doc->adjustPageIndex(1, 0, newIndex));
        QCOMPARE(manifestList(manifest, QStringLiteral("pages")), order);
        // The record entry comes along although the page had none; into the
        // empty records list it goes at any index, -2 included.
        QCOMPARE(manifestList(manifest, QStringLiteral("records")), pageNames({1}, "page%1.mtrec"));
    }

    void deletePageKeepsItsFiles()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("delete"));
        QVERIFY(doc->newFile(folder, true));
        for (const int id : {1, 3, 2}) {
            doc->insertFrontPage(id - 1, id)->release();
            doc->insertRecPage(id - 1, id)->release();
        }
        QVERIFY(doc->deletePage(2, true));
        QVERIFY(doc->deletePage(42, false));
        const QString manifest = folder + QStringLiteral("/manifest.xml");
        QCOMPARE(manifestList(manifest, QStringLiteral("pages")), pageNames({1, 3}));
        QCOMPARE(manifestList(manifest, QStringLiteral("records")), pageNames({1, 3}, "page%1.mtrec"));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page2.svg")));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page2.mtrec")));
    }

    void savePage_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("preview");
        QTest::addColumn<bool>("result");
        QTest::newRow("preview") << "" << true << true;
        QTest::newRow("path ending in slash") << "/" << true << false;
        QTest::newRow("no preview") << "" << false << true;
    }

    void savePage()
    {
        QFETCH(QString, suffix);
        QFETCH(bool, preview);
        QFETCH(bool, result);
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("save"));
        QVERIFY(doc->newFile(folder + suffix, true));
        FakeDrawPage page;
        page.result = result;
        QCOMPARE(doc->savePage(&page, 3, 0x81u, preview), result);
        QCOMPARE(page.document, static_cast<ILXDocument *>(doc.get()));
        QCOMPARE(page.index, 3);
        QCOMPARE(page.flags, 0x81u);
        QCOMPARE(page.previews, preview ? 1 : 0);
        const QImage image(folder + QStringLiteral("/preview.png"));
        QCOMPARE(image.isNull(), !preview);
        if (preview) {
            QCOMPARE(image.size(), QSize(100, 75));
            QCOMPARE(image.pixelColor(50, 40), QColor(Qt::red));
        }
    }

    void roundTripThroughTheArchive()
    {
        if (!hasPlugin())
            QSKIP("no archive plug-in beside the test");
        const QStringList names = {"photo.png", "bell.wav", "clip.mp4", "anim.swf", "block.fb", "notes.pdf"};
        using Add = bool (ILXResMgr::*)(const QString &, QString &);
        const Add adds[] = {&ILXResMgr::addImageFile, &ILXResMgr::addSoundFile, &ILXResMgr::addAvMediaFile,
                            &ILXResMgr::addFlashFile, &ILXResMgr::addFillblockFile, &ILXResMgr::addAttachmentFile};
        const QString archive = tmp(QStringLiteral("round.lzn"));
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        QVERIFY(doc->newFile(QString(), true));
        QString copy;
        for (int i = 0; i < names.size(); ++i) {
            QVERIFY(writeFile(tmp(names.at(i)), names.at(i).toUtf8().repeated(100)));
            QVERIFY((doc->getLXResMgr()->*adds[i])(tmp(names.at(i)), copy));
        }
        doc->insertFrontPage(0, 12)->release();
        doc->insertRecPage(0, 12)->release();
        QVERIFY(doc->saveFile(archive, true));
        const QString saved = doc->getDocPath();
        const QMap<QString, QByteArray> before = folderContents(saved);
        QCOMPARE(before.size(), names.size() + 3);
        doc.release();
        QVERIFY(!QFileInfo::exists(saved));

        ScopedDocument reopened;
        QVERIFY(reopened->openFile(archive));
        const QString folder = reopened->getDocPath();
        QCOMPARE(folder, tempRoot() + QStringLiteral("round"));
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml", "page12.mtrec", "page12.svg"}));
        QCOMPARE(folderContents(folder).keys(), before.keys());
        QVERIFY(folderContents(folder) == before);
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("attachments")),
                 QStringList({"fillblocks/block.fb", "attachments/notes.pdf"}));
        int id = 0;
        reopened->getPageByIndex(0, id)->release();
        QCOMPARE(id, 12);
    }

    void archiveUnpackFolders()
    {
        if (!hasPlugin())
            QSKIP("no archive plug-in beside the test");
        ScopedDocument maker;
        QVERIFY(maker->newFile(tmp(QStringLiteral("maker")), true));
        maker->insertFrontPage(0, 1)->release();
        const QString lesson = tmp(QStringLiteral("lesson.lzn"));
        QVERIFY(maker->saveFile(lesson, true));
        const QStringList copies = {"Upper.LZN", "double.tar.lzn", "old.resitem"};
        ScopedDocument first;
        QVERIFY(first->init(QString(), false));
        for (const QString &copy : copies) {
            QVERIFY(QFile::copy(lesson, tmp(copy)));
            QVERIFY(first->openFile(tmp(copy)));
            QCOMPARE(first->getDocPath(), tempRoot() + copy.section(QLatin1Char('.'), 0, 0));
            QCOMPARE(first->getPagesCount(), 1);
        }
        QVERIFY(first->openFile(lesson));
        ScopedDocument second;
        QVERIFY(second->openFile(lesson));
        QCOMPARE(second->getDocPath(), tempRoot() + QStringLiteral("lesson0"));
        ScopedDocument third;
        QVERIFY(third->openFile(lesson));
        QCOMPARE(third->getDocPath(), tempRoot() + QStringLiteral("lesson1"));
        // Reopening drops the document's own folder first and takes its name again.
        QVERIFY(first->openFile(lesson));
        QCOMPARE(first->getDocPath(), tempRoot() + QStringLiteral("lesson"));
    }
};

QTEST_MAIN(TestDocument)
#include "tst_document.moc"
