// SPDX-License-Identifier: MIT
#include "archiveverifier.h"

#include "document/archivelimits.h"
#include "fsutil.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>
#include <zlib.h>

namespace {

const size_t ReadBufferSize = size_t(1) << 20;

} // namespace

bool ArchiveVerifier::verify(const QString &archive, const QString &folder)
{
    m_folder.clear();
    m_error.clear();
    if (!readArchive(archive))
        return false;
    const UniqueFd root(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!root.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open the working folder"), errno));
    return readFolder(root.get(), QByteArray()) && compare();
}

QString ArchiveVerifier::errorString() const
{
    return m_error;
}

bool ArchiveVerifier::readArchive(const QString &archive)
{
    if (archive.isEmpty())
        return fail(QStringLiteral("no archive named"));
    const UniqueFd file(::open(QFile::encodeName(archive).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open the archive"), errno));
    if (::fstat(file.get(), &m_archive) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot examine the archive"), errno));
    if (!S_ISREG(m_archive.st_mode))
        return fail(QStringLiteral("the archive is not a file"));
    if (!m_directory.read(file.get(), m_archive.st_size, ArchiveLimits::current()))
        return fail(QStringLiteral("not a complete archive: ") + m_directory.errorString());
    return true;
}

bool ArchiveVerifier::readFolder(int dirFd, const QByteArray &prefix)
{
    QList<QByteArray> names;
    if (!FsUtil::listDir(dirFd, &names))
        return fail(FsUtil::errnoText(QStringLiteral("cannot list folder ") + FsUtil::nameText(prefix), errno));
    for (const QByteArray &name : std::as_const(names)) {
        if (!readChild(dirFd, name, prefix))
            return false;
    }
    return true;
}

// The same choice of entries as the packer makes.
bool ArchiveVerifier::readChild(int dirFd, const QByteArray &name, const QByteArray &prefix)
{
    const QByteArray path = prefix + name;
    struct stat info;
    if (::fstatat(dirFd, name.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return fail(FsUtil::errnoText(QStringLiteral("cannot examine ") + FsUtil::nameText(path), errno));
    const bool isArchive = info.st_dev == m_archive.st_dev && info.st_ino == m_archive.st_ino;
    if (!(S_ISDIR(info.st_mode) || S_ISREG(info.st_mode)) || isArchive)
        return true;
    if (S_ISREG(info.st_mode))
        return readFile(dirFd, name, path);
    const UniqueFd sub = FsUtil::openDir(dirFd, name);
    if (!sub.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot open folder ") + FsUtil::nameText(path), errno));
    m_folder[path + '/'] = Entry();
    return readFolder(sub.get(), path + '/');
}

bool ArchiveVerifier::readFile(int dirFd, const QByteArray &name, const QByteArray &path)
{
    const UniqueFd file(::openat(dirFd, name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isValid())
        return fail(FsUtil::errnoText(QStringLiteral("cannot read ") + FsUtil::nameText(path), errno));
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    std::vector<char> buffer(ReadBufferSize);
    Entry entry;
    entry.crc = quint32(crc32(0L, Z_NULL, 0));
    for (;;) {
        const ssize_t got = ::read(file.get(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return fail(FsUtil::errnoText(QStringLiteral("cannot read ") + FsUtil::nameText(path), errno));
        if (got == 0)
            break;
        entry.crc = quint32(crc32(entry.crc, reinterpret_cast<const Bytef *>(buffer.data()), uInt(got)));
        entry.size += quint64(got);
    }
    m_folder[path] = entry;
    return true;
}

bool ArchiveVerifier::compare()
{
    for (const CentralDirectory::Record &record : m_directory.records()) {
        const auto found = m_folder.find(record.name);
        if (found == m_folder.end())
            return fail(QStringLiteral("the archive holds %1, which the working folder does not")
                            .arg(FsUtil::nameText(record.name)));
        if (!record.name.endsWith('/') && (found->second.size != record.size || found->second.crc != record.crc))
            return fail(QStringLiteral("%1 differs from the working folder").arg(FsUtil::nameText(record.name)));
        m_folder.erase(found);
    }
    if (!m_folder.empty())
        return fail(QStringLiteral("the archive lacks %1").arg(FsUtil::nameText(m_folder.begin()->first)));
    return true;
}

bool ArchiveVerifier::fail(const QString &what)
{
    m_error = what;
    return false;
}
