// SPDX-License-Identifier: MIT
#include "archiveverifier.h"

#include "document/archivelimits.h"
#include "fsutil.h"
#include "packedtree.h"

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
    return readFolder(root.get()) && compare();
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

bool ArchiveVerifier::readFolder(int rootFd)
{
    const struct stat archive = m_archive;
    PackedTree tree(
        [archive](const struct stat &info) { return info.st_dev == archive.st_dev && info.st_ino == archive.st_ino; },
        [this](const QByteArray &path, const struct stat &) {
            m_folder[path] = Entry();
            return true;
        },
        [this](int dirFd, const QByteArray &name, const QByteArray &path) { return readFile(dirFd, name, path); });
    if (tree.walk(rootFd))
        return true;
    return m_error.isEmpty() ? fail(tree.errorString()) : false;
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
