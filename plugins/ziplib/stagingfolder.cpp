// SPDX-License-Identifier: MIT
#include "stagingfolder.h"

#include "fsutil.h"

#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

const int CreateAttempts = 64;
const QByteArray StagingPrefix(".unpack-");

bool renameNoReplace(int fromFd, const QByteArray &name, int toFd)
{
    if (::renameat2(fromFd, name.constData(), toFd, name.constData(), RENAME_NOREPLACE) == 0)
        return true;
    // Some file systems lack the flag; the name was checked to be free just before.
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    return ::renameat(fromFd, name.constData(), toFd, name.constData()) == 0;
}

} // namespace

StagingFolder::StagingFolder(int targetFd)
    : m_targetFd(targetFd)
{
}

StagingFolder::~StagingFolder()
{
    if (m_fd.isValid()) {
        m_fd.close();
        FsUtil::removeTree(m_targetFd, m_name);
    }
}

void StagingFolder::removeStale(int folderFd)
{
    FsUtil::removeStale(folderFd, StagingPrefix, QByteArray());
}

bool StagingFolder::create()
{
    removeStale(m_targetFd);
    for (int attempt = 0; attempt < CreateAttempts; ++attempt) {
        m_name = StagingPrefix + QByteArray::number(::getpid()) + '-'
            + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
        if (::mkdirat(m_targetFd, m_name.constData(), 0700) == 0) {
            m_fd = FsUtil::openDir(m_targetFd, m_name);
            if (m_fd.isValid())
                return true;
            ::unlinkat(m_targetFd, m_name.constData(), AT_REMOVEDIR);
            break;
        }
        if (errno != EEXIST)
            break;
    }
    return fail(FsUtil::errnoText(QStringLiteral("cannot write into the target folder"), errno));
}

int StagingFolder::fd() const
{
    return m_fd.get();
}

bool StagingFolder::moveIntoTarget()
{
    return merge(m_fd.get(), m_targetFd, QByteArray(), false) && merge(m_fd.get(), m_targetFd, QByteArray(), true);
}

bool StagingFolder::merge(int fromFd, int toFd, const QByteArray &prefix, bool move)
{
    QList<QByteArray> names;
    if (!FsUtil::listDir(fromFd, &names))
        return fail(FsUtil::errnoText(QStringLiteral("cannot list the unpacked files"), errno));
    for (const QByteArray &name : std::as_const(names)) {
        if (!mergeOne(fromFd, toFd, name, prefix + name, move))
            return false;
    }
    return true;
}

bool StagingFolder::mergeOne(int fromFd, int toFd, const QByteArray &name, const QByteArray &path, bool move)
{
    struct stat existing;
    if (::fstatat(toFd, name.constData(), &existing, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno != ENOENT)
            return fail(FsUtil::errnoText(QStringLiteral("cannot examine ") + FsUtil::nameText(path), errno));
        if (move && !renameNoReplace(fromFd, name, toFd))
            return fail(FsUtil::errnoText(QStringLiteral("cannot move ") + FsUtil::nameText(path), errno));
        return true;
    }
    struct stat unpacked;
    if (::fstatat(fromFd, name.constData(), &unpacked, AT_SYMLINK_NOFOLLOW) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot examine ") + FsUtil::nameText(path), errno));
    if (!S_ISDIR(existing.st_mode) || !S_ISDIR(unpacked.st_mode))
        return fail(QStringLiteral("the target folder already holds ") + FsUtil::nameText(path));
    const UniqueFd from = FsUtil::openDir(fromFd, name);
    const UniqueFd to = FsUtil::openDir(toFd, name);
    if (!from.isValid() || !to.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open folder ") + FsUtil::nameText(path), errno));
    return merge(from.get(), to.get(), path + '/', move);
}

QString StagingFolder::errorString() const
{
    return m_error;
}

bool StagingFolder::fail(const QString &what)
{
    m_error = what;
    return false;
}
