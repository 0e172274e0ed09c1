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

// No Qt and no allocation here: this also runs in the signal handler, where
// the interrupted code may be inside Qt or the allocator; a single-threaded
// process takes no allocator lock, so a handler that allocated could break
// the heap instead of waiting. Entries are read with getdents64 into a buffer
// on the stack, because opendir and readdir allocate.
const int kMaxDepth = 512;

bool removeBelow(int parent, const char *name, int depth);

bool isDots(const char *name)
{
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

int removeEntries(int fd, int depth)
{
    alignas(dirent64) char buffer[2048];
    int removed = 0;
    for (;;) {
        const ssize_t size = ::getdents64(fd, buffer, sizeof buffer);
        if (size <= 0)
            return removed;
        for (ssize_t at = 0; at < size;) {
            const auto *entry = reinterpret_cast<const dirent64 *>(buffer + at);
            at += entry->d_reclen;
            if (!isDots(entry->d_name) && removeBelow(fd, entry->d_name, depth + 1))
                ++removed;
        }
    }
}

bool removeBelow(int parent, const char *name, int depth)
{
    const int fd = depth < kMaxDepth ? ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC) : -1;
    if (fd < 0)
        return ::unlinkat(parent, name, 0) == 0;
    // A listing read while its entries go may skip some, so it is read
    // again until a pass removes nothing.
    while (removeEntries(fd, depth) > 0)
        ::lseek(fd, 0, SEEK_SET);
    ::close(fd);
    return ::unlinkat(parent, name, AT_REMOVEDIR) == 0;
}

// A tree deeper than the handler walks may stay; a later run removes it as a
// leftover.
void onSignal(int number)
{
    for (int slot = 0; slot < kSlots; ++slot) {
        if (g_used[slot].load())
            removeBelow(AT_FDCWD, g_paths[slot], 0);
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
