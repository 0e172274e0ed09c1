// SPDX-License-Identifier: MIT
#include "packedtree.h"

#include "fsutil.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

PackedTree::PackedTree(SkipTest skip, FolderVisit folder, FileVisit file)
    : m_skip(std::move(skip))
    , m_folder(std::move(folder))
    , m_file(std::move(file))
{
}

bool PackedTree::walk(int rootFd)
{
    m_error.clear();
    return walkFolder(rootFd, QByteArray());
}

QString PackedTree::errorString() const
{
    return m_error;
}

bool PackedTree::walkFolder(int dirFd, const QByteArray &prefix)
{
    QList<QByteArray> names;
    if (!FsUtil::listDir(dirFd, &names))
        return fail(FsUtil::errnoText(QStringLiteral("cannot list folder ") + FsUtil::nameText(prefix), errno));
    for (const QByteArray &name : std::as_const(names)) {
        if (!walkChild(dirFd, name, prefix))
            return false;
    }
    return true;
}

bool PackedTree::walkChild(int dirFd, const QByteArray &name, const QByteArray &prefix)
{
    const QByteArray path = prefix + name;
    struct stat info;
    if (::fstatat(dirFd, name.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot examine ") + FsUtil::nameText(path), errno));
    if (!(S_ISDIR(info.st_mode) || S_ISREG(info.st_mode)) || (m_skip && m_skip(info)))
        return true;
    if (!FsUtil::isValidUtf8(path))
        return fail(QStringLiteral("file name is not valid UTF-8: ") + FsUtil::nameText(path));
    if (S_ISREG(info.st_mode))
        return m_file(dirFd, name, path);
    const UniqueFd sub = FsUtil::openDir(dirFd, name);
    if (!sub.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open folder ") + FsUtil::nameText(path), errno));
    return m_folder(path + '/', info) && walkFolder(sub.get(), path + '/');
}

bool PackedTree::fail(const QString &what)
{
    m_error = what;
    return false;
}
