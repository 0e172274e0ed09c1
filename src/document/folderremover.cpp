// SPDX-License-Identifier: MIT
#include "document/folderremover.h"

#include <QList>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int openFolderAt(int parent, const char *name)
{
    return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

bool sameFolder(int fd, const struct stat &expected)
{
    struct stat info;
    return ::fstat(fd, &info) == 0 && info.st_dev == expected.st_dev && info.st_ino == expected.st_ino;
}

// One folder on the way down: what is left to visit in it, and who it is,
// so that climbing back through ".." can tell whether the tree was moved.
struct Level {
    QList<QByteArray> pending;
    struct stat identity;
};

} // namespace

FolderRemover::FolderRemover(Scope scope)
    : m_scope(scope)
{
}

// Depth first, with one descriptor open at a time: down into each subfolder
// in turn, back up through ".." once it is empty. Each folder is listed
// once, so a wide folder costs no more than a deep one.
void FolderRemover::remove(const QByteArray &path, bool removeSelf) const
{
    const int follow = m_scope == Everything ? O_NOFOLLOW : 0;
    int fd = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | follow);
    QList<Level> levels;
    QList<QByteArray> names;
    if (fd >= 0)
        levels.append(Level{clearFiles(fd), {}});
    while (fd >= 0) {
        Level &level = levels.last();
        if (!level.pending.isEmpty()) {
            const QByteArray name = level.pending.takeFirst();
            const int child = openFolderAt(fd, name.constData());
            // A folder that cannot be entered stays, and with it its parents.
            if (child < 0 || ::fstat(fd, &level.identity) != 0) {
                if (child >= 0)
                    ::close(child);
                continue;
            }
            ::close(fd);
            fd = child;
            names.append(name);
            levels.append(Level{clearFiles(fd), {}});
            continue;
        }
        if (names.isEmpty())
            break;
        levels.removeLast();
        const int parent = openFolderAt(fd, "..");
        ::close(fd);
        fd = parent;
        // Moved away meanwhile: ".." is no longer the folder come from.
        if (fd >= 0 && !sameFolder(fd, levels.last().identity)) {
            ::close(fd);
            fd = -1;
        }
        if (fd >= 0)
            ::unlinkat(fd, names.takeLast().constData(), AT_REMOVEDIR);
    }
    if (fd >= 0)
        ::close(fd);
    if (removeSelf)
        ::rmdir(path.constData());
}

bool FolderRemover::isRemovable(const char *name, mode_t mode) const
{
    if (m_scope == Everything)
        return true;
    return name[0] != '.' && (S_ISREG(mode) || S_ISDIR(mode));
}

// Removes the files of the folder at fd that may go and gives the names of
// its subfolders that may.
QList<QByteArray> FolderRemover::clearFiles(int fd) const
{
    QList<QByteArray> subfolders;
    const int listing = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    DIR *const dir = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!dir) {
        if (listing >= 0)
            ::close(listing);
        return subfolders;
    }
    while (const dirent *entry = ::readdir(dir)) {
        const char *const name = entry->d_name;
        if (qstrcmp(name, ".") == 0 || qstrcmp(name, "..") == 0)
            continue;
        struct stat info;
        if (::fstatat(fd, name, &info, AT_SYMLINK_NOFOLLOW) != 0 || !isRemovable(name, info.st_mode))
            continue;
        if (S_ISDIR(info.st_mode))
            subfolders.append(QByteArray(name));
        else
            ::unlinkat(fd, name, 0);
    }
    ::closedir(dir);
    return subfolders;
}
