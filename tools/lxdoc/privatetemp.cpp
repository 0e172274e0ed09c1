// SPDX-License-Identifier: MIT
#include "privatetemp.h"

#include "console.h"
#include "document/folderremover.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Signal handlers may only read plain memory, so the folders of the run are
// kept as fixed C strings; a slot is in use while its first byte is set.
const int kSlots = 8;
const int kPathSize = 4096;
char g_paths[kSlots][kPathSize];
std::atomic<bool> g_used[kSlots];

// No Qt here: this also runs in the signal handler, where the interrupted
// code may be inside Qt or the allocator with a lock held.
void removeBelow(int parent, const char *name)
{
    const int fd = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd >= 0) {
        if (DIR *dir = ::fdopendir(fd)) {
            while (const dirent *entry = ::readdir(dir)) {
                if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
                    removeBelow(::dirfd(dir), entry->d_name);
            }
            ::closedir(dir);
        } else {
            ::close(fd);
        }
        ::unlinkat(parent, name, AT_REMOVEDIR);
        return;
    }
    ::unlinkat(parent, name, 0);
}

// A signal handler may not allocate, so it removes with the plain
// recursive walk; a tree deeper than the descriptor limit may stay, and a
// later run removes it as a leftover.
void onSignal(int number)
{
    for (int slot = 0; slot < kSlots; ++slot) {
        if (g_used[slot].load())
            removeBelow(AT_FDCWD, g_paths[slot]);
    }
    // The shell's convention: 128 plus the signal number.
    ::_exit(128 + number);
}

int claimSlot(const QByteArray &path)
{
    if (path.size() >= kPathSize)
        return -1;
    for (int slot = 0; slot < kSlots; ++slot) {
        if (g_used[slot].load())
            continue;
        std::memcpy(g_paths[slot], path.constData(), size_t(path.size()) + 1);
        g_used[slot].store(true);
        return slot;
    }
    return -1;
}

bool processIsGone(qint64 pid)
{
    return pid > 0 && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH;
}

} // namespace

PrivateTemp::PrivateTemp()
{
    QByteArray pattern = QFile::encodeName(QDir::tempPath() + QStringLiteral("/lxdoc-%1-XXXXXX").arg(::getpid()));
    if (!::mkdtemp(pattern.data())) {
        m_error = Console::systemReason(errno);
        return;
    }
    m_path = QFile::decodeName(pattern);
    m_slot = claimSlot(pattern);
}

PrivateTemp::~PrivateTemp()
{
    if (m_path.isEmpty())
        return;
    if (m_slot >= 0)
        g_used[m_slot].store(false);
    // Also trees deeper than a path can reach, which a lesson may hold.
    FolderRemover(FolderRemover::Everything).remove(QFile::encodeName(m_path), true);
}

bool PrivateTemp::isValid() const
{
    return !m_path.isEmpty();
}

QString PrivateTemp::path() const
{
    return m_path;
}

QString PrivateTemp::filePath(const QString &name) const
{
    return m_path + QLatin1Char('/') + name;
}

QString PrivateTemp::errorString() const
{
    return m_error;
}

void PrivateTemp::installSignalHandlers()
{
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction old;
        // A signal ignored by whoever started us stays ignored.
        if (::sigaction(number, nullptr, &old) == 0 && old.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}

bool PrivateTemp::isLeftover(const QByteArray &path, qint64 pid, bool folder)
{
    struct stat status;
    // Only this user's own, never one reached through a link.
    return ::lstat(path.constData(), &status) == 0 && (folder ? S_ISDIR(status.st_mode) : S_ISREG(status.st_mode))
        && status.st_uid == ::getuid() && processIsGone(pid);
}

void PrivateTemp::removeLeftovers()
{
    static const QRegularExpression name(QStringLiteral("^lxdoc-(\\d+)-[A-Za-z0-9]{6}$"));
    const QDir temp(QDir::tempPath());
    const QStringList entries = temp.entryList({QStringLiteral("lxdoc-*")}, QDir::Dirs | QDir::NoSymLinks | QDir::Hidden);
    for (const QString &entry : entries) {
        const QRegularExpressionMatch match = name.match(entry);
        const QByteArray path = QFile::encodeName(temp.filePath(entry));
        if (match.hasMatch() && isLeftover(path, match.captured(1).toLongLong(), true))
            FolderRemover(FolderRemover::Everything).remove(path, true);
    }
}
