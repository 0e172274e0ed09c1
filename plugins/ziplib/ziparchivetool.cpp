// SPDX-License-Identifier: MIT
#include "ziparchivetool.h"

#include "atomicfile.h"
#include "centraldirectory.h"
#include "document/archivelimits.h"
#include "document/savelock.h"
#include "document/temproot.h"
#include "fsutil.h"
#include "stagingfolder.h"
#include "zipextractor.h"
#include "zipwriter.h"

#include <QFile>

#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace {

UniqueFd openFolder(const QString &folder)
{
    return UniqueFd(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// A killed unpack leaves its staging folder inside a working folder that is
// then given up (the next open of the same archive picks a new folder), so
// every working folder directly under a temp root is looked into: one level,
// never deeper, and never the folders around a target elsewhere, which may
// be anything of the user's. The target itself is cleared by the staging.
void removeStaleUnderTempRoots()
{
    for (const QString &root : TempRoot::places()) {
        const UniqueFd parent = openFolder(root);
        QList<QByteArray> names;
        if (!parent.isValid() || !FsUtil::listDir(parent.get(), &names))
            continue;
        for (const QByteArray &name : std::as_const(names)) {
            const UniqueFd child = FsUtil::openDir(parent.get(), name);
            if (child.isValid())
                StagingFolder::removeStale(child.get());
        }
    }
}

} // namespace

int ZipArchiveTool::toolVersion() const
{
    return 1;
}

QString ZipArchiveTool::lastError() const
{
    return m_lastError;
}

// Packing writes the whole archive in packFolder(); there is nothing to
// prepare or to finish, and neither may fail the packing.
bool ZipArchiveTool::finishArchive()
{
    return true;
}

bool ZipArchiveTool::beginArchive(QString, bool)
{
    return true;
}

bool ZipArchiveTool::packFolder(QString folder, QString archive)
{
    return guarded(QStringLiteral("packing failed: "), [&] { return pack(folder, archive); });
}

bool ZipArchiveTool::unpackArchive(QString archive, QString folder)
{
    return guarded(QStringLiteral("unpacking failed: "), [&] { return unpack(archive, folder); });
}

void ZipArchiveTool::releaseTool()
{
    delete this;
}

template<typename Step>
bool ZipArchiveTool::guarded(const QString &context, Step step)
{
    // No exception may cross the plug-in's C boundary into the host.
    m_lastError.clear();
    bool ok = false;
    try {
        ok = step();
    } catch (const std::exception &error) {
        ok = fail(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        ok = fail(QStringLiteral("unexpected internal error"));
    }
    if (!ok)
        m_lastError.prepend(context);
    return ok;
}

bool ZipArchiveTool::pack(const QString &folder, const QString &archive)
{
    const UniqueFd source = openFolder(folder);
    if (!source.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open the folder to pack"), errno));
    AtomicFile file(archive);
    if (!file.open())
        return fail(file.errorString());
    const LXArchiveLimits limits = ArchiveLimits::current();
    ZipWriter writer(limits.ratioCheckedFrom);
    // A save holds its lock file beside the archive while it packs; an
    // archive kept inside the folder it packs must not take that file along.
    struct stat lock;
    const bool locked = ::stat(QFile::encodeName(SaveLock::lockFileName(archive)).constData(), &lock) == 0;
    const auto ownFile = [&file, &lock, locked](const struct stat &info) {
        return file.isOwnFile(info.st_dev, info.st_ino)
            || (locked && info.st_dev == lock.st_dev && info.st_ino == lock.st_ino);
    };
    if (!writer.open(file.fd()) || !writer.addTree(source.get(), ownFile) || !writer.close())
        return fail(writer.errorString());
    // What is packed here must unpack again: an archive the unpacker would
    // refuse (too many entries, too compressible) never replaces the old one.
    struct stat written;
    CentralDirectory directory;
    if (::fstat(file.fd(), &written) != 0 || !directory.read(file.fd(), written.st_size, limits))
        return fail(QStringLiteral("the lesson could not be opened again once packed: ") + directory.errorString());
    return file.commit() || fail(file.errorString());
}

bool ZipArchiveTool::unpack(const QString &archive, const QString &folder)
{
    ZipExtractor extractor(archive, ArchiveLimits::current());
    if (!extractor.scan())
        return fail(extractor.errorString());
    const UniqueFd target = openFolder(folder);
    if (!target.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open the target folder"), errno));
    removeStaleUnderTempRoots();
    StagingFolder staging(target.get());
    if (!staging.create())
        return fail(staging.errorString());
    if (!extractor.extractInto(staging.fd()))
        return fail(extractor.errorString());
    if (!staging.moveIntoTarget())
        return fail(staging.errorString());
    extractor.restoreFolderTimes(target.get());
    return true;
}

bool ZipArchiveTool::fail(const QString &what)
{
    m_lastError = what;
    return false;
}
