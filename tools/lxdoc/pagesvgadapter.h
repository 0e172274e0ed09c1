// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PAGESVGADAPTER_H
#define LXDOC_TOOL_PAGESVGADAPTER_H

#include <QByteArray>
#include <QHash>
#include <QSize>
#include <QSizeF>
#include <QString>

class QXmlStreamAttributes;
class QXmlStreamWriter;
struct SvgNode;

// Turns a lesson page file into plain SVG that QtSvg and a browser both draw
// as the board shows it. The board's own encodings become plain SVG: the
// page's "grid" element becomes lines at its place in the stacking order,
// "100%" frames are resolved against the enclosing object's "bound" (or the
// page) and drawn behind their text, caps "found" and "flat" become round
// and butt, line-end anchors become filled shapes, and pictures named inside
// the lesson are embedded, placed by their preserveAspectRatio. What a page
// must not do (see MarkupFilter) is left out.
class PageSvgAdapter {
public:
    PageSvgAdapter(const QString &lessonFolder, QSize pageSize);

    bool compose(const QByteArray &page, QByteArray *svg);
    QString error() const;

private:
    // Style an element hands down to its children, and the box "100%" means.
    struct Inherited {
        QSizeF box;
        QHash<QString, QString> stroke;
    };

    void writeRoot(const SvgNode &root, QXmlStreamWriter &writer) const;
    void writeChildren(const SvgNode &parent, QXmlStreamWriter &writer, const Inherited &inherited, bool isPage) const;
    void writeNode(const SvgNode &node, QXmlStreamWriter &writer, const Inherited &inherited, bool isPage) const;
    void writeElement(const SvgNode &element, QXmlStreamWriter &writer, const Inherited &inherited) const;
    void writeAttributes(const SvgNode &element, QXmlStreamWriter &writer, const QSizeF &box) const;
    void writeImage(const SvgNode &image, QXmlStreamWriter &writer, const QSizeF &box) const;
    void writeMarkers(const SvgNode &element, QXmlStreamWriter &writer, const Inherited &style) const;
    void writeGrid(const QXmlStreamAttributes &attributes, QXmlStreamWriter &writer) const;
    void writeGridLines(QXmlStreamWriter &writer, bool vertical, double step) const;
    Inherited inheritedBy(const SvgNode &element, const Inherited &parent) const;

    QString m_folder;
    QSize m_size;
    QString m_error;
};

#endif
