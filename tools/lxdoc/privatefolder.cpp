// SPDX-License-Identifier: MIT
#include "privatefolder.h"

#include <QFile>
#include <QVector>

#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int openFolderAt(int parent, const char *name)
{
    return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

// Removes the files of the folder at fd and gives the name of one subfolder
// left in it, or an empty name when there is none.
QByteArray clearFiles(int fd)
{
    const int listing = ::dup(fd);
    DIR *const dir = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!dir) {
        if (listing >= 0)
            ::close(listing);
        return QByteArray();
    }
    QByteArray subfolder;
    while (const dirent *entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        struct stat info;
        if (::fstatat(fd, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (!S_ISDIR(info.st_mode))
            ::unlinkat(fd, entry->d_name, 0);
        else if (subfolder.isEmpty())
            subfolder = name;
    }
    ::closedir(dir);
    return subfolder;
}

} // namespace

PrivateFolder::PrivateFolder(const QString &pattern)
{
    QByteArray name = QFile::encodeName(pattern);
    if (::mkdtemp(name.data()))
        m_path = name;
}

PrivateFolder::~PrivateFolder()
{
    if (!m_path.isEmpty())
        removeTree(m_path);
}

bool PrivateFolder::isValid() const
{
    return !m_path.isEmpty();
}

QString PrivateFolder::path() const
{
    return QFile::decodeName(m_path);
}

QString PrivateFolder::filePath(const QString &name) const
{
    return path() + QLatin1Char('/') + name;
}

bool PrivateFolder::moveTo(const QString &target)
{
    // mkdtemp made the folder for this user alone; the result is the user's.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(m_path.constData(), 0777 & ~mask);
    if (::rename(m_path.constData(), QFile::encodeName(target).constData()) != 0)
        return false;
    m_path.clear();
    return true;
}

// Depth first with one descriptor open at a time: down into the first
// subfolder left, up through ".." once a folder is empty. Links are removed,
// never followed.
void PrivateFolder::removeTree(const QByteArray &path)
{
    int fd = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    QVector<QByteArray> names;
    while (fd >= 0) {
        const QByteArray subfolder = clearFiles(fd);
        if (!subfolder.isEmpty()) {
            const int child = openFolderAt(fd, subfolder.constData());
            // A folder that cannot be entered stays, and with it its parents.
            if (child < 0)
                break;
            ::close(fd);
            fd = child;
            names.append(subfolder);
            continue;
        }
        if (names.isEmpty())
            break;
        const int parent = openFolderAt(fd, "..");
        ::close(fd);
        fd = parent;
        if (fd >= 0 && ::unlinkat(fd, names.takeLast().constData(), AT_REMOVEDIR) != 0)
            break;
    }
    if (fd >= 0)
        ::close(fd);
    ::rmdir(path.constData());
}
