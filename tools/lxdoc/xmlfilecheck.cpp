// SPDX-License-Identifier: MIT
#include "xmlfilecheck.h"

#include "document/lessonpath.h"
#include "xml/xmllimits.h"

#include <QFile>
#include <QXmlStreamReader>

QString XmlFileCheck::problem(const QString &folder, const QString &name, const QString &root)
{
    const LessonPath::Verdict verdict = LessonPath::inspect(folder, name);
    if (verdict != LessonPath::Regular)
        return LessonPath::verdictText(verdict);
    QFile file;
    if (!LessonPath::open(&file, folder, name))
        return QStringLiteral("cannot be read (%1)").arg(file.errorString());
    const QByteArray data = file.readAll();
    // Measured first, as the library does before it builds a tree.
    switch (XmlLimits::check(data)) {
    case XmlLimits::TooDeep:
        return QStringLiteral("nested deeper than %1 levels, so the library refuses it").arg(XmlLimits::maxDepth());
    case XmlLimits::TooManyAttributes:
        return QStringLiteral("an element has more than %1 attributes, so the library refuses it").arg(XmlLimits::maxAttributes());
    default:
        break;
    }
    QXmlStreamReader reader(data);
    reader.setNamespaceProcessing(false);
    const bool hasRoot = reader.readNextStartElement();
    const QString rootName = reader.name().toString();
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError())
        return QStringLiteral("not well-formed XML (line %1, column %2: %3)")
            .arg(reader.lineNumber()).arg(reader.columnNumber()).arg(reader.errorString());
    if (!hasRoot || rootName != root)
        return QStringLiteral("the root element is <%1>, expected <%2>").arg(rootName, root);
    return QString();
}
