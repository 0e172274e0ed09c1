// SPDX-License-Identifier: MIT
#include "document/lessonpath.h"

#include "xml/regularfile.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A scheme is letters, digits, "+", "-" and "." before the first colon; a
// drive letter ("C:") is caught by the same test.
bool hasScheme(const QString &name)
{
    // By hand rather than with a regular expression: this runs for every
    // name a lesson lists, and the expression engine's compiled code is
    // opaque to the memory checker the tests run under.
    const auto isLetter = [](QChar c) {
        return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'));
    };
    if (name.isEmpty() || !isLetter(name.front()))
        return false;
    for (const QChar c : name) {
        if (c == QLatin1Char(':'))
            return true;
        const bool schemeChar = isLetter(c) || (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('+')
            || c == QLatin1Char('-') || c == QLatin1Char('.');
        if (!schemeChar)
            return false;
    }
    return false;
}

class Descriptor {
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int get() const { return m_fd; }
    int release() { const int fd = m_fd; m_fd = -1; return fd; }
    void reset(int fd = -1)
    {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = fd;
    }

private:
    int m_fd;
};

// With O_DIRECTORY | O_NOFOLLOW a link in the middle of a name fails as
// ENOTDIR, which a plain file in the middle gives too.
bool hasLinkStep(const QString &folder, const QString &relative)
{
    QString path = folder;
    for (const QString &step : relative.split(QLatin1Char('/'))) {
        path += QLatin1Char('/') + step;
        if (QFileInfo(path).isSymLink())
            return true;
    }
    return false;
}

} // namespace

QString LessonPath::clean(const QString &name)
{
    if (name.isEmpty() || name.startsWith(QLatin1Char('/')) || name.contains(QChar(0))
        || name.contains(QLatin1Char('\\')) || hasScheme(name))
        return QString();
    QStringList kept;
    for (const QString &step : name.split(QLatin1Char('/'))) {
        if (step.isEmpty() || step == QLatin1String("."))
            continue;
        if (step == QLatin1String("..")) {
            if (kept.isEmpty())
                return QString();
            kept.removeLast();
            continue;
        }
        kept.append(step);
    }
    return kept.join(QLatin1Char('/'));
}

QString LessonPath::inside(const QString &folder, const QString &name)
{
    const QString relative = clean(name);
    return relative.isEmpty() ? QString() : folder + QLatin1Char('/') + relative;
}

int LessonPath::openRegular(const QString &folder, const QString &name)
{
    const QString relative = clean(name);
    if (relative.isEmpty()) {
        errno = EACCES;
        return -1;
    }
    Descriptor dir(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() < 0)
        return -1;
    const QStringList steps = relative.split(QLatin1Char('/'));
    for (int i = 0; i + 1 < steps.size(); ++i) {
        const int next = ::openat(dir.get(), QFile::encodeName(steps.at(i)).constData(),
                                  O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (next < 0)
            return -1;
        dir.reset(next);
    }
    return RegularFile::openAt(dir.get(), QFile::encodeName(steps.last()), false);
}

int LessonPath::openRegularPath(const QString &path)
{
    return RegularFile::openAt(AT_FDCWD, QFile::encodeName(path), false);
}

bool LessonPath::open(QFile *file, const QString &folder, const QString &name)
{
    const int fd = openRegular(folder, name);
    if (fd < 0)
        return false;
    if (!file->open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return false;
    }
    return true;
}

LessonPath::Verdict LessonPath::inspect(const QString &folder, const QString &name)
{
    if (clean(name).isEmpty())
        return Outside;
    const int fd = openRegular(folder, name);
    if (fd >= 0) {
        ::close(fd);
        return Regular;
    }
    const int error = errno;
    switch (error) {
    case ELOOP:
        return Link;
    case ENOTDIR:
        return hasLinkStep(folder, clean(name)) ? Link : Missing;
    case EISDIR:
    case EINVAL:
    case ENXIO:
        return NotRegular;
    default:
        return Missing;
    }
}

QString LessonPath::verdictText(Verdict verdict)
{
    switch (verdict) {
    case Regular:
        return QStringLiteral("present");
    case Missing:
        return QStringLiteral("missing");
    case Outside:
        return QStringLiteral("points outside the lesson");
    case Link:
        return QStringLiteral("is a symbolic link (not followed)");
    case NotRegular:
        return QStringLiteral("is not a regular file");
    }
    return QString();
}
