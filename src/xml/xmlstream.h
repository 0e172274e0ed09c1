// SPDX-License-Identifier: MIT
#ifndef LXDOC_XMLSTREAM_H
#define LXDOC_XMLSTREAM_H

// Holds the class QXmlStream; the file is not called qxmlstream.h because Qt
// ships a header of that name.

#include "domwriter.h"

#include <QDomDocument>
#include <QDomNode>
#include <QFile>
#include <QString>

// One DOM tree tied to one file on disk. Every XML file and fragment of the
// library goes through it. Several results live in members, so one object
// serves one caller at a time and returned references last until the next
// call of the same operation.
class QXmlStream {
public:
    QXmlStream();
    ~QXmlStream();
    QXmlStream(const QXmlStream &) = delete;
    QXmlStream &operator=(const QXmlStream &) = delete;

    // Document and file
    bool isReady();
    bool createXmlFile(const QString &fileName, const QString &rootName);
    bool createXmlStream(const QString &rootName);
    bool loadFromXmlFile(const QString &fileName);
    bool loadFromXmlStream(const QString &text);
    bool reloadFile();
    bool setXmlFileName(const QString &fileName);
    QString &getXmlFileName();
    bool saveFile();
    // The same, with the text of some elements' children known beforehand.
    bool saveFile(const QVector<DomWriter::KnownChildren> &known);
    // A node as a save writes it at the given depth of the document.
    QString getFileText(const QDomNode &node, int depth) const;
    bool closeFile(bool save);
    QString &getXmlStream();
    QDomNode getRootNode();

    // Navigation
    QDomNode getFirstChildNode(const QDomNode &node);
    QDomNode getLastChildNode(const QDomNode &node);
    QDomNode getNextNode(const QDomNode &node);
    QDomNode getPreviousNode(const QDomNode &node);
    QString getNodeName(const QDomNode &node) const;
    bool isNullNode(const QDomNode &node);
    bool hadChildNodes(const QDomNode &node);
    int getChildNodesCount(const QDomNode &node);

    // Lookups by attribute
    QDomNode getFirstChildNode(const QDomNode &node, const QString &name, const QString &value);
    QDomNode getLastChildNode(const QDomNode &node, const QString &name, const QString &value);
    QDomNode getNextNode(const QDomNode &node, const QString &name, const QString &value);
    QDomNode getPreviousNode(const QDomNode &node, const QString &name, const QString &value);
    QDomNode getNextNode(const QDomNode &node, const QString &name1, const QString &value1,
                         const QString &name2, const QString &value2);
    QDomNode getPreviousNode(const QDomNode &node, const QString &name1, const QString &value1,
                             const QString &name2, const QString &value2);
    QDomNode getChildNodeByAttribute(const QDomNode &node, const QString &name, const QString &value);
    QDomNode getChildNodeByAttribute(const QDomNode &node, const QString &name, int value);
    QDomNode getChildNodeByAttribute(const QDomNode &node, const QString &name, float value);

    // Lookups by name and tree position
    QDomNode getChildNode(const QDomNode &node, const QString &tagName);
    QDomNode getChildNodeByNodename(const QDomNode &node, const QString &name);
    bool isRootNode(const QDomNode &node);
    QDomNode getParentNode(const QDomNode &node);

    // Editing
    QDomNode newChildNode(QDomNode parent, const QString &tagName, const QString &value);
    bool removeNode(const QDomNode &node);
    bool removeChildNode(QDomNode parent, const QString &name);
    bool removeAllChildNotes(QDomNode parent);

    // Attributes
    bool getNodeAttribute(const QDomNode &node, const QString &name, int &result, int def);
    bool getNodeAttribute(const QDomNode &node, const QString &name, float &result, float def);
    bool getNodeAttribute(const QDomNode &node, const QString &name, QString &result, const QString &def);
    bool setNodeAttribute(const QDomNode &node, const QString &name, int value, bool flag);
    bool setNodeAttribute(const QDomNode &node, const QString &name, float value, bool flag);
    bool setNodeAttribute(const QDomNode &node, const QString &name, const QString &value, bool flag);
    bool newNodeAttribute(const QDomNode &node, const QString &name, const QString &value);
    bool removeAttribute(const QDomNode &node, const QString &name);
    bool isNodeAttributeExist(const QDomNode &node, const QString &name);
    QString getNodeAttributeName(const QDomNode &node, int index);

    // Element values (the text of the element's first child)
    bool setNodeValue(const QDomNode &node, const QString &text);
    bool setNodeValue(const QDomNode &node, int value);
    bool setNodeValue(const QDomNode &node, float value);
    bool hadNodeValue(const QDomNode &node);
    bool removeNodeValue(const QDomNode &node);
    int getNodeIntValue(const QDomNode &node);
    float getNodeFloatValue(const QDomNode &node);
    QString getNodeStringValue(const QDomNode &node);

private:
    template <typename Text>
    bool setContentWithin(const Text &text);

    QFile m_file;
    QString m_fileName;
    bool m_ready = false;
    QDomDocument m_document;
    QString m_text;
    QDomNode m_root;
    QDomNode m_parent;
    QDomNode m_cursor;
    QString m_spare;
    QString m_attributeName;
};

#endif
