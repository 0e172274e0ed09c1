// SPDX-License-Identifier: MIT
#include "document/folderremover.h"
#include "document/scopeddocument.h"
#include "idrawpage.h"
#include "ilxfrontpage.h"
#include "ilxrecordpage.h"
#include "ilxresmgr.h"
#include "manifest/manifestreader.h"
#include "manifest/qmanifest.h"
#include "testsupport.h"
#include "xml/readlimits.h"

#include <QDirIterator>
#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>
#include <QTemporaryDir>
#include <QtTest>

#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// Every file below the folder by its relative path, with its content.
QMap<QString, QByteArray> folderContents(const QString &folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        contents.insert(file.mid(folder.size()), readBytes(file));
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

// A manifest with every list, pages and recordings numbered from 1 (or all
// naming page 1), and extra markup after the lists.
QByteArray lessonManifest(int pages, int records, const QByteArray &extra = QByteArray(), bool oneFile = false)
{
    QByteArray text = "<manifest identifier=\"lzn\" version=\"6.0.0\"><resource identifier=\"pages\">";
    for (int i = 1; i <= pages; ++i)
        text += "<file href=\"page" + QByteArray::number(oneFile ? 1 : i) + ".svg\"/>";
    text += "</resource><resource identifier=\"records\">";
    for (int i = 1; i <= records; ++i)
        text += "<file href=\"page" + QByteArray::number(i) + ".mtrec\"/>";
    text += "</resource>";
    for (const char *list : {"images", "sounds", "flashes", "avmedia", "fillblocks", "attachments"})
        text += "<resource identifier=\"" + QByteArray(list) + "\"/>";
    return text + extra + "</manifest>";
}

QStringList listed(const QString &folder, const QString &identifier)
{
    return manifestList(folder + "/manifest.xml", identifier);
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

// A chain of folders whose full path is longer than the system allows, made
// one level at a time below the root; each level holds a file, the deepest
// one also the given hidden file, if any.
bool makeDeepChain(const QString &root, int levels, const char *hidden)
{
    const QByteArray name(200, 'd');
    int fd = ::open(QFile::encodeName(root).constData(), O_RDONLY | O_DIRECTORY);
    for (int level = 0; fd >= 0 && level < levels; ++level) {
        const int file = ::openat(fd, "page.svg", O_WRONLY | O_CREAT, 0644);
        const bool made = file >= 0 && ::close(file) == 0 && ::mkdirat(fd, name.constData(), 0755) == 0;
        const int child = made ? ::openat(fd, name.constData(), O_RDONLY | O_DIRECTORY) : -1;
        ::close(fd);
        fd = child;
    }
    const int file = fd >= 0 && hidden ? ::openat(fd, hidden, O_WRONLY | O_CREAT, 0644) : 0;
    if (fd >= 0)
        ::close(fd);
    return fd >= 0 && file >= 0 && (!hidden || ::close(file) == 0);
}

// The entries left along the chain, level by level, to its end.
QStringList chainLeft(const QString &root)
{
    QStringList left;
    int fd = ::open(QFile::encodeName(root).constData(), O_RDONLY | O_DIRECTORY);
    while (fd >= 0) {
        DIR *const dir = ::fdopendir(::dup(fd));
        QByteArray folder;
        while (const dirent *entry = dir ? ::readdir(dir) : nullptr) {
            const QByteArray name(entry->d_name);
            if (name == "." || name == "..")
                continue;
            left << QString::fromLatin1(name.size() > 20 ? QByteArray("d") : name);
            if (entry->d_type == DT_DIR)
                folder = name;
        }
        if (dir)
            ::closedir(dir);
        const int child = folder.isEmpty() ? -1 : ::openat(fd, folder.constData(), O_RDONLY | O_DIRECTORY);
        ::close(fd);
        fd = child;
    }
    return left;
}

} // namespace

class TestDocument : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString tmp(const QString &name) const { return m_dir.filePath(name); }
    static QString tempRoot() { return QCoreApplication::applicationDirPath() + "/Temp/"; }
    static bool hasPlugin() { return QFileInfo::exists(QCoreApplication::applicationDirPath() + "/ziplib.so"); }

    // A working folder left by an earlier session, listing the given pages.
    static void makeWorkingFolder(const QString &folder, const QStringList &pages)
    {
        QVERIFY(QDir().mkpath(folder));
        QManifest manifest;
        QVERIFY(manifest.createManifestFile(folder + "/manifest.xml"));
        for (const QString &page : pages)
            manifest.insertFrontPage(pages.size(), page);
        manifest.closeFile(true);
    }

private slots:
    void initTestCase() { QDir(tempRoot()).removeRecursively(); }

    void freshDocumentAndFolders()
    {
        ScopedDocument doc;
        QCOMPARE(doc->getTempPath(), tempRoot());
        QVERIFY(doc->getDocPath().isEmpty() && !doc->getLXResMgr());
        QVERIFY(doc->init(tmp("given"), true));
        QVERIFY(!QFileInfo::exists(tmp("given")) && !QFileInfo::exists(tempRoot()));
        QVERIFY(doc->init(QString(), false));
        QVERIFY(QFileInfo(tempRoot()).isDir());

        const QString folder = tmp("create");
        QVERIFY(!doc->createFolder(folder, false));
        QVERIFY(QFileInfo(folder).isDir() && entries(folder).isEmpty());
        for (int twice = 0; twice < 2; ++twice) {
            QVERIFY(doc->createFolder(folder, true));
            QCOMPARE(entries(folder), kSubfolders);
        }
        QVERIFY(doc->createFolder(tmp("no/parent"), true));
        QVERIFY(!QFileInfo::exists(tmp("no")));
    }

    void removeFolder()
    {
        ScopedDocument doc;
        const QString root = tmp("remove"), outside = tmp("outside");
        QVERIFY(QDir().mkpath(root + "/a/b") && QDir().mkpath(root + "/c") && QDir().mkpath(outside + "/target"));
        for (const QString file : {"/a/b/deep.txt", "/a/top.txt", "/plain.txt", "/.hidden", "/c/.hidden"})
            QVERIFY(writeFile(root + file));
        QVERIFY(writeFile(outside + "/kept.txt") && writeFile(outside + "/target/inside.txt"));
        QVERIFY(QFile::link(outside + "/kept.txt", root + "/filelink"));
        QVERIFY(QFile::link(outside + "/target", root + "/dirlink"));

        QVERIFY(doc->removeFolder(root, false));
        // Hidden files and links stay, and so does a subfolder holding one;
        // nothing behind a link is touched.
        QCOMPARE(entries(root), QStringList({".hidden", "c", "dirlink", "filelink"}));
        QCOMPARE(entries(root + "/c"), QStringList(".hidden"));
        QCOMPARE(entries(outside) + entries(outside + "/target"), QStringList({"kept.txt", "target", "inside.txt"}));
        QVERIFY(doc->removeFolder(root, true) && QFileInfo::exists(root));
        QVERIFY(!doc->removeFolder(QString(), true));
        QVERIFY(QFile::remove(root + "/.hidden") && QFile::remove(root + "/c/.hidden"));
        QVERIFY(doc->removeFolder(root, true));
        QCOMPARE(entries(root), QStringList({"dirlink", "filelink"}));
    }

    void removeDeepFolder_data()
    {
        QTest::addColumn<QByteArray>("hidden");
        QTest::addColumn<bool>("removeSelf");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("everything goes") << QByteArray() << true << QStringList();
        QTest::newRow("contents only") << QByteArray() << false << QStringList();
        // The hidden file keeps the folders above it, and only those.
        QStringList chain;
        for (int level = 0; level < 40; ++level)
            chain << "d";
        QTest::newRow("hidden file at the bottom") << QByteArray(".keep") << true << (chain << ".keep");
    }

    void removeDeepFolder()
    {
        QFETCH(QByteArray, hidden);
        QFETCH(bool, removeSelf);
        QFETCH(QStringList, left);
        const QString root = tmp("deep");
        QVERIFY(QDir().mkpath(root));
        QVERIFY(makeDeepChain(root, 40, hidden.isEmpty() ? nullptr : hidden.constData()));
        QVERIFY(40 * 201 > PATH_MAX);
        ScopedDocument doc;
        QVERIFY(doc->removeFolder(root, removeSelf));
        QCOMPARE(QFileInfo::exists(root), !removeSelf || !left.isEmpty());
        QCOMPARE(chainLeft(root), left);
        FolderRemover(FolderRemover::Everything).remove(QFile::encodeName(root), true);
        QVERIFY(!QFileInfo::exists(root));
    }

    void newFile()
    {
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false) && doc->newFile(QString(), true));
        const QString folder = tempRoot() + "newDocument";
        QCOMPARE(doc->getDocPath(), folder);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml"}));
        QCOMPARE(doc->getLXResMgr()->getTempPath(), folder);

        // The next new document drops the old folder and empties a caller's one.
        const QString given = tmp("given");
        QVERIFY(QDir().mkpath(given + "/old") && writeFile(given + "/manifest.xml", "stale"));
        QVERIFY(doc->newFile(given, false));
        QVERIFY(!QFileInfo::exists(folder));
        QCOMPARE(entries(given), QStringList("manifest.xml"));
        QCOMPARE(listed(given, "pages"), QStringList());

        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!doc->newFile(tmp("missing/parent"), true));
        QVERIFY(!doc->getLXResMgr() && !QFileInfo::exists(given));
        QVERIFY(doc->newFile(given, true));
        doc.release();
        QVERIFY(!QFileInfo::exists(given));
    }

    void openFolderOrFile()
    {
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false) && doc->newFile(tmp("current"), true));
        ILXResMgr *const before = doc->getLXResMgr();
        const QString bare = tmp("nomanifest");
        QVERIFY(QDir().mkpath(bare));
        QVERIFY(!doc->openDocument(bare));
        QCOMPARE(doc->getDocPath(), bare);
        QCOMPARE(entries(bare), kSubfolders);
        QCOMPARE(doc->getLXResMgr(), before);
        QVERIFY(QFileInfo::exists(tmp("current")));

        const QString folder = tmp("inplace");
        makeWorkingFolder(folder, pageNames({4, 2}));
        QVERIFY(doc->openDocument(folder));
        QCOMPARE(doc->getPagesCount(), 2);
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml"}));
        QCOMPARE(doc->getLXResMgr()->getTempPath(), folder);

        // openFile drops the open folder even when the new one cannot be read.
        QVERIFY(!doc->openFile(tmp("absent.lzn")));
        QVERIFY(!QFileInfo::exists(folder));
        const QString other = tmp("folder");
        makeWorkingFolder(other, pageNames({1}));
        QVERIFY(doc->openFile(other));
        QCOMPARE(doc->getDocPath(), other);
        QCOMPARE(doc->getPagesCount(), 1);

        const QString pdf = tmp("handout.pdf");
        QVERIFY(writeFile(pdf, "%PDF-1.4"));
        QVERIFY(doc->openFile(pdf));
        QCOMPARE(doc->getDocPath(), tempRoot() + "newDocument");
        QCOMPARE(doc->getPagesCount(), 0);
        QVERIFY(!QFileInfo::exists(other) && QFileInfo::exists(pdf));
    }

    void pageAccess()
    {
        ScopedDocument doc;
        const QString folder = tmp("pages");
        QVERIFY(doc->newFile(folder, true));
        doc->insertFrontPage(0, 7)->release();
        QCOMPARE(doc->getPagesCount(), 1);
        QCOMPARE(listed(folder, "pages"), pageNames({7}));

        int id = -99;
        QVERIFY(!doc->getPageByIndex(-1, id));
        QTest::ignoreMessage(QtWarningMsg, "open XML file error!");
        QVERIFY(!doc->getPageByIndex(1, id) && !doc->getPageByIndex(2, id));
        QCOMPARE(id, -99);
        ILXFrontPage *const page = doc->getPageByIndex(0, id);
        QVERIFY(page);
        page->release();
        QCOMPARE(id, 7);
        QVERIFY(QFile::remove(folder + "/page7.svg"));
        QVERIFY(!doc->getPageByIndex(0, id) && !QFileInfo::exists(folder + "/page7.svg"));

        // Pages asked for by id are made but never listed.
        doc->getPageById(99)->release();
        doc->getRecPageById(5)->release();
        QCOMPARE(entries(folder).filter("page"), QStringList({"page5.mtrec", "page99.svg"}));
        QCOMPARE(doc->getPagesCount(), 1);
        QCOMPARE(listed(folder, "records"), QStringList());
    }

    // With no document the page paths would name the file-system root.
    void pagesWithoutDocument()
    {
        const int id = 918273;
        const QStringList strays = {QString("/page%1.svg").arg(id), QString("/page%1.mtrec").arg(id)};
        ScopedDocument doc;
        QVector<bool> opened;
        for (ILXFrontPage *page : {doc->insertFrontPage(0, id), doc->getPageById(id)}) {
            QVERIFY(page);
            opened << page->setPageTitle("t");
            page->release();
        }
        for (ILXRecordPage *page : {doc->insertRecPage(0, id), doc->getRecPageById(id)}) {
            QVERIFY(page);
            opened << page->saveFile();
            page->release();
        }
        int index = -1;
        QVERIFY(!doc->getPageByIndex(0, index));
        QStringList written;
        for (const QString &stray : strays) {
            if (QFile::remove(stray))
                written << stray;
        }
        QCOMPARE(written, QStringList());
        QCOMPARE(opened, QVector<bool>(4, false));
        QCOMPARE(doc->getPagesCount(), 0);
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
        QVERIFY(doc->newFile(tmp("adjust"), true));
        for (int id = 1; id <= 5; ++id)
            doc->insertFrontPage(id, id)->release();
        QVERIFY(doc->adjustPageIndex(1, 0, newIndex));
        QCOMPARE(listed(tmp("adjust"), "pages"), order);
        // The record entry comes along although the page had none; into the
        // empty records list it goes at any index, -2 included.
        QCOMPARE(listed(tmp("adjust"), "records"), pageNames({1}, "page%1.mtrec"));
    }

    void deletePageKeepsItsFiles()
    {
        ScopedDocument doc;
        const QString folder = tmp("delete");
        QVERIFY(doc->newFile(folder, true));
        for (const int id : {1, 3, 2}) {
            doc->insertFrontPage(id - 1, id)->release();
            doc->insertRecPage(id - 1, id)->release();
        }
        QVERIFY(doc->deletePage(2, true) && doc->deletePage(42, false));
        QCOMPARE(listed(folder, "pages"), pageNames({1, 3}));
        QCOMPARE(listed(folder, "records"), pageNames({1, 3}, "page%1.mtrec"));
        QVERIFY(QFileInfo::exists(folder + "/page2.svg") && QFileInfo::exists(folder + "/page2.mtrec"));
    }

    void savePage_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("preview");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("planted"); // "preview.png" is a link to this file outside
        QTest::newRow("preview") << "" << true << true << "";
        QTest::newRow("path ending in slash") << "/" << true << false << "";
        QTest::newRow("no preview") << "" << false << true << "";
        QTest::newRow("preview name a link to a file outside") << "" << true << true << "victim.png";
        QTest::newRow("preview name a dangling link") << "" << true << true << "missing.png";
    }

    void savePage()
    {
        QFETCH(QString, suffix);
        QFETCH(bool, preview);
        QFETCH(bool, result);
        QFETCH(QString, planted);
        ScopedDocument doc;
        const QString folder = tmp("save");
        QVERIFY(doc->newFile(folder + suffix, true));
        QVERIFY(writeFile(tmp("victim.png"), "precious"));
        QVERIFY(planted.isEmpty() || QFile::link(tmp(planted), folder + "/preview.png"));
        FakeDrawPage page;
        page.result = result;
        QCOMPARE(doc->savePage(&page, 3, 0x81u, preview), result);
        QCOMPARE(page.document, static_cast<ILXDocument *>(doc.get()));
        QCOMPARE(QList<uint>({uint(page.index), page.flags, uint(page.previews)}), QList<uint>({3, 0x81u, preview}));
        const QImage image(folder + "/preview.png");
        QCOMPARE(image.isNull(), !preview);
        QVERIFY(!preview || (image.size() == QSize(100, 75) && image.pixelColor(50, 40) == QColor(Qt::red)));
        // The link itself is replaced; nothing is written through it or left beside it.
        QVERIFY(!QFileInfo(folder + "/preview.png").isSymLink());
        QCOMPARE(readBytes(tmp("victim.png")), QByteArray("precious"));
        QVERIFY(!QFileInfo::exists(tmp("missing.png")));
        QCOMPARE(entries(folder), withSubfolders(preview ? QStringList{"manifest.xml", "preview.png"} : QStringList{"manifest.xml"}));
    }

    void readLimits_data()
    {
        QTest::addColumn<QByteArray>("manifest");
        QTest::addColumn<QList<int>>("limits"); // depth, attributes, pages; 0 keeps the default
        QTest::addColumn<int>("pages");          // -1: the lesson does not open
        QTest::addColumn<QString>("warning");
        const QList<int> defaults{0, 0, 0};
        const QString tooLong = "Lesson has more pages than the limit of %1!";
        const QByteArray deep = QByteArray("<x>").repeated(300) + QByteArray("</x>").repeated(300);
        QByteArray wide = "<x";
        for (int i = 0; i < 300; ++i)
            wide += " a" + QByteArray::number(i) + "=\"1\"";
        wide += "/>";
        QTest::newRow("2,000 pages") << lessonManifest(2000, 2000) << defaults << 2000 << "";
        QTest::newRow("pages at the limit") << lessonManifest(10000, 10000) << defaults << 10000 << "";
        QTest::newRow("one page beyond") << lessonManifest(10001, 0) << defaults << -1 << tooLong.arg(10000);
        QTest::newRow("one recording beyond") << lessonManifest(1, 10001) << defaults << -1 << tooLong.arg(10000);
        QTest::newRow("20,000 entries naming one file")
            << lessonManifest(20000, 0, QByteArray(), true) << defaults << -1 << tooLong.arg(10000);
        QTest::newRow("20,000 entries naming one file, limit raised")
            << lessonManifest(20000, 0, QByteArray(), true) << QList<int>{0, 0, 20000} << 20000 << "";
        QTest::newRow("limit lowered") << lessonManifest(11, 0) << QList<int>{0, 0, 10} << -1 << tooLong.arg(10);
        QTest::newRow("300 levels") << lessonManifest(1, 1, deep) << defaults << -1 << "XML nested too deep!";
        QTest::newRow("300 levels, depth raised") << lessonManifest(1, 1, deep) << QList<int>{512, 0, 0} << 1 << "";
        QTest::newRow("300 attributes") << lessonManifest(1, 1, wide) << defaults << -1
                                        << "XML element with too many attributes!";
        QTest::newRow("300 attributes, raised") << lessonManifest(1, 1, wide) << QList<int>{0, 300, 0} << 1 << "";
    }

    // A lesson beyond a read limit does not open and its manifest stays as it
    // was; a host that raised the limit opens it.
    void readLimits()
    {
        QFETCH(QByteArray, manifest);
        QFETCH(QList<int>, limits);
        QFETCH(int, pages);
        QFETCH(QString, warning);
        const QString folder = tmp("limits");
        QVERIFY(QDir().mkpath(folder) && writeFile(folder + "/manifest.xml", manifest));
        if (!warning.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
        if (warning.startsWith("XML"))
            QTest::ignoreMessage(QtWarningMsg, "cann't load the xml file!");
        ReadLimits::set(LXReadLimits{limits.at(0), limits.at(1), limits.at(2)});
        QElapsedTimer timer;
        timer.start();
        ScopedDocument doc;
        const bool opened = doc->openDocument(folder);
        ReadLimits::set(ReadLimits::defaults());
        QCOMPARE(opened, pages >= 0);
        QCOMPARE(doc->getPagesCount(), qMax(pages, 0));
        QCOMPARE(readBytes(folder + "/manifest.xml"), manifest);
        // Only catches a reader that does not end; speed is measured in bench/.
        QVERIFY2(timer.elapsed() < kHangBoundMs, qPrintable(QString::number(timer.elapsed())));
    }

    void roundTripThroughTheArchive()
    {
        if (!hasPlugin())
            QSKIP("no archive plug-in beside the test");
        const QStringList names = {"photo.png", "bell.wav", "clip.mp4", "anim.swf", "block.fb", "notes.pdf"};
        using Add = bool (ILXResMgr::*)(const QString &, QString &);
        const Add adds[] = {&ILXResMgr::addImageFile, &ILXResMgr::addSoundFile, &ILXResMgr::addAvMediaFile,
                            &ILXResMgr::addFlashFile, &ILXResMgr::addFillblockFile, &ILXResMgr::addAttachmentFile};
        const QString archive = tmp("round.lzn");
        ScopedDocument doc;
        QVERIFY(doc->init(QString(), false) && doc->newFile(QString(), true));
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
        QCOMPARE(folder, tempRoot() + "round");
        QCOMPARE(entries(folder), withSubfolders({"manifest.xml", "page12.mtrec", "page12.svg"}));
        QCOMPARE(folderContents(folder).keys(), before.keys());
        QVERIFY(folderContents(folder) == before);
        QCOMPARE(listed(folder, "attachments"), QStringList({"fillblocks/block.fb", "attachments/notes.pdf"}));
        int id = 0;
        reopened->getPageByIndex(0, id)->release();
        QCOMPARE(id, 12);
    }

    void archiveUnpackFolders()
    {
        if (!hasPlugin())
            QSKIP("no archive plug-in beside the test");
        ScopedDocument first;
        QVERIFY(first->newFile(tmp("maker"), true));
        first->insertFrontPage(0, 1)->release();
        const QString lesson = tmp("lesson.lzn");
        QVERIFY(first->saveFile(lesson, true));
        // The folder takes the name up to the first dot, whatever the suffix.
        for (const QString copy : {"Upper.LZN", "double.tar.lzn", "old.resitem"}) {
            QVERIFY(QFile::copy(lesson, tmp(copy)) && first->openFile(tmp(copy)));
            QCOMPARE(first->getDocPath(), tempRoot() + copy.section('.', 0, 0));
            QCOMPARE(first->getPagesCount(), 1);
        }
        QVERIFY(first->openFile(lesson));
        ScopedDocument second, third;
        QVERIFY(second->openFile(lesson) && third->openFile(lesson));
        QCOMPARE(second->getDocPath() + third->getDocPath(), tempRoot() + "lesson0" + tempRoot() + "lesson1");
        // Reopening drops the document's own folder first and takes its name again.
        QVERIFY(first->openFile(lesson));
        QCOMPARE(first->getDocPath(), tempRoot() + "lesson");
    }
};

QTEST_MAIN(TestDocument)
#include "tst_document.moc"
