// SPDX-License-Identifier: MIT
#include "lessonoutput.h"

#include "lessonsource.h"
#include "lxdoc.h"
#include "outputfile.h"
#include "privatetemp.h"

#include <QFileInfo>

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
    const PrivateTemp temp;
    if (!temp.isValid()) {
        *reason = QStringLiteral("cannot make a temporary folder");
        return false;
    }
    const QString packed = temp.filePath(QStringLiteral("lesson.lzn"));
    if (!document->saveFile(packed, true)) {
        *reason = QStringLiteral("packing failed (is ziplib.so beside lxdoc?)");
        return false;
    }
    // A failed packing still reports success; the archive tells.
    QString why;
    if (!lxdoc_verify_archive(document, packed, &why)) {
        *reason = QStringLiteral("packing failed: ") + why;
        return false;
    }
    if (!isUsable(reason))
        return false;
    // isUsable has already asked for --force before any existing file.
    OutputFile output(m_target, OutputFile::Archive, true);
    if (output.publish(packed))
        return true;
    *reason = output.error();
    return false;
}
