// SPDX-License-Identifier: MIT
#include "workingfolder.h"

#include "filetree.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

// The folder a host makes for a lesson it creates rather than opens.
const QString kNewLesson = QStringLiteral("newDocument");

QString archiveIn(const QDir &folder, const QString &baseName)
{
    for (const QString &suffix : {QStringLiteral(".lzn"), QStringLiteral(".resitem")}) {
        const QString path = folder.filePath(baseName + suffix);
        if (QFileInfo(path).isFile())
            return path;
    }
    return QString();
}

// Whether a process holds a file below prefix open; a host keeps its
// manifest open for as long as the lesson is.
bool holdsFileIn(const QString &process, const QString &prefix)
{
    QDirIterator fds(process + QStringLiteral("/fd"), QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    while (fds.hasNext()) {
        const QString target = QFileInfo(fds.next()).symLinkTarget();
        if (target.startsWith(prefix))
            return true;
    }
    return false;
}

} // namespace

QList<WorkingFolder> WorkingFolder::scan(const QString &root, const QString &archiveFolder)
{
    QList<WorkingFolder> found;
    const QDir dir(root);
    for (const QString &name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name)) {
        if (FileTree::isLessonFolder(dir.filePath(name)))
            found << WorkingFolder(dir.filePath(name), archiveFolder);
    }
    return found;
}

WorkingFolder::WorkingFolder(const QString &path, const QString &archiveFolder)
    : m_path(QFileInfo(path).absoluteFilePath())
{
    static const QRegularExpression page(QStringLiteral("^page\\d+\\.svg$"));
    for (const QString &file : FileTree::files(m_path)) {
        m_pageCount += page.match(file).hasMatch() ? 1 : 0;
        const QDateTime modified = QFileInfo(QDir(m_path).filePath(file)).lastModified();
        if (!m_newest.isValid() || modified > m_newest)
            m_newest = modified;
    }
    findArchive(archiveFolder);
}

void WorkingFolder::findArchive(const QString &archiveFolder)
{
    if (isNewLesson())
        return;
    const QDir folder(archiveFolder);
    const QString name = QFileInfo(m_path).fileName();
    m_archive = archiveIn(folder, name);
    // A second copy of the same lesson gets a counter after its name.
    static const QRegularExpression counter(QStringLiteral("\\d+$"));
    if (m_archive.isEmpty() && counter.match(name).hasMatch())
        m_archive = archiveIn(folder, QString(name).remove(counter));
}

QString WorkingFolder::path() const
{
    return m_path;
}

QDateTime WorkingFolder::newest() const
{
    return m_newest;
}

bool WorkingFolder::isNewerThanArchive() const
{
    return !m_archive.isEmpty() && m_newest > QFileInfo(m_archive).lastModified();
}

bool WorkingFolder::isNewLesson() const
{
    return QFileInfo(m_path).fileName() == kNewLesson;
}

qint64 WorkingFolder::holder() const
{
    const QString prefix = QFileInfo(m_path).canonicalFilePath() + QLatin1Char('/');
    const qint64 self = QCoreApplication::applicationPid();
    for (const QString &pid : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        const qint64 id = pid.toLongLong(&isNumber);
        if (isNumber && id != self && holdsFileIn(QStringLiteral("/proc/") + pid, prefix))
            return id;
    }
    return 0;
}

QString WorkingFolder::describe() const
{
    QString origin = QStringLiteral("lesson archive unknown");
    if (isNewLesson())
        origin = QStringLiteral("a new lesson, never saved");
    else if (!m_archive.isEmpty())
        origin = QStringLiteral("from %1, %2").arg(m_archive, isNewerThanArchive() ? QStringLiteral("newer than it")
                                                                                     : QStringLiteral("not newer than it"));
    const QString newest = m_newest.isValid() ? m_newest.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")) : QStringLiteral("-");
    QString line = QStringLiteral("%1  %2 page(s)  newest file %3  %4").arg(m_path).arg(m_pageCount).arg(newest, origin);
    const qint64 pid = holder();
    if (pid != 0)
        line += QStringLiteral("  (in use by process %1)").arg(pid);
    return line;
}
