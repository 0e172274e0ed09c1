// SPDX-License-Identifier: MIT
#include "document/qlxdocument.h"

#include "document/archiveplugin.h"
#include "document/folderremover.h"
#include "document/lessonpath.h"
#include "document/savelock.h"
#include "document/temproot.h"
#include "idrawpage.h"
#include "manifest/qlxresmgr.h"
#include "page/qlxfrontpage.h"
#include "record/qlxrecordpage.h"
#include "xml/readlimits.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPixmap>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char *const kManifestName = "manifest.xml";

QString frontPageName(int id)
{
    return QStringLiteral("page%1.svg").arg(id);
}

QString recordPageName(int id)
{
    return QStringLiteral("page%1.mtrec").arg(id);
}

// The id lives only in the file name; a name that does not read back gives 0.
int pageIdFromName(QString name)
{
    return name.remove(QStringLiteral("page")).remove(QStringLiteral(".svg")).toInt();
}

// A folder opened in place may hold a link named like the preview: the
// picture goes to a new file of its own beside it, which then replaces the
// name itself. A failure leaves the old preview and nothing else.
void writePreview(const QPixmap &pixmap, const QString &path)
{
    QByteArray temporary = QFile::encodeName(path) + ".XXXXXX";
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return;
    ::fchmod(fd, 0644);
    QFile file;
    const bool opened = file.open(fd, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle);
    if (!opened)
        ::close(fd);
    bool written = opened && pixmap.save(&file, "PNG", -1);
    file.close();
    written = written && ::rename(temporary.constData(), QFile::encodeName(path).constData()) == 0;
    if (!written)
        ::unlink(temporary.constData());
}

} // namespace

QLXDocument::QLXDocument() = default;

// The flag is not used. Only an empty path ensures the temp root; a given
// path is neither stored nor made, as hosts have always relied on.
bool QLXDocument::init(const QString &path, bool flag)
{
    Q_UNUSED(flag);
    if (path.isEmpty()) {
        const QString root = getTempPath();
        QDir dir(root);
        if (!root.isEmpty() && !dir.exists())
            dir.mkdir(root);
    }
    return true;
}

// Deleting the working folder is part of closing: a host packs before it
// releases, or the folder's content is gone.
void QLXDocument::release(bool flag)
{
    Q_UNUSED(flag);
    releaseResMgr();
    m_manifest.closeFile(false);
    removeFolder(m_path, true);
    delete this;
}

bool QLXDocument::newFile(const QString &folder, bool makeSubfolders)
{
    m_manifest.closeFile(false);
    if (!m_path.isEmpty())
        removeFolder(m_path, true);
    // Cleared at once so a failed create leaves no dangling manager behind.
    releaseResMgr();
    const QString root = getTempPath();
    if (folder.isEmpty() && root.isEmpty()) {
        m_path.clear();
        return false;
    }
    m_path = folder.isEmpty() ? root + QLatin1String("newDocument") : folder;
    if (QFileInfo::exists(m_path))
        removeFolder(m_path, false);
    createFolder(m_path, makeSubfolders);
    if (!m_manifest.createManifestFile(m_path + QLatin1Char('/') + QLatin1String(kManifestName)))
        return false;
    m_resMgr = new QLXResMgr(&m_manifest, m_path);
    return true;
}

// The previous working folder goes before anything about the new path is
// known, so a failed open leaves the document without one.
bool QLXDocument::openFile(const QString &path)
{
    m_manifest.closeFile(true);
    if (!m_path.isEmpty())
        removeFolder(m_path, true);

    const QFileInfo info(path);
    if (!info.exists())
        return false;
    if (info.isDir())
        return openDocument(path);
    const QString suffix = info.suffix().toLower();
    if (suffix != QLatin1String("lzn") && suffix != QLatin1String("resitem"))
        return openOtherTypeFile(path);

    const QString folder = claimUnpackFolder(info);
    return !folder.isEmpty() && unpackArchive(path, folder) && openDocument(folder);
}

bool QLXDocument::openDocument(const QString &folder)
{
    m_path = folder;
    m_manifest.closeFile(false);
    createFolder(folder, true);
    if (!m_manifest.loadManifestFile(QStringLiteral("%1/%2").arg(folder, QLatin1String(kManifestName))))
        return false;
    if (!withinPageLimit()) {
        m_manifest.closeFile(false);
        return false;
    }
    releaseResMgr();
    m_resMgr = new QLXResMgr(&m_manifest, m_path);
    return true;
}

// Pages are opened by the page operations themselves.
bool QLXDocument::openPage(int id)
{
    Q_UNUSED(id);
    return true;
}

// A failed packing is reported by its message only and still counts as a
// save, on purpose: the manifest has been written and the working folder is
// intact. The previous archive stays whole, since the plug-in replaces it
// only with a complete one. Two saves of one archive take turns; a save that
// cannot get its turn is a failed packing.
bool QLXDocument::saveFile(const QString &archive, bool pack)
{
    m_manifest.saveFile();
    if (!pack)
        return true;
    const ArchivePlugin plugin;
    ArchiveTool *const tool = plugin.tool();
    if (!tool)
        return false;
    SaveLock lock(archive);
    if (!lock.acquire(SaveLock::WaitMs)) {
        qWarning("zip folder failed");
        return true;
    }
    tool->beginArchive(archive, false);
    const bool packed = tool->packFolder(m_path, archive);
    tool->finishArchive();
    if (!packed)
        qWarning("zip folder failed");
    return true;
}

bool QLXDocument::startSaveFile(const QString &archive)
{
    Q_UNUSED(archive);
    return true;
}

// The preview is the document's single thumbnail: every page saved with the
// preview requested overwrites it.
bool QLXDocument::savePage(IDrawPage *page, int index, unsigned int flags, bool preview)
{
    if (!page)
        return false;
    if (preview) {
        const QSize size(100, 75);
        QPixmap pixmap(size);
        page->renderPreview(&pixmap, size, 0);
        const QString separator = m_path.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
        writePreview(pixmap, m_path + separator + QLatin1String("preview.png"));
    }
    return page->savePageTo(this, index, flags);
}

void QLXDocument::finishSaveFile()
{
}

// Without a document the page paths would name the file-system root: the
// operations that never fail hand out a page without a file instead.
ILXFrontPage *QLXDocument::insertFrontPage(int index, int id)
{
    if (!hasDocument())
        return new QLXFrontPage;
    const QString name = frontPageName(id);
    ILXFrontPage *const page = new QLXFrontPage(pagePath(name));
    m_manifest.insertFrontPage(index, name);
    m_manifest.saveFile();
    return page;
}

ILXRecordPage *QLXDocument::insertRecPage(int index, int id)
{
    if (!hasDocument())
        return new QLXRecordPage;
    const QString name = recordPageName(id);
    ILXRecordPage *const page = new QLXRecordPage(pagePath(name));
    m_manifest.insertRecPage(index, name);
    m_manifest.saveFile();
    return page;
}

int QLXDocument::getPagesCount()
{
    return m_manifest.getPagesList().size();
}

// Only the lists change; the page files stay until the folder goes, and
// packing takes them along.
bool QLXDocument::deletePage(int id, bool flag)
{
    Q_UNUSED(flag);
    m_manifest.deleteFrontPage(frontPageName(id));
    m_manifest.deleteRecPage(recordPageName(id));
    m_manifest.saveFile();
    return true;
}

// The records list follows the pages list by index, so the record entry is
// inserted even for a page that had none.
bool QLXDocument::adjustPageIndex(int id, int oldIndex, int newIndex)
{
    Q_UNUSED(oldIndex);
    const QString front = frontPageName(id);
    const QString record = recordPageName(id);
    m_manifest.deleteFrontPage(front);
    m_manifest.deleteRecPage(record);
    m_manifest.insertFrontPage(newIndex, front);
    m_manifest.insertRecPage(newIndex, record);
    m_manifest.saveFile();
    return true;
}

ILXFrontPage *QLXDocument::getPageByIndex(int index, int &id)
{
    if (!hasDocument())
        return nullptr;
    const QStringList pages = m_manifest.getPagesList();
    // An index equal to the size passes on purpose: it names the working
    // folder itself, which does not load, so the result is still null.
    if (index < 0 || index > pages.size())
        return nullptr;
    const QString name = index < pages.size() ? pages.at(index) : QString();
    // The name comes from the lesson: one that leads outside the working
    // folder, through a link or to anything but a regular file is missing.
    if (!name.isEmpty() && LessonPath::inspect(m_path, name) != LessonPath::Regular)
        return nullptr;
    QLXFrontPage *const page = new QLXFrontPage;
    if (!page->loadPageFile(m_path + QLatin1Char('/') + LessonPath::clean(name))) {
        delete page;
        return nullptr;
    }
    id = pageIdFromName(name);
    return page;
}

ILXFrontPage *QLXDocument::getPageById(int id)
{
    if (!hasDocument())
        return new QLXFrontPage;
    return new QLXFrontPage(pagePath(frontPageName(id)));
}

ILXRecordPage *QLXDocument::getRecPageById(int id)
{
    if (!hasDocument())
        return new QLXRecordPage;
    return new QLXRecordPage(pagePath(recordPageName(id)));
}

ILXResMgr *QLXDocument::getLXResMgr()
{
    return m_resMgr;
}

// Document attributes are not stored in this version; the operations keep
// the interface complete.
bool QLXDocument::getLXDocAttribute(const QString &name, int &value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return true;
}

bool QLXDocument::getLXDocAttribute(const QString &name, float &value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return true;
}

bool QLXDocument::getLXDocAttribute(const QString &name, const QString &value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return true;
}

bool QLXDocument::setLXDocAttribute(const QString &name, int value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return true;
}

bool QLXDocument::setLXDocAttribute(const QString &name, float value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return true;
}

bool QLXDocument::setLXDocAttribute(const QString &name, const QString &value)
{
    Q_UNUSED(name);
    Q_UNUSED(value);
    return true;
}

QString QLXDocument::getDocPath()
{
    return m_path;
}

QString QLXDocument::getTempPath()
{
    return TempRoot::path();
}

// Only release() cleans up; destroying the object leaves the disk alone.
// A host ends a document with release(); one deleted otherwise (a test, a
// host of our own) still lets go of what it holds, and writes nothing.
QLXDocument::~QLXDocument()
{
    releaseResMgr();
    m_manifest.closeFile(false);
}

// A single level is made, never missing parents. Without subfolders the
// result is false even though the folder was made; callers ignore it.
bool QLXDocument::createFolder(const QString &path, bool makeSubfolders)
{
    QDir dir;
    dir.mkdir(path);
    if (!makeSubfolders)
        return false;
    const char *const subfolders[] = {"attachments", "flash", "images", "fillblocks",
                                      "sounds",      "avmedia", "temp", "previews"};
    for (const char *subfolder : subfolders)
        dir.mkdir(QStringLiteral("%1/%2").arg(path, QLatin1String(subfolder)));
    return true;
}

// Failures on the way are ignored. Hidden entries, links and special files
// are left (so their folder stays too). A link to a folder is not descended
// into: deleting a working folder must never reach files that live outside
// it. A lesson may hold paths longer than the system allows, so the tree is
// taken apart through folder descriptors rather than by path.
bool QLXDocument::removeFolder(const QString &path, bool removeSelf)
{
    if (path.isEmpty())
        return false;
    FolderRemover(FolderRemover::VisibleFilesAndFolders).remove(QFile::encodeName(path), removeSelf);
    return true;
}

// Other kinds of file are not converted: opening one starts a new, empty
// document under the temp root.
bool QLXDocument::openOtherTypeFile(const QString &path)
{
    Q_UNUSED(path);
    return newFile(QString(), true);
}

QString QLXDocument::pagePath(const QString &name) const
{
    return QStringLiteral("%1/%2").arg(m_path, name);
}

// A lesson beyond the read limit is refused as a whole, like a manifest that
// does not parse: a host that walks every page of a manifest listing one
// file a million times would read that file a million times. The records
// list follows the pages list, so it is held to the same number.
bool QLXDocument::withinPageLimit()
{
    const int limit = ReadLimits::current().maxPages;
    QStringList records;
    m_manifest.getResourceList(records, QStringLiteral("records"));
    if (m_manifest.getPagesList().size() <= limit && records.size() <= limit)
        return true;
    qWarning("Lesson has more pages than the limit of %d!", limit);
    return false;
}

bool QLXDocument::hasDocument() const
{
    return !m_path.isEmpty();
}

void QLXDocument::releaseResMgr()
{
    if (m_resMgr)
        m_resMgr->release();
    m_resMgr = nullptr;
}

// The counter goes onto the first candidate as text, so names outside ASCII,
// in the install path or the archive's name, come back as they went in.
QString QLXDocument::unpackFolderFor(const QString &first, int counter)
{
    return counter < 0 ? first : first + QString::number(counter);
}

// Base name up to the first dot; while that name is taken, the counter is
// appended, as earlier versions named their unpack folders. Making the folder
// is the claim: mkdir fails when the name exists, so processes sharing a temp
// root never end up in one folder. Empty when no temp root is usable.
QString QLXDocument::claimUnpackFolder(const QFileInfo &archive)
{
    const QString root = getTempPath();
    if (root.isEmpty())
        return QString();
    const QString first = root + archive.baseName();
    for (int counter = -1; counter < std::numeric_limits<int>::max(); ++counter) {
        const QString candidate = unpackFolderFor(first, counter);
        if (::mkdir(QFile::encodeName(candidate).constData(), 0700) == 0 || errno != EEXIST)
            return candidate;
    }
    return QString();
}

// The folder stays on disk whatever happens here.
bool QLXDocument::unpackArchive(const QString &archive, const QString &folder)
{
    bool unpacked = false;
    {
        const ArchivePlugin plugin;
        ArchiveTool *const tool = plugin.tool();
        if (!tool)
            return false;
        unpacked = tool->unpackArchive(archive, folder);
    }
    if (!unpacked)
        qWarning("unzip folder failed");
    return unpacked;
}
