// SPDX-License-Identifier: MIT
#include "svgtree.h"

#include <QXmlStreamReader>

namespace {

bool isForeignName(const QString &qualifiedName)
{
    return qualifiedName.contains(QLatin1Char(':')) && !qualifiedName.startsWith(QLatin1String("xlink:"))
        && !qualifiedName.startsWith(QLatin1String("xml:"));
}

} // namespace

bool SvgTree::parse(const QByteArray &data)
{
    QXmlStreamReader reader(data);
    // Page files may use the "xlink:" prefix without declaring it.
    reader.setNamespaceProcessing(false);
    m_root = SvgNode();
    // Ancestors' child lists only grow while they are closed, so these
    // pointers stay valid.
    std::vector<SvgNode *> open{&m_root};
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (isForeignName(reader.qualifiedName().toString())) {
                reader.skipCurrentElement();
            } else if (int(open.size()) > maxDepth) {
                m_error = QStringLiteral("elements nested more than %1 deep").arg(maxDepth);
                return false;
            } else {
                SvgNode node;
                node.name = reader.qualifiedName().toString();
                node.attributes = reader.attributes();
                open.back()->children.push_back(std::move(node));
                open.push_back(&open.back()->children.back());
            }
            break;
        case QXmlStreamReader::EndElement:
            open.pop_back();
            break;
        case QXmlStreamReader::Characters:
            if (open.size() > 1) {
                SvgNode text;
                text.text = reader.text().toString();
                open.back()->children.push_back(std::move(text));
            }
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
    if (m_root.children.empty()) {
        m_error = QStringLiteral("no root element");
        return false;
    }
    return true;
}

const SvgNode &SvgTree::root() const
{
    return m_root.children.front();
}

QString SvgTree::error() const
{
    return m_error;
}
