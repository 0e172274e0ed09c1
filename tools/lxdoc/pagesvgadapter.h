#ifndef LXDOC_TOOL_PAGESVGADAPTER_H
#define LXDOC_TOOL_PAGESVGADAPTER_H

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QSizeF>
#include <QString>

class QXmlStreamAttributes;
class QXmlStreamReader;
class QXmlStreamWriter;

// Turns a lesson page file into SVG that QtSvg draws as the board shows it:
// the page's "grid" element becomes lines at its place in the stacking
// order, "100%" frames are resolved against the enclosing object's "bound"
// (or the page), pictures named relative to the lesson are embedded, and the
// root gets the namespaces, size and viewBox QtSvg needs.
class PageSvgAdapter {
public:
    PageSvgAdapter(const QString &lessonFolder, QSize pageSize);

    bool compose(const QByteArray &page, QByteArray *svg);
    QString error() const;

private:
    void writeElement(const QXmlStreamReader &reader, QXmlStreamWriter &writer, bool isRoot);
    void writeRootAttributes(const QXmlStreamAttributes &attributes, QXmlStreamWriter &writer) const;
    void writeAttributes(const QString &element, const QXmlStreamAttributes &attributes,
                         QXmlStreamWriter &writer) const;
    void writeGrid(const QXmlStreamAttributes &attributes, QXmlStreamWriter &writer) const;
    void writeGridLines(QXmlStreamWriter &writer, bool vertical, double step) const;
    QString resolvePercent(const QString &value, double reference) const;
    QString embedImage(const QString &href) const;
    QSizeF boxOf(const QXmlStreamAttributes &attributes) const;

    QString m_folder;
    QSize m_size;
    QList<QSizeF> m_boxes;
    QString m_error;
};

#endif
