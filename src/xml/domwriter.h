// SPDX-License-Identifier: MIT
#ifndef LXDOC_DOMWRITER_H
#define LXDOC_DOMWRITER_H

#include <QByteArray>
#include <QDomAttr>
#include <QDomNode>
#include <QSet>
#include <QStringList>
#include <QString>
#include <QVector>

// Serialises a DOM tree in the indented form of QDomNode::save, but with the
// attributes of every element sorted by name: QDom writes them in hash order,
// which changes from one process to the next, and a lesson saved twice must
// give the same bytes. Characters that XML 1.0 cannot carry are left out, so
// whatever the tree holds, the text always parses again.
class DomWriter {
public:
    // The text of an element's children, known beforehand: the writer puts
    // it in place of walking them. It must be what the walk would write.
    struct KnownChildren {
        QDomNode element;
        QString text;
    };

    static QString toString(const QDomNode &node, int indent, const QVector<KnownChildren> &known = {});
    static QByteArray toUtf8(const QDomNode &node, int indent, const QVector<KnownChildren> &known = {});
    // One node as the writer puts it at the given depth of a document.
    static QString nodeText(const QDomNode &node, int indent, int depth);

private:
    DomWriter(int indent, const QVector<KnownChildren> &known);

    void writeDocument(const QDomNode &document);
    void writeNode(const QDomNode &top, int depth);
    bool openNode(const QDomNode &node, int depth);
    bool openElement(const QDomElement &element, int depth);
    bool writeKnownChildren(const QDomElement &element, int depth);
    void closeElement(const QDomElement &element, int depth);
    void writeEndTag(const QString &name, const QDomElement &element);
    static bool isName(const QString &name, QString &lastGood);
    void writeAttributes(const QDomElement &element);
    void writeAttribute(const QDomAttr &attribute, const QDomElement &element, QSet<QString> *writtenNames,
                        QStringList &declaredPrefixes);
    void writeDocumentType(const QDomDocumentType &type);
    void writeDeclaration(const QString &data);
    void writeEntityValue(const QString &value);
    void writeIndent(int depth);
    void writeNewline();
    void writeRaw(QStringView text);
    void writeEscaped(QStringView text, bool quotes, bool attribute);
    void writeQuoted(const QString &text);

    const int m_indent;
    const QVector<KnownChildren> m_known;
    QString m_out;
    QString m_spaces;
    QVector<QDomAttr> m_attributes;
    QString m_elementName;
    QString m_attributeName;
    QString m_loneAttribute;
};

#endif
