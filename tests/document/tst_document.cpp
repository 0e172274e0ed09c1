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

// A working folder's entries in name order: the subfolders and the given files.
QStringList withSubfolders(QStringList files)
{
    files << kSubfolders;
    files.sort();
    return files;
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Every file below the folder by its relative path, with its content.
QMap<QString, QByteArray> folderContents(const QString &folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        contents.insert(path.mid(folder.size()), readFile(path));
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

private:
    QTemporaryDir m_dir;
    QString tmp(const QString &name) const { return m_dir.filePath(name); }
    QString tempRoot() const { return QCoreApplication::applicationDirPath() + QStringLiteral("/Temp/"); }
    static QString archivePlugin() { return QCoreApplication::applicationDirPath() + QStringLiteral("/ziplib.so"); }

    // A working folder with a manifest listing the given pages, as left by an earlier session.
    void makeWorkingFolder(const QString &folder, const QStringList &pages)
    {
        QVERIFY(QDir().mkpath(folder));
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(folder + QStringLiteral("/manifest.xml")));
        for (const QString &page : pages)
            manifest.insertFrontPage(pages.size(), page);
        manifest.closeFile(true);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QDir(tempRoot()).removeRecursively();
    }

    void freshDocument()
    {
        ScopedDocument doc;
        QCOMPARE(doc->getTempPath(), tempRoot());
        QVERIFY(doc->getTempPath().endsWith(QStringLiteral("/Temp/")));
        QVERIFY(!QFileInfo::exists(tempRoot()));
        QVERIFY(doc->getDocPath().isEmpty());
        QVERIFY(!doc->getLXResMgr());
        QVERIFY(doc->openPage(3));
        QVERIFY(doc->startSaveFile(tmp(QStringLiteral("x.lzn"))));
    }

    void initMakesOnlyTheTempRoot()
    {
        ScopedDocument doc;
        QVERIFY(doc->init(tmp(QStringLiteral("given")), true));
        QVERIFY(!QFileInfo::exists(tmp(QStringLiteral("given"))));
        QVERIFY(!QFileInfo::exists(tempRoot()));
        QVERIFY(doc->init(QString(), false));
        QVERIFY(QFileInfo(tempRoot()).isDir());
        QVERIFY(doc->init(QString(), false));
    }

    void attributesAreNoOps()
    {
        ScopedDocument doc;
        int number = 42;
        float real = 2.5f;
        QVERIFY(doc->setLXDocAttribute(QStringLiteral("a"), 7));
        QVERIFY(doc->setLXDocAttribute(QStringLiteral("a"), 7.5f));
        QVERIFY(doc->setLXDocAttribute(QStringLiteral("a"), QStringLiteral("text")));
        QVERIFY(doc->getLXDocAttribute(QStringLiteral("a"), number));
        QVERIFY(doc->getLXDocAttribute(QStringLiteral("a"), real));
        QVERIFY(doc->getLXDocAttribute(QStringLiteral("a"), QStringLiteral("text")));
        QCOMPARE(number, 42);
        QCOMPARE(real, 2.5f);
    }

    void createFolder_data()
    {
        QTest::addColumn<bool>("subfolders");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QStringList>("made");
        QTest::newRow("folder only, false all the same") << false << false << QStringList();
        QTest::newRow("with subfolders") << true << true << kSubfolders;
    }

    void createFolder()
    {
        QFETCH(bool, subfolders);
        QFETCH(bool, result);
        QFETCH(QStringList, made);
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("create"));
        QDir(folder).removeRecursively();
        QCOMPARE(doc->createFolder(folder, subfolders), result);
        QVERIFY(QFileInfo(folder).isDir());
        QCOMPARE(entries(folder), made);
        QCOMPARE(doc->createFolder(folder, subfolders), result);
        QCOMPARE(entries(folder), made);
        QVERIFY(doc->createFolder(tmp(QStringLiteral("no/parent")), true));
        QVERIFY(!QFileInfo::exists(tmp(QStringLiteral("no"))));
    }

    void removeFolder()
    {
        ScopedDocument doc;
        const QString root = tmp(QStringLiteral("remove"));
        const QString outside = tmp(QStringLiteral("outside"));
        QVERIFY(QDir().mkpath(root + QStringLiteral("/a/b")));
        QVERIFY(QDir().mkpath(root + QStringLiteral("/c")));
        QVERIFY(QDir().mkpath(outside + QStringLiteral("/target")));
        QVERIFY(writeFile(root + QStringLiteral("/a/b/deep.txt"), "x"));
        QVERIFY(writeFile(root + QStringLiteral("/a/top.txt"), "x"));
        QVERIFY(writeFile(root + QStringLiteral("/plain.txt"), "x"));
        QVERIFY(writeFile(root + QStringLiteral("/.hidden"), "x"));
        QVERIFY(writeFile(root + QStringLiteral("/c/.hidden"), "x"));
        QVERIFY(writeFile(outside + QStringLiteral("/kept.txt"), "x"));
        QVERIFY(writeFile(outside + QStringLiteral("/target/inside.txt"), "x"));
        QVERIFY(QFile::link(outside + QStringLiteral("/kept.txt"), root + QStringLiteral("/filelink")));
        QVERIFY(QFile::link(outside + QStringLiteral("/target"), root + QStringLiteral("/dirlink")));

        QVERIFY(doc->removeFolder(root, false));
        // Hidden files and links stay, and so does a subfolder holding one;
        // a link to a folder is followed and the files behind it are gone.
        QCOMPARE(entries(root), QStringList({".hidden", "c", "dirlink", "filelink"}));
        QCOMPARE(entries(root + QStringLiteral("/c")), QStringList(".hidden"));
        QVERIFY(QFileInfo::exists(outside + QStringLiteral("/kept.txt")));
        QCOMPARE(entries(outside + QStringLiteral("/target")), QStringList());

        QVERIFY(doc->removeFolder(root, true));
        QVERIFY(QFileInfo::exists(root));
        QVERIFY(!doc->removeFolder(QString(), true));

        const QString clean = tmp(QStringLiteral("clean"));
        QVERIFY(QDir().mkpath(clean + QStringLiteral("/x/y")));
        QVERIFY(writeFile(clean + QStringLiteral("/x/y/z.txt"), "x"));
        QVERIFY(doc->removeFolder(clean, true));
        QVERIFY(!QFileInfo::exists(clean));
    }

    void newFileUnderTheTempRoot()
    {
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        QVERIFY(doc->newFile(QString(), true));
        const QString folder = tempRoot() + QStringLiteral("newDocument");
        QCOMPARE(doc->getDocPath(), folder);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml"}));
        QCOMPARE(manifestRoot(folder + QStringLiteral("/manifest.xml")).attribute(QStringLiteral("version")),
                 QStringLiteral("6.0.0"));
        QVERIFY(doc->getLXResMgr());
        QCOMPARE(doc->getLXResMgr()->getTempPath(), doc->getDocPath());

        // The next new document empties a caller's folder and drops the old one.
        const QString given = tmp(QStringLiteral("given"));
        QVERIFY(QDir().mkpath(given + QStringLiteral("/old")));
        QVERIFY(writeFile(given + QStringLiteral("/manifest.xml"), "stale"));
        QVERIFY(doc->newFile(given, false));
        QVERIFY(!QFileInfo::exists(folder));
        QCOMPARE(entries(given), QStringList("manifest.xml"));
        QCOMPARE(manifestList(given + QStringLiteral("/manifest.xml"), QStringLiteral("pages")), QStringList());
        doc.release();
        QVERIFY(!QFileInfo::exists(given));
    }

    void failedNewFileLeavesNoResMgr()
    {
        ScopedDocument doc;
        QVERIFY(doc->newFile(tmp(QStringLiteral("first")), true));
        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!doc->newFile(tmp(QStringLiteral("missing/parent")), true));
        QVERIFY(!doc->getLXResMgr());
        QVERIFY(!QFileInfo::exists(tmp(QStringLiteral("first"))));
        QCOMPARE(doc->getPagesCount(), 0);
    }

    void openDocumentInPlace()
    {
        const QString folder = tmp(QStringLiteral("inplace"));
        makeWorkingFolder(folder, pageNames({4, 2}));
        ScopedDocument doc;
        QVERIFY(doc->openDocument(folder));
        QCOMPARE(doc->getDocPath(), folder);
        QCOMPARE(doc->getPagesCount(), 2);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml"}));
        QCOMPARE(doc->getLXResMgr()->getTempPath(), folder);
        doc.release();
        QVERIFY(!QFileInfo::exists(folder));
    }

    void openDocumentWithoutManifest()
    {
        ScopedDocument doc;
        QVERIFY(doc->newFile(tmp(QStringLiteral("current")), true));
        ILXResMgr *const before = doc->getLXResMgr();
        const QString folder = tmp(QStringLiteral("nomanifest"));
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(!doc->openDocument(folder));
        QCOMPARE(doc->getDocPath(), folder);
        QCOMPARE(entries(folder), kSubfolders);
        QCOMPARE(doc->getLXResMgr(), before);
        // openDocument never deletes the folder it leaves.
        QVERIFY(QFileInfo::exists(tmp(QStringLiteral("current"))));
        QDir(tmp(QStringLiteral("current"))).removeRecursively();
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
        QVERIFY(!QFileInfo::exists(folder));
        QVERIFY(QFileInfo::exists(pdf));
    }

    void pageList()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("pages"));
        QVERIFY(doc->newFile(folder, true));
        QCOMPARE(doc->getPagesCount(), 0);
        ILXFrontPage *page = doc->insertFrontPage(0, 7);
        QVERIFY(page);
        page->release();
        QCOMPARE(doc->getPagesCount(), 1);
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("pages")), pageNames({7}));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page7.svg")));

        int id = -99;
        QVERIFY(!doc->getPageByIndex(-1, id));
        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!doc->getPageByIndex(1, id));
        QVERIFY(!doc->getPageByIndex(2, id));
        QCOMPARE(id, -99);
        page = doc->getPageByIndex(0, id);
        QVERIFY(page);
        page->release();
        QCOMPARE(id, 7);

        QVERIFY(QFile::remove(folder + QStringLiteral("/page7.svg")));
        QVERIFY(!doc->getPageByIndex(0, id));
        QVERIFY(!QFileInfo::exists(folder + QStringLiteral("/page7.svg")));
    }

    void pagesByIdAreNotListed()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("byid"));
        QVERIFY(doc->newFile(folder, true));
        ILXFrontPage *const page = doc->getPageById(99);
        QVERIFY(page);
        page->release();
        ILXRecordPage *const record = doc->getRecPageById(5);
        QVERIFY(record);
        record->release();
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page99.svg")));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page5.mtrec")));
        QCOMPARE(doc->getPagesCount(), 0);
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("records")), QStringList());
    }

    void recordPagesFollowTheirIndex()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("records"));
        QVERIFY(doc->newFile(folder, true));
        for (const auto &[index, id] : {std::pair{0, 1}, {5, 2}, {1, 3}}) {
            ILXRecordPage *const record = doc->insertRecPage(index, id);
            QVERIFY(record);
            record->release();
        }
        QCOMPARE(manifestList(folder + QStringLiteral("/manifest.xml"), QStringLiteral("records")),
                 pageNames({1, 3, 2}, "page%1.mtrec"));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page3.mtrec")));
        QCOMPARE(doc->getPagesCount(), 0);
    }

    void adjustPageIndex_data()
    {
        QTest::addColumn<int>("newIndex");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("to 2") << 2 << pageNames({2, 3, 1, 4, 5});
        QTest::newRow("to 4 appends") << 4 << pageNames({2, 3, 4, 5, 1});
        QTest::newRow("past end appends") << 9 << pageNames({2, 3, 4, 5, 1});
        QTest::newRow("-1 first") << -1 << pageNames({1, 2, 3, 4, 5});
        QTest::newRow("-2 drops it") << -2 << pageNames({2, 3, 4, 5});
    }

    void adjustPageIndex()
    {
        QFETCH(int, newIndex);
        QFETCH(QStringList, order);
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("adjust"));
        QVERIFY(doc->newFile(folder, true));
        for (int id = 1; id <= 5; ++id)
            doc->insertFrontPage(id, id)->release();
        QVERIFY(doc->adjustPageIndex(1, 0, newIndex));
        const QString manifest = folder + QStringLiteral("/manifest.xml");
        QCOMPARE(manifestList(manifest, QStringLiteral("pages")), order);
        // The record entry comes along even though the page had none; into
        // the empty records list it goes at any index, -2 included.
        QCOMPARE(manifestList(manifest, QStringLiteral("records")), pageNames({1}, "page%1.mtrec"));
    }

    void deletePageKeepsItsFiles()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("delete"));
        QVERIFY(doc->newFile(folder, true));
        for (int id = 1; id <= 3; ++id) {
            doc->insertFrontPage(id, id)->release();
            doc->insertRecPage(id, id)->release();
        }
        QVERIFY(doc->deletePage(2, true));
        QVERIFY(doc->deletePage(42, false));
        const QString manifest = folder + QStringLiteral("/manifest.xml");
        QCOMPARE(manifestList(manifest, QStringLiteral("pages")), pageNames({1, 3}));
        QCOMPARE(manifestList(manifest, QStringLiteral("records")), pageNames({1, 3}, "page%1.mtrec"));
        QCOMPARE(doc->getPagesCount(), 2);
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page2.svg")));
        QVERIFY(QFileInfo::exists(folder + QStringLiteral("/page2.mtrec")));
    }

    void savePage_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("preview");
        QTest::addColumn<bool>("result");
        QTest::newRow("preview") << "" << true << true;
        QTest::newRow("path ending in slash") << "/" << true << true;
        QTest::newRow("no preview") << "" << false << true;
        QTest::newRow("page result passed on") << "" << true << false;
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
        QVERIFY(!doc->savePage(nullptr, 0, 0, true));
    }

    void saveWithoutPackingWritesTheManifest()
    {
        ScopedDocument doc;
        const QString folder = tmp(QStringLiteral("nopack"));
        QVERIFY(doc->newFile(folder, true));
        const QString photo = tmp(QStringLiteral("photo.png"));
        QVERIFY(writeFile(photo, "png"));
        QString copy;
        QVERIFY(doc->getLXResMgr()->addImageFile(photo, copy));
        const QString manifest = folder + QStringLiteral("/manifest.xml");
        QCOMPARE(manifestList(manifest, QStringLiteral("images")), QStringList());
        QVERIFY(doc->saveFile(QString(), false));
        QCOMPARE(manifestList(manifest, QStringLiteral("images")), QStringList("images/photo.png"));
        doc->finishSaveFile();
    }

    void roundTripThroughTheArchive()
    {
        if (!QFileInfo::exists(archivePlugin()))
            QSKIP("no archive plug-in beside the test");
        const QString sources = tmp(QStringLiteral("sources"));
        QVERIFY(QDir().mkpath(sources));
        const QStringList names = {"photo.png", "bell.wav", "clip.mp4", "anim.swf", "block.fb", "notes.pdf"};
        for (const QString &name : names)
            QVERIFY(writeFile(sources + QLatin1Char('/') + name, name.toUtf8().repeated(100)));
        const QString archive = tmp(QStringLiteral("lesson.lzn"));

        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false));
        QVERIFY(doc->newFile(QString(), true));
        ILXResMgr *const resMgr = doc->getLXResMgr();
        using Add = bool (ILXResMgr::*)(const QString &, QString &);
        const Add adds[] = {&ILXResMgr::addImageFile, &ILXResMgr::addSoundFile, &ILXResMgr::addAvMediaFile,
                            &ILXResMgr::addFlashFile, &ILXResMgr::addFillblockFile, &ILXResMgr::addAttachmentFile};
        QString copy;
        for (int i = 0; i < names.size(); ++i)
            QVERIFY((resMgr->*adds[i])(sources + QLatin1Char('/') + names.at(i), copy));
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
        QCOMPARE(folder, tempRoot() + QStringLiteral("lesson"));
        QCOMPARE(reopened->getPagesCount(), 1);
        QCOMPARE(folderContents(folder).keys(), before.keys());
        QVERIFY(folderContents(folder) == before);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml", "page12.mtrec", "page12.svg"}));
        const QString manifest = folder + QStringLiteral("/manifest.xml");
        QCOMPARE(manifestList(manifest, QStringLiteral("flashes")), QStringList("flash/anim.swf"));
        QCOMPARE(manifestList(manifest, QStringLiteral("attachments")),
                 QStringList({"fillblocks/block.fb", "attachments/notes.pdf"}));
        int id = 0;
        ILXFrontPage *const page = reopened->getPageByIndex(0, id);
        QVERIFY(page);
        page->release();
        QCOMPARE(id, 12);
    }

    void archiveUnpackFolders()
    {
        if (!QFileInfo::exists(archivePlugin()))
            QSKIP("no archive plug-in beside the test");
        ScopedDocument maker;
        QVERIFY(maker->newFile(tmp(QStringLiteral("maker")), true));
        maker->insertFrontPage(0, 1)->release();
        const QString lesson = tmp(QStringLiteral("lesson.lzn"));
        QVERIFY(maker->saveFile(lesson, true));
        for (const char *copy : {"Upper.LZN", "double.tar.lzn", "old.resitem"})
            QVERIFY(QFile::copy(lesson, tmp(QString::fromLatin1(copy))));

        ScopedDocument first;
        QVERIFY(first->init(QString(), false));
        QVERIFY(first->openFile(tmp(QStringLiteral("Upper.LZN"))));
        QCOMPARE(first->getDocPath(), tempRoot() + QStringLiteral("Upper"));
        QVERIFY(first->openFile(tmp(QStringLiteral("double.tar.lzn"))));
        QCOMPARE(first->getDocPath(), tempRoot() + QStringLiteral("double"));
        QVERIFY(first->openFile(tmp(QStringLiteral("old.resitem"))));
        QCOMPARE(first->getPagesCount(), 1);
        QVERIFY(first->openFile(lesson));
        QCOMPARE(first->getDocPath(), tempRoot() + QStringLiteral("lesson"));

        ScopedDocument second;
        QVERIFY(second->openFile(lesson));
        QCOMPARE(second->getDocPath(), tempRoot() + QStringLiteral("lesson0"));
        ScopedDocument third;
        QVERIFY(third->openFile(lesson));
        QCOMPARE(third->getDocPath(), tempRoot() + QStringLiteral("lesson1"));
        // Reopening drops the document's own folder first and takes its name again.
        QVERIFY(first->openFile(lesson));
        QCOMPARE(first->getDocPath(), tempRoot() + QStringLiteral("lesson"));
        QVERIFY(QFileInfo::exists(tempRoot() + QStringLiteral("lesson0")));
    }
};

QTEST_MAIN(TestDocument)
#include "tst_document.moc"
