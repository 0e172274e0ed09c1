// SPDX-License-Identifier: MIT
#include "lessonsource.h"

#include "archivesession.h"
#include "console.h"
#include "filetree.h"
#include "lessonpages.h"
#include "privatetemp.h"
#include "xmlfilecheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

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
    if (!m_document->openDocument(m_folder)) {
        // Only a manifest within the XML limits is read again to say why:
        // one beyond them would make the stream reader slow.
        const QString manifestName = QStringLiteral("manifest.xml");
        ManifestReader manifest;
        const bool readable = XmlFileCheck::problem(m_folder, manifestName, QStringLiteral("manifest")).isEmpty()
            && manifest.load(QDir(m_folder).filePath(manifestName));
        const QString tooLong = readable ? manifest.pageLimitProblem() : QString();
        return fail(tooLong.isEmpty() ? QStringLiteral("its manifest.xml cannot be read") : QStringLiteral("it ") + tooLong);
    }
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

bool LessonSource::isStandardStream(const QString &path)
{
    return path == QLatin1String("-");
}

QString LessonSource::displayName(const QString &path)
{
    return isStandardStream(path) ? QStringLiteral("the standard input") : QStringLiteral("'%1'").arg(path);
}

bool LessonSource::isArchiveName(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("lzn") || suffix == QLatin1String("resitem");
}

bool LessonSource::checkPath()
{
    if (isStandardStream(m_path))
        return true;
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
    m_temp = std::make_unique<PrivateTemp>();
    if (!m_temp->isValid())
        return fail(QStringLiteral("cannot make a temporary folder in '%1': %2").arg(QDir::tempPath(), m_temp->errorString()));
    m_folder = m_temp->filePath(QStringLiteral("lesson"));
    return QDir().mkpath(m_folder) || fail(QStringLiteral("cannot make a temporary folder"));
}

bool LessonSource::unpackArchive()
{
    ArchiveSession plugin;
    if (!plugin.isLoaded())
        return fail(plugin.errorString());
    QString archive = QFileInfo(m_path).absoluteFilePath();
    if (isStandardStream(m_path)) {
        archive = m_temp->filePath(QStringLiteral("input.lzn"));
        if (!readStandardInput(archive))
            return false;
    }
    if (!plugin.unpack(archive, m_folder))
        return fail(QStringLiteral("not a lesson archive (%1)").arg(plugin.errorString()));
    return FileTree::isLessonFolder(m_folder) || fail(QStringLiteral("not a lesson archive (no manifest.xml inside)"));
}

bool LessonSource::readStandardInput(const QString &file)
{
    // Typing an archive is never what was meant: a forgotten "<" would hang.
    if (::isatty(STDIN_FILENO))
        return fail(QStringLiteral("it is a terminal, not an archive"));
    QFile input;
    QFile output(file);
    if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(QIODevice::WriteOnly))
        return fail(QStringLiteral("cannot read it"));
    // Archives are read in pieces: the input may be larger than memory allows.
    QByteArray chunk;
    while (!(chunk = input.read(1 << 20)).isEmpty()) {
        if (output.write(chunk) != chunk.size())
            return fail(QStringLiteral("cannot keep a copy: %1").arg(output.errorString()));
    }
    if (input.error() != QFileDevice::NoError)
        return fail(input.errorString());
    return output.size() > 0 || fail(QStringLiteral("it is empty"));
}

bool LessonSource::copyFolder()
{
    QString reason;
    return FileTree::copy(m_path, m_folder, &reason) || fail(reason);
}

bool LessonSource::fail(const QString &reason)
{
    m_error = QStringLiteral("cannot open %1: %2").arg(displayName(m_path), reason);
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
