// SPDX-License-Identifier: MIT
#include "lessonwriter.h"

#include "lessonsource.h"
#include "outputfile.h"
#include "privatetemp.h"

#include <QDir>
#include <QFileInfo>

LessonWriter::LessonWriter(const QString &archive, bool force)
    : m_archive(archive)
    , m_output(std::make_unique<OutputFile>(archive, OutputFile::Archive, force))
{
}

// Members go in reverse order: the document is released before the
// temporary folder it works in is removed.
LessonWriter::~LessonWriter() = default;

bool LessonWriter::startNew()
{
    if (!checkTarget())
        return false;
    // The working folder lies inside the temporary folder, and the document
    // deletes it on release.
    const QString folder = m_temp->filePath(QStringLiteral("lesson"));
    m_document.reset(get_interface());
    if (!m_document || !m_document->init(folder, false) || !m_document->newFile(folder, true))
        return fail(QStringLiteral("cannot start a new lesson"));
    return true;
}

bool LessonWriter::startFrom(const QString &lesson)
{
    if (!checkTarget())
        return false;
    m_source = std::make_unique<LessonSource>(lesson);
    if (!m_source->open()) {
        m_error = m_source->error();
        return false;
    }
    return true;
}

ILXDocument *LessonWriter::document() const
{
    return m_source ? m_source->document() : m_document.get();
}

QString LessonWriter::scratchFile(const QString &name) const
{
    return m_temp->filePath(name);
}

bool LessonWriter::finish()
{
    const QString packed = scratchFile(QFileInfo(m_archive).fileName());
    if (!document()->saveFile(packed, true))
        return fail(QStringLiteral("packing failed (is ziplib.so beside lxdoc?)"));
    // A failed packing still reports success; the archive tells.
    QString reason;
    if (!lxdoc_verify_archive(document(), packed, &reason))
        return fail(QStringLiteral("packing failed: ") + reason);
    if (m_output->publish(packed))
        return true;
    // Already one whole line naming the archive.
    m_error = m_output->error();
    return false;
}

QString LessonWriter::error() const
{
    return m_error;
}

bool LessonWriter::fail(const QString &reason)
{
    m_error = QStringLiteral("cannot create '%1': %2").arg(m_archive, reason);
    return false;
}

bool LessonWriter::checkTarget()
{
    if (!m_output->check()) {
        m_error = m_output->error();
        return false;
    }
    m_temp = std::make_unique<PrivateTemp>();
    return m_temp->isValid() || fail(QStringLiteral("cannot make a temporary folder"));
}
