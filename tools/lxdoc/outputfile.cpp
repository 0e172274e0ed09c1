// SPDX-License-Identifier: MIT
#include "outputfile.h"

#include "console.h"
#include "privatetemp.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Deep enough for any sane chain of links, short of a loop.
const int kMaxLinks = 40;

mode_t newFileMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

bool writeAll(int fd, const char *data, qint64 size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

} // namespace

OutputFile::OutputFile(const QString &target, Kind kind, bool force)
    : m_target(target)
    , m_kind(kind)
    , m_force(force)
{
}

bool OutputFile::isStandardOutput() const
{
    return m_target == QLatin1String("-");
}

bool OutputFile::check()
{
    if (isStandardOutput())
        return !::isatty(STDOUT_FILENO) || fail(QStringLiteral("the standard output is a terminal"));
    const QString target = resolvedTarget();
    const QFileInfo info(target);
    if (info.exists() && !info.isFile())
        return fail(info.isDir() ? QStringLiteral("it is a folder") : QStringLiteral("it is not a regular file"));
    if (info.exists() && !m_force && !isOfKind(target))
        return fail(m_kind == Archive ? QStringLiteral("it exists and is not a lesson archive (--force replaces it)")
                                      : QStringLiteral("it exists and is not a PDF file (--force replaces it)"));
    // The new file is made beside the target and renamed over it.
    return ::access(QFile::encodeName(info.absolutePath()).constData(), W_OK | X_OK) == 0 || failWithErrno();
}

bool OutputFile::publish(const QString &finished)
{
    if (isStandardOutput())
        return writeStandardOutput(finished);
    return check() && writeCopy(finished, resolvedTarget());
}

QString OutputFile::error() const
{
    return m_error;
}

QString OutputFile::resolvedTarget() const
{
    QFileInfo info(m_target);
    for (int depth = 0; depth < kMaxLinks && info.isSymLink(); ++depth)
        info = QFileInfo(info.symLinkTarget());
    return info.absoluteFilePath();
}

bool OutputFile::isOfKind(const QString &path) const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(5);
    if (m_kind == Pdf)
        return head == "%PDF-";
    // A ZIP file starts with a local entry, or is an empty archive's end record.
    return head.startsWith("PK\x03\x04") || head.startsWith("PK\x05\x06");
}

bool OutputFile::writeCopy(const QString &finished, const QString &target)
{
    removeLeftoverPartials(target);
    // A name of our own: "x.lzn.part" may be somebody else's file. The
    // process id lets a later run know the file of a killed one.
    QByteArray partial = QFile::encodeName(target) + ".lxdoc-" + QByteArray::number(::getpid()) + "-XXXXXX.part";
    const int fd = ::mkstemps(partial.data(), 5);
    if (fd < 0)
        return failWithErrno();
    struct stat old;
    const bool replacing = ::stat(QFile::encodeName(target).constData(), &old) == 0;
    bool written = copyInto(finished, fd) && ::fchmod(fd, replacing ? old.st_mode & 07777 : newFileMode()) == 0;
    // Keeping the owner needs privileges most users lack: then the file is the user's.
    if (written && replacing && ::fchown(fd, old.st_uid, old.st_gid) != 0)
        (void)::fchown(fd, uid_t(-1), old.st_gid);
    written = written && ::fsync(fd) == 0;
    const int error = errno;
    ::close(fd);
    // rename(2) swaps the old file for the new one in a single step.
    if (written && ::rename(partial.constData(), QFile::encodeName(target).constData()) == 0)
        return true;
    const int reason = written ? errno : error;
    ::unlink(partial.constData());
    errno = reason;
    return failWithErrno();
}

void OutputFile::removeLeftoverPartials(const QString &target)
{
    const QFileInfo info(target);
    const QRegularExpression name(QStringLiteral("^%1\\.lxdoc-(\\d+)-[A-Za-z0-9]{6}\\.part$")
                                      .arg(QRegularExpression::escape(info.fileName())));
    const QDir folder = info.dir();
    const QStringList entries = folder.entryList({info.fileName() + QStringLiteral(".lxdoc-*.part")}, QDir::Files | QDir::Hidden);
    for (const QString &entry : entries) {
        const QRegularExpressionMatch match = name.match(entry);
        const QByteArray path = QFile::encodeName(folder.filePath(entry));
        if (match.hasMatch() && PrivateTemp::isLeftover(path, match.captured(1).toLongLong(), false))
            ::unlink(path.constData());
    }
}

bool OutputFile::copyInto(const QString &finished, int fd)
{
    QFile source(finished);
    if (!source.open(QIODevice::ReadOnly))
        return false;
    QByteArray chunk;
    while (!(chunk = source.read(1 << 20)).isEmpty()) {
        if (!writeAll(fd, chunk.constData(), chunk.size()))
            return false;
    }
    return source.error() == QFileDevice::NoError;
}

bool OutputFile::writeStandardOutput(const QString &finished)
{
    std::fflush(stdout);
    if (copyInto(finished, STDOUT_FILENO))
        return true;
    return failWithErrno();
}

bool OutputFile::fail(const QString &reason)
{
    m_error = isStandardOutput() ? QStringLiteral("cannot write the standard output: %1").arg(reason)
                                 : QStringLiteral("cannot write '%1': %2").arg(m_target, reason);
    return false;
}

bool OutputFile::failWithErrno()
{
    return fail(Console::systemReason(errno));
}
