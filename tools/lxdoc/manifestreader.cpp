// SPDX-License-Identifier: MIT
#include "manifestreader.h"

#include "document/lessonpath.h"
#include "xml/readlimits.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <cerrno>
#include <cstring>

bool ManifestReader::load(const QString &path)
{
    m_lists.clear();
    m_rootName.clear();
    QFile file;
    const QFileInfo info(path);
    if (!LessonPath::open(&file, info.path(), info.fileName())) {
        m_error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    QXmlStreamReader reader(&file);
    reader.setNamespaceProcessing(false);
    if (reader.readNextStartElement()) {
        m_rootName = reader.name().toString();
        while (reader.readNextStartElement()) {
            if (reader.name() == QLatin1String("resource"))
                readResource(reader);
            else
                reader.skipCurrentElement();
        }
    }
    if (reader.hasError()) {
        m_error = QStringLiteral("line %1, column %2: %3")
                      .arg(reader.lineNumber()).arg(reader.columnNumber()).arg(reader.errorString());
        return false;
    }
    return true;
}

void ManifestReader::readResource(QXmlStreamReader &reader)
{
    const QString identifier = reader.attributes().value(QLatin1String("identifier")).toString();
    QStringList &entries = m_lists[identifier];
    while (reader.readNextStartElement()) {
        // Entries without a name are skipped, as the library skips them.
        const QString href = reader.attributes().value(QLatin1String("href")).toString();
        if (!href.isEmpty())
            entries << href;
        reader.skipCurrentElement();
    }
}

QString ManifestReader::error() const
{
    return m_error;
}

QString ManifestReader::rootName() const
{
    return m_rootName;
}

bool ManifestReader::hasList(const QString &identifier) const
{
    return m_lists.contains(identifier);
}

QStringList ManifestReader::list(const QString &identifier) const
{
    return m_lists.value(identifier);
}

QString ManifestReader::pageLimitProblem() const
{
    const int limit = ReadLimits::current().maxPages;
    const int pages = int(list(QStringLiteral("pages")).size());
    const int records = int(list(QStringLiteral("records")).size());
    if (pages > limit)
        return QStringLiteral("lists %1 pages, more than the limit of %2").arg(pages).arg(limit);
    if (records > limit)
        return QStringLiteral("lists %1 recordings, more than the limit of %2 pages").arg(records).arg(limit);
    return QString();
}

QStringList ManifestReader::resourceKinds()
{
    return {QStringLiteral("images"), QStringLiteral("sounds"), QStringLiteral("avmedia"),
            QStringLiteral("flashes"), QStringLiteral("fillblocks"), QStringLiteral("attachments")};
}

QString ManifestReader::folderOfKind(const QString &kind)
{
    return kind == QLatin1String("flashes") ? QStringLiteral("flash") : kind;
}
