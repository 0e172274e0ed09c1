// SPDX-License-Identifier: MIT
#include "manifest/qlxresmgr.h"

#include "manifest/qmanifest.h"
#include "xml/xmlname.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

// The copy keeps the source's modification time, so adding the same file
// again finds the copy by size and time instead of making another one.
void keepModificationTime(const QString &source, const QString &copy)
{
    const QDateTime modified = QFileInfo(source).lastModified();
    QFile file(copy);
    if (modified.isValid() && file.open(QIODevice::ReadWrite))
        file.setFileTime(modified, QFileDevice::FileModificationTime);
}

bool isSameFile(const QString &source, const QString &existing)
{
    const QFileInfo sourceInfo(source);
    const QFileInfo existingInfo(existing);
    return sourceInfo.exists() && sourceInfo.size() == existingInfo.size()
        && sourceInfo.lastModified() == existingInfo.lastModified();
}

} // namespace

QLXResMgr::QLXResMgr(QManifest *manifest, const QString &documentPath)
    : m_path(documentPath), m_manifest(manifest)
{
}

void QLXResMgr::release()
{
    delete this;
}

bool QLXResMgr::addImageFile(const QString &source, QString &newPath)
{
    return addResource(source, newPath, QStringLiteral("images"), &QManifest::addImageFile);
}

bool QLXResMgr::addSoundFile(const QString &source, QString &newPath)
{
    return addResource(source, newPath, QStringLiteral("sounds"), &QManifest::addSoundFile);
}

bool QLXResMgr::addAvMediaFile(const QString &source, QString &newPath)
{
    return addResource(source, newPath, QStringLiteral("avmedia"), &QManifest::addAvMediaFile);
}

// The folder is "flash" while the manifest list is "flashes"; both names are
// part of the document format.
bool QLXResMgr::addFlashFile(const QString &source, QString &newPath)
{
    return addResource(source, newPath, QStringLiteral("flash"), &QManifest::addFlashFile);
}

bool QLXResMgr::addFillblockFile(const QString &source, QString &newPath)
{
    return addResource(source, newPath, QStringLiteral("fillblocks"), &QManifest::addFillblockFile);
}

bool QLXResMgr::addAttachmentFile(const QString &source, QString &newPath)
{
    return addResource(source, newPath, QStringLiteral("attachments"), &QManifest::addAttachment);
}

// The working folder, not the document's temp root: hosts resolve the
// manifest's relative names against it.
QString QLXResMgr::getTempPath()
{
    return m_path;
}

QLXResMgr::~QLXResMgr() = default;

bool QLXResMgr::getNewFilePath(const QString &source, const QString &subfolder, QString &fullPath,
                               QString &relativeName)
{
    // The copy is named as the manifest will list it: a character the
    // manifest cannot carry is left out of both, and the no-clash rule below
    // sees the name that is really used.
    const qsizetype slash = source.lastIndexOf(QLatin1Char('/'));
    const QString fileName = XmlName::carried(QStringView(source).mid(slash + 1));
    const int dot = fileName.lastIndexOf(QLatin1Char('.'));
    // A name without a dot serves as both base and extension (README is
    // stored as README.README), which existing documents already contain.
    const QString extension = fileName.mid(dot + 1);
    const QString base = dot < 0 ? fileName : fileName.left(dot);

    relativeName = QStringLiteral("%1/%2.%3").arg(subfolder, base, extension);
    fullPath = m_path + QLatin1Char('/') + relativeName;
    // Fill blocks never reuse an existing copy: every add gets a file of its own.
    const bool reuseCopies = subfolder != QLatin1String("fillblocks");
    for (int counter = 1;; ++counter) {
        if (!QFile::exists(fullPath))
            return true;
        if (reuseCopies && isSameFile(source, fullPath))
            return false;
        relativeName = QStringLiteral("%1/%2%3.%4").arg(subfolder, base, QString::number(counter), extension);
        fullPath = m_path + QLatin1Char('/') + relativeName;
    }
}

bool QLXResMgr::addResource(const QString &source, QString &newPath, const QString &subfolder,
                            bool (QManifest::*enter)(const QString &))
{
    QString relativeName;
    if (!getNewFilePath(source, subfolder, newPath, relativeName))
        return false;
    const QString folder = m_path + QLatin1Char('/') + subfolder;
    QDir dir(folder);
    if (!dir.exists())
        dir.mkdir(folder);
    if (!QFile::copy(source, newPath))
        return false;
    keepModificationTime(source, newPath);
    return (m_manifest->*enter)(relativeName);
}
