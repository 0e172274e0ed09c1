#include "lessonoutput.h"

#include "filetree.h"
#include "lessonsource.h"
#include "lxdoc.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

LessonOutput::LessonOutput(const QString &target, bool force)
    : m_target(target)
    , m_force(force)
{
}

bool LessonOutput::isUsable(QString *reason) const
{
    const QFileInfo info(m_target);
    if (!LessonSource::isArchiveName(m_target))
        *reason = QStringLiteral("'%1' is not a lesson archive name (.lzn or .resitem)").arg(m_target);
    else if (info.exists() && (info.isDir() || !m_force))
        *reason = QStringLiteral("'%1' already exists (--force replaces a file)").arg(m_target);
    else if (!QFileInfo(info.absolutePath()).isDir())
        *reason = QStringLiteral("no such folder: '%1'").arg(info.absolutePath());
    else
        return true;
    return false;
}

bool LessonOutput::write(ILXDocument *document, QString *reason) const
{
    const QTemporaryDir temp(QDir::tempPath() + QStringLiteral("/lxdoc-XXXXXX"));
    if (!temp.isValid()) {
        *reason = QStringLiteral("cannot make a temporary folder");
        return false;
    }
    const QString packed = temp.filePath(QStringLiteral("lesson.lzn"));
    // A failed packing still reports success; the archive tells.
    if (!document->saveFile(packed, true) || QFileInfo(packed).size() == 0) {
        *reason = QStringLiteral("packing failed (is ziplib.so beside lxdoc?)");
        return false;
    }
    return isUsable(reason) && FileTree::publish(packed, m_target, reason);
}
