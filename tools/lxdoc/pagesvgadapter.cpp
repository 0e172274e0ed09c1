#include "pagesvgadapter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

const QString kSvgNamespace = QStringLiteral("http://www.w3.org/2000/svg");
const QString kXlinkNamespace = QStringLiteral("http://www.w3.org/1999/xlink");
// More lines than this is a grid measure gone wrong, not a grid.
const int kMaxGridLines = 2000;

bool isForeignName(const QString &qualifiedName)
{
    return qualifiedName.contains(QLatin1Char(':')) && !qualifiedName.startsWith(QLatin1String("xlink:"))
        && !qualifiedName.startsWith(QLatin1String("xml:"));
}

bool isNamespaceDeclaration(const QString &qualifiedName)
{
    return qualifiedName == QLatin1String("xmlns") || qualifiedName.startsWith(QLatin1String("xmlns:"));
}

QString imageType(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        return QStringLiteral("image/jpeg");
    if (suffix == QLatin1String("svg"))
        return QStringLiteral("image/svg+xml");
    return QStringLiteral("image/") + suffix;
}

} // namespace

PageSvgAdapter::PageSvgAdapter(const QString &lessonFolder, QSize pageSize)
    : m_folder(lessonFolder)
    , m_size(pageSize)
{
}

bool PageSvgAdapter::compose(const QByteArray &page, QByteArray *svg)
{
    QXmlStreamReader reader(page);
    // Page files may use the "xlink:" prefix without declaring it.
    reader.setNamespaceProcessing(false);
    QXmlStreamWriter writer(svg);
    writer.writeStartDocument();
    m_boxes = {QSizeF(m_size)};
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (isForeignName(reader.qualifiedName().toString())) {
                reader.skipCurrentElement();
            } else if (m_boxes.size() == 2 && reader.name() == QLatin1String("grid")) {
                writeGrid(reader.attributes(), writer);
                reader.skipCurrentElement();
            } else {
                writeElement(reader, writer, m_boxes.size() == 1);
            }
            break;
        case QXmlStreamReader::EndElement:
            writer.writeEndElement();
            m_boxes.removeLast();
            break;
        case QXmlStreamReader::Characters:
            writer.writeCharacters(reader.text().toString());
            break;
        default:
            break;
        }
    }
    if (reader.hasError()) {
        m_error = QStringLiteral("line %1, column %2: %3")
                      .arg(reader.lineNumber()).arg(reader.columnNumber()).arg(reader.errorString());
        return false;
    }
    writer.writeEndDocument();
    return true;
}

QString PageSvgAdapter::error() const
{
    return m_error;
}

void PageSvgAdapter::writeElement(const QXmlStreamReader &reader, QXmlStreamWriter &writer, bool isRoot)
{
    const QString name = reader.name().toString();
    const QXmlStreamAttributes attributes = reader.attributes();
    writer.writeStartElement(name);
    if (isRoot)
        writeRootAttributes(attributes, writer);
    else
        writeAttributes(name, attributes, writer);
    m_boxes.append(boxOf(attributes));
}

void PageSvgAdapter::writeRootAttributes(const QXmlStreamAttributes &attributes, QXmlStreamWriter &writer) const
{
    writer.writeAttribute(QStringLiteral("xmlns"), kSvgNamespace);
    writer.writeAttribute(QStringLiteral("xmlns:xlink"), kXlinkNamespace);
    writer.writeAttribute(QStringLiteral("width"), QString::number(m_size.width()));
    writer.writeAttribute(QStringLiteral("height"), QString::number(m_size.height()));
    const QString viewBox = attributes.value(QLatin1String("viewBox")).toString();
    writer.writeAttribute(QStringLiteral("viewBox"), viewBox.isEmpty()
        ? QStringLiteral("0 0 %1 %2").arg(m_size.width()).arg(m_size.height()) : viewBox);
    for (const QXmlStreamAttribute &attribute : attributes) {
        const QString name = attribute.qualifiedName().toString();
        if (name != QLatin1String("width") && name != QLatin1String("height") && name != QLatin1String("viewBox")
            && !isNamespaceDeclaration(name) && !isForeignName(name))
            writer.writeAttribute(name, attribute.value().toString());
    }
}

void PageSvgAdapter::writeAttributes(const QString &element, const QXmlStreamAttributes &attributes,
                                     QXmlStreamWriter &writer) const
{
    const QSizeF box = m_boxes.last();
    for (const QXmlStreamAttribute &attribute : attributes) {
        const QString name = attribute.qualifiedName().toString();
        QString value = attribute.value().toString();
        if (isNamespaceDeclaration(name) || isForeignName(name))
            continue;
        if (element == QLatin1String("rect") && name == QLatin1String("width"))
            value = resolvePercent(value, box.width());
        else if (element == QLatin1String("rect") && name == QLatin1String("height"))
            value = resolvePercent(value, box.height());
        else if (element == QLatin1String("image") && (name == QLatin1String("xlink:href") || name == QLatin1String("href")))
            value = embedImage(value);
        writer.writeAttribute(name, value);
    }
}

void PageSvgAdapter::writeGrid(const QXmlStreamAttributes &attributes, QXmlStreamWriter &writer) const
{
    writer.writeStartElement(QStringLiteral("g"));
    writer.writeAttribute(QStringLiteral("class"), QStringLiteral("grid"));
    writer.writeAttribute(QStringLiteral("fill"), QStringLiteral("none"));
    const QString copied[][2] = {{QStringLiteral("stroke"), QStringLiteral("stroke")},
                                 {QStringLiteral("stroke-width"), QStringLiteral("stroke-width")},
                                 {QStringLiteral("stroke-dasharray"), QStringLiteral("stroke-dasharray")},
                                 {QStringLiteral("opacity"), QStringLiteral("stroke-opacity")}};
    for (const auto &pair : copied) {
        const QString value = attributes.value(pair[0]).toString();
        if (!value.isEmpty())
            writer.writeAttribute(pair[1], value);
    }
    writeGridLines(writer, true, attributes.value(QLatin1String("grid-horizontal")).toDouble());
    writeGridLines(writer, false, attributes.value(QLatin1String("grid-vertical")).toDouble());
    writer.writeEndElement();
}

void PageSvgAdapter::writeGridLines(QXmlStreamWriter &writer, bool vertical, double step) const
{
    const double length = vertical ? m_size.height() : m_size.width();
    const double extent = vertical ? m_size.width() : m_size.height();
    if (step <= 0 || extent / step > kMaxGridLines)
        return;
    for (double at = step; at < extent; at += step) {
        writer.writeEmptyElement(QStringLiteral("line"));
        writer.writeAttribute(QStringLiteral("x1"), QString::number(vertical ? at : 0));
        writer.writeAttribute(QStringLiteral("y1"), QString::number(vertical ? 0 : at));
        writer.writeAttribute(QStringLiteral("x2"), QString::number(vertical ? at : length));
        writer.writeAttribute(QStringLiteral("y2"), QString::number(vertical ? length : at));
    }
}

QString PageSvgAdapter::resolvePercent(const QString &value, double reference) const
{
    if (!value.endsWith(QLatin1Char('%')))
        return value;
    bool ok = false;
    const double percent = value.chopped(1).toDouble(&ok);
    return ok ? QString::number(percent * reference / 100.0) : value;
}

QString PageSvgAdapter::embedImage(const QString &href) const
{
    if (href.startsWith(QLatin1String("data:")) || href.contains(QLatin1String("://")))
        return href;
    const QString path = QDir(m_folder).absoluteFilePath(href);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return href;
    return QStringLiteral("data:%1;base64,%2").arg(imageType(path), QString::fromLatin1(file.readAll().toBase64()));
}

QSizeF PageSvgAdapter::boxOf(const QXmlStreamAttributes &attributes) const
{
    // "bound" is "left,top, width,height" in the lesson's own notation.
    const QStringList parts = attributes.value(QLatin1String("bound")).toString()
                                  .split(QRegularExpression(QStringLiteral("[,\\s]+")), Qt::SkipEmptyParts);
    if (parts.size() != 4)
        return m_boxes.last();
    return QSizeF(parts.at(2).toDouble(), parts.at(3).toDouble());
}
