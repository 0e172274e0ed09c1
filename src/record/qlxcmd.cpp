// SPDX-License-Identifier: MIT
#include "record/qlxcmd.h"

#include "object/qlxobject.h"
#include "object/qpropertytransfer.h"
#include "xml/numbertext.h"
#include "xml/xmlstream.h"

namespace {

const QString kClassAttribute = QStringLiteral("class");
const QString kTransformAttribute = QStringLiteral("transform");
const QString kGraphicsIdAttribute = QStringLiteral("gid");

// Sizes are stored in the point-list syntax, width where x stands.
QList<QPointF> sizesAsPoints(const QList<QSizeF> &sizes)
{
    QList<QPointF> points;
    points.reserve(sizes.size());
    for (const QSizeF &size : sizes)
        points.append(QPointF(size.width(), size.height()));
    return points;
}

void appendPointsAsSizes(QList<QSizeF> &sizes, const QList<QPointF> &points)
{
    sizes.reserve(sizes.size() + points.size());
    for (const QPointF &point : points)
        sizes.append(QSizeF(point.x(), point.y()));
}

// Every lookup hands out a fresh handle; nothing found is a null pointer.
template <class Handle>
Handle *wrap(QXmlStream *stream, const QDomNode &node)
{
    return node.isNull() ? nullptr : new Handle(stream, node);
}

} // namespace

QLXCmd::QLXCmd(QXmlStream *stream, QDomNode node)
    : m_stream(stream), m_node(node)
{
}

// A handle owns nothing: letting it go never saves or touches the tree.
void QLXCmd::release()
{
    m_stream = nullptr;
    delete this;
}

bool QLXCmd::setClass(const QString &cls)
{
    return writeText(kClassAttribute, cls);
}

bool QLXCmd::getClass(QString &cls)
{
    return readText(kClassAttribute, cls);
}

// An empty list is refused so that an existing "gid" survives a host that
// records a command without graphics.
bool QLXCmd::setListGraphicsId(const QList<int> &ids)
{
    if (ids.isEmpty())
        return false;
    return writeText(kGraphicsIdAttribute, NumberText::intsText(ids));
}

// The ids are appended to what the caller passes in, unlike getIntList: hosts
// gather the ids of several commands into one list this way.
bool QLXCmd::getListGraphicsId(QList<int> &ids)
{
    QString text;
    if (!readText(kGraphicsIdAttribute, text))
        return false;
    NumberText::appendInts(ids, text);
    return true;
}

bool QLXCmd::setSizeFList(const QString &name, const QList<QSizeF> &sizes)
{
    if (sizes.isEmpty())
        return false;
    return writeText(name, NumberText::pointsText(sizesAsPoints(sizes)));
}

// A present attribute is success even when it yields nothing, whereas
// getPointFList judges by the list: both answers are what hosts rely on.
bool QLXCmd::getSizeFList(const QString &name, QList<QSizeF> &sizes)
{
    QString text;
    if (!readText(name, text))
        return false;
    QList<QPointF> points;
    NumberText::appendPoints(points, text);
    appendPointsAsSizes(sizes, points);
    return true;
}

bool QLXCmd::setPointFList(const QString &name, const QList<QPointF> &points)
{
    if (points.isEmpty())
        return false;
    return writeText(name, NumberText::pointsText(points));
}

bool QLXCmd::getPointFList(const QString &name, QList<QPointF> &points)
{
    QString text;
    if (!readText(name, text))
        return false;
    NumberText::appendPoints(points, text);
    return !points.isEmpty();
}

bool QLXCmd::getIntList(const QString &name, QList<int> &values)
{
    if (!m_stream || m_node.isNull() || name.isEmpty())
        return false;
    values.clear();
    QString text;
    if (!readText(name, text))
        return false;
    NumberText::appendInts(values, text);
    return true;
}

bool QLXCmd::setIntList(const QString &name, QList<int> &values)
{
    if (!m_stream || m_node.isNull() || name.isEmpty() || values.isEmpty())
        return false;
    return writeText(name, NumberText::intsText(values));
}

bool QLXCmd::setTransform(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV, QPointF centre)
{
    QString text;
    if (!QPropertyTransfer::transformQt2Svg(pos, scale, angle, flipH, flipV, centre, text))
        return false;
    return writeText(kTransformAttribute, text);
}

bool QLXCmd::getTransform(QPointF &pos, QSizeF &scale, float &angle, bool &flipH, bool &flipV)
{
    QString text;
    if (!readText(kTransformAttribute, text))
        return false;
    return QPropertyTransfer::transformSvg2Qt(text, pos, scale, angle, flipH, flipV);
}

bool QLXCmd::setLXCmdAttribute(const QString &name, int value)
{
    return !m_stream || m_stream->setNodeAttribute(m_node, name, value, true);
}

bool QLXCmd::setLXCmdAttribute(const QString &name, float value)
{
    return !m_stream || m_stream->setNodeAttribute(m_node, name, value, true);
}

bool QLXCmd::setLXCmdAttribute(const QString &name, const QString &value)
{
    return writeText(name, value);
}

bool QLXCmd::getLXCmdAttribute(const QString &name, int &value)
{
    value = 0;
    return m_stream && m_stream->getNodeAttribute(m_node, name, value, 0);
}

bool QLXCmd::getLXCmdAttribute(const QString &name, float &value)
{
    value = 0.0f;
    return m_stream && m_stream->getNodeAttribute(m_node, name, value, 0.0f);
}

bool QLXCmd::getLXCmdAttribute(const QString &name, QString &value)
{
    return readText(name, value);
}

ILXCmd *QLXCmd::newLXCmd(const QString &name)
{
    return wrap<QLXCmd>(m_stream, appendChild(name));
}

ILXCmd *QLXCmd::getFirstLXCmd()
{
    return wrap<QLXCmd>(m_stream, firstChild());
}

ILXCmd *QLXCmd::getNextLXCmd()
{
    return wrap<QLXCmd>(m_stream, nextChild());
}

bool QLXCmd::clearAllLXCmd()
{
    if (!m_stream || m_node.isNull())
        return false;
    return m_stream->removeAllChildNotes(m_node);
}

// getChildNodeByNodename stops at the first child that is not an element, so
// a fresh command answers with its empty text child whatever the name.
ILXCmd *QLXCmd::getLXCmd(const QString &name)
{
    if (!m_stream || m_node.isNull())
        return nullptr;
    return wrap<QLXCmd>(m_stream, m_stream->getChildNodeByNodename(m_node, name));
}

ILXObject *QLXCmd::newLXObject(const QString &name)
{
    return wrap<QLXObject>(m_stream, appendChild(name));
}

ILXObject *QLXCmd::getFirstLXObject()
{
    return wrap<QLXObject>(m_stream, firstChild());
}

ILXObject *QLXCmd::getNextLXObject()
{
    return wrap<QLXObject>(m_stream, nextChild());
}

// Commands and objects are children alike: clearing either kind clears both.
bool QLXCmd::clearAllLXObjects()
{
    return clearAllLXCmd();
}

QLXCmd::~QLXCmd() = default;

// The single-value accessors skip the stream and element checks the lists
// make: on a null element a set does nothing and still succeeds.
bool QLXCmd::writeText(const QString &name, const QString &text)
{
    return !m_stream || m_stream->setNodeAttribute(m_node, name, text, true);
}

bool QLXCmd::readText(const QString &name, QString &text)
{
    text = QStringLiteral("");
    return m_stream && m_stream->getNodeAttribute(m_node, name, text, QStringLiteral(""));
}

// Commands and objects walk the same children with one cursor; adding a child
// leaves the cursor where it stands.
QDomNode QLXCmd::appendChild(const QString &name)
{
    if (!m_stream || m_node.isNull())
        return QDomNode();
    return m_stream->newChildNode(m_node, name, QString());
}

QDomNode QLXCmd::firstChild()
{
    if (!m_stream || m_node.isNull())
        return QDomNode();
    m_current = m_stream->getFirstChildNode(m_node);
    return m_current;
}

QDomNode QLXCmd::nextChild()
{
    if (!m_stream || m_current.isNull())
        return QDomNode();
    m_current = m_stream->getNextNode(m_current);
    return m_current;
}
