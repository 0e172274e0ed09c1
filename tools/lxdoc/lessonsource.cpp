#include "lessonsource.h"

#include "archivesession.h"
#include "console.h"
#include "filetree.h"
#include "lessonpages.h"
#include "privatefolder.h"

#include <QDir>
#include <QFileInfo>

LessonSource::LessonSource(const QString &path)
    : m_path(path)
{
}

// The document goes first: it deletes its working folder inside the
// private folder, which then removes whatever is left.
LessonSource::~LessonSource() = default;

bool LessonSource::prepareReadOnly()
{
    if (!checkPath())
        return false;
    if (m_isFolder) {
        m_folder = QFileInfo(m_path).absoluteFilePath();
        return true;
    }
    return makeTemporaryFolder() && unpackArchive();
}

bool LessonSource::open()
{
    if (!checkPath() || !makeTemporaryFolder())
        return false;
    if (!(m_isFolder ? copyFolder() : unpackArchive()))
        return false;
    m_document.reset(get_interface());
    if (!m_document)
        return fail(QStringLiteral("the document library gives no document"));
    // A non-empty path makes init a no-op: the tool never needs the shared
    // temp root beside the executable.
    m_document->init(m_folder, false);
    if (!m_document->openDocument(m_folder))
        return fail(QStringLiteral("its manifest.xml cannot be read"));
    return true;
}

QString LessonSource::folder() const
{
    return m_folder;
}

ILXDocument *LessonSource::document() const
{
    return m_document.get();
}

QString LessonSource::error() const
{
    return m_error;
}

bool LessonSource::isArchiveName(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("lzn") || suffix == QLatin1String("resitem");
}

bool LessonSource::checkPath()
{
    const QFileInfo info(m_path);
    if (!info.exists())
        return fail(QStringLiteral("no such file or folder"));
    m_isFolder = info.isDir();
    if (m_isFolder)
        return FileTree::isLessonFolder(m_path) || fail(QStringLiteral("not a lesson folder (no manifest.xml)"));
    if (!isArchiveName(m_path))
        return fail(QStringLiteral("not a lesson archive (expected a .lzn or .resitem file, or a lesson folder)"));
    return info.isReadable() || fail(QStringLiteral("permission denied"));
}

bool LessonSource::makeTemporaryFolder()
{
    m_temp = std::make_unique<PrivateFolder>(QDir::tempPath() + QStringLiteral("/lxdoc-XXXXXX"));
    if (!m_temp->isValid())
        return fail(QStringLiteral("cannot make a temporary folder"));
    m_folder = m_temp->filePath(QStringLiteral("lesson"));
    return QDir().mkpath(m_folder) || fail(QStringLiteral("cannot make a temporary folder"));
}

bool LessonSource::unpackArchive()
{
    ArchiveSession plugin;
    if (!plugin.isLoaded())
        return fail(plugin.errorString());
    if (!plugin.unpack(QFileInfo(m_path).absoluteFilePath(), m_folder))
        return fail(QStringLiteral("not a lesson archive (%1)").arg(plugin.errorString()));
    return FileTree::isLessonFolder(m_folder) || fail(QStringLiteral("not a lesson archive (no manifest.xml inside)"));
}

bool LessonSource::copyFolder()
{
    QString reason;
    return FileTree::copy(m_path, m_folder, &reason) || fail(reason);
}

bool LessonSource::fail(const QString &reason)
{
    m_error = QStringLiteral("cannot open '%1': %2").arg(m_path, reason);
    return false;
}

int LessonSource::withPages(const QString &path, const std::function<int(const LessonPages &)> &work)
{
    LessonSource source(path);
    if (!source.open())
        return Console::fail(source.error());
    const LessonPages pages(source.document(), source.folder());
    return work(pages);
}
