#include "xmlfilecheck.h"

#include "document/lessonpath.h"

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
    QXmlStreamReader reader(&file);
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
