// SPDX-License-Identifier: MIT
#include "atomicfile.h"

#include "fsutil.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const int CreateAttempts = 64;
}

AtomicFile::AtomicFile(const QString &target)
{
    // Replacing a symbolic link would cut the user's link; the file it
    // points to is the one to renew.
    const QFileInfo info(target);
    const QString resolved = info.isSymLink() ? info.canonicalFilePath() : QString();
    m_target = QFile::encodeName(resolved.isEmpty() ? target : resolved);
}

AtomicFile::~AtomicFile()
{
    discard();
}

bool AtomicFile::open()
{
    if (m_target.isEmpty() || m_target.endsWith('/'))
        return fail(QStringLiteral("no archive file name given"));
    struct stat info;
    m_hasTarget = ::stat(m_target.constData(), &info) == 0;
    if (m_hasTarget && !S_ISREG(info.st_mode))
        return fail(QStringLiteral("the archive path is not a regular file"));
    if (!createTemporary())
        return false;
    if (m_hasTarget) {
        m_targetDevice = info.st_dev;
        m_targetInode = info.st_ino;
        // The renewed archive keeps the permissions the user gave the old one.
        ::fchmod(m_fd.get(), info.st_mode & 07777);
    }
    struct stat own;
    if (::fstat(m_fd.get(), &own) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot examine the temporary file"), errno));
    m_device = own.st_dev;
    m_inode = own.st_ino;
    return true;
}

bool AtomicFile::createTemporary()
{
    const int slash = m_target.lastIndexOf('/');
    const QByteArray folder = m_target.left(slash + 1);
    const QByteArray base = m_target.mid(slash + 1);
    // The owner's pid in the name lets a later save tell a temporary of a
    // killed save from one still being written.
    const QByteArray prefix = '.' + base + '.';
    const UniqueFd folderFd(::open(folder.isEmpty() ? "." : folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folderFd.isValid())
        FsUtil::removeStale(folderFd.get(), prefix, ".tmp");
    for (int attempt = 0; attempt < CreateAttempts; ++attempt) {
        const QByteArray tag = QByteArray::number(QRandomGenerator::global()->generate64(), 36);
        m_temporary = folder + prefix + QByteArray::number(::getpid()) + '.' + tag + ".tmp";
        // Read back once written, to check it as the unpacker will.
        m_fd = UniqueFd(::open(m_temporary.constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
        if (m_fd.isValid())
            return true;
        if (errno != EEXIST)
            break;
    }
    const int error = errno;
    m_temporary.clear();
    return fail(FsUtil::errnoText(QStringLiteral("cannot create a temporary file beside the archive"), error));
}

int AtomicFile::fd() const
{
    return m_fd.get();
}

bool AtomicFile::isOwnFile(dev_t device, ino_t inode) const
{
    return (device == m_device && inode == m_inode)
        || (m_hasTarget && device == m_targetDevice && inode == m_targetInode);
}

bool AtomicFile::commit()
{
    if (!m_fd.isValid())
        return fail(QStringLiteral("the archive was not opened"));
    if (::fsync(m_fd.get()) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot flush the archive to disk"), errno));
    if (!m_fd.close())
        return fail(FsUtil::errnoText(QStringLiteral("cannot close the archive"), errno));
    if (::rename(m_temporary.constData(), m_target.constData()) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot replace the archive"), errno));
    m_temporary.clear();
    const int slash = m_target.lastIndexOf('/');
    const QByteArray folder = slash < 0 ? QByteArray(".") : m_target.left(qMax(slash, 1));
    // Without this the rename itself may be lost in a crash.
    if (!FsUtil::syncDir(folder))
        return fail(FsUtil::errnoText(QStringLiteral("cannot flush the archive's folder to disk"), errno));
    return true;
}

QString AtomicFile::errorString() const
{
    return m_error;
}

bool AtomicFile::fail(const QString &what)
{
    m_error = what;
    discard();
    return false;
}

void AtomicFile::discard()
{
    m_fd.close();
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
    m_temporary.clear();
}
