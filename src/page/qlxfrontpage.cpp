// SPDX-License-Identifier: MIT
#include "page/qlxfrontpage.h"

#include "object/qlxobject.h"
#include "object/qpropertytransfer.h"
#include "xml/numbertext.h"
#include "xml/xmlname.h"
#include "xml/xmlstream.h"

namespace {

const QString kSvgRoot = QStringLiteral("svg");
const QString kClass = QStringLiteral("class");
const QString kForeground = QStringLiteral("foreground");
const QString kGroup = QStringLiteral("g");
const QString kRect = QStringLiteral("rect");
const QString kTitle = QStringLiteral("title");
const QString kGrid = QStringLiteral("grid");
const QString kXLinkNamespace = QStringLiteral("http://www.w3.org/1999/xlink");

// Texts of fewer characters cannot hold a classed element and are refused
// without parsing.
constexpr int kMinSvgTextLength = 10;

} // namespace

QLXFrontPage::QLXFrontPage() = default;

QLXFrontPage::QLXFrontPage(const QString &path)
{
    if (!loadPageFile(path))
        createPageFile(path);
    // Unlike the default constructor followed by loadPageFile, a page built
    // from a path always starts with the flag clear: objects of a page without
    // a foreground group then go to the root.
    m_foreground = false;
}

// The stream is deliberately not deleted here: only release() and closeFile()
// end it, and the host always goes through release().
QLXFrontPage::~QLXFrontPage() = default;

// ---------------------------------------------------------------- file

bool QLXFrontPage::createPageFile(const QString &path)
{
    startNewStream();
    if (!m_xml->createXmlFile(path, kSvgRoot))
        return dropStream();
    m_root = m_xml->getRootNode();
    if (m_root.isNull())
        return dropStream();
    m_xml->saveFile();
    return true;
}

bool QLXFrontPage::loadPageFile(const QString &path)
{
    startNewStream();
    if (!m_xml->loadFromXmlFile(path))
        return dropStream();
    m_root = m_xml->getRootNode();
    if (m_root.isNull())
        return dropStream();
    m_layer = findForegroundGroup();
    // Inverted on purpose: a page that has its group already uses it as the
    // layer, a page without one makes it on the first object operation.
    m_foreground = m_layer.isNull();
    return true;
}

bool QLXFrontPage::saveFile()
{
    return m_xml != nullptr && m_xml->saveFile();
}

void QLXFrontPage::release()
{
    closeFile(false);
    delete this;
}

void QLXFrontPage::closeFile(bool save)
{
    if (m_xml == nullptr)
        return;
    m_xml->closeFile(save);
    delete m_xml;
    m_xml = nullptr;
}

QXmlStream *QLXFrontPage::getXmlStream()
{
    return m_xml;
}

void QLXFrontPage::startNewStream()
{
    closeFile(false);
    // Handles into the tree of a previous file must not leak into the new one.
    m_root.clear();
    m_layer.clear();
    m_background.clear();
    m_cursor.clear();
    m_xml = new QXmlStream();
}

bool QLXFrontPage::dropStream()
{
    closeFile(false);
    m_root.clear();
    return false;
}

bool QLXFrontPage::isOpen() const
{
    return m_xml != nullptr && !m_root.isNull();
}

// ---------------------------------------------------------------- object layer

QDomNode QLXFrontPage::findForegroundGroup()
{
    if (m_xml == nullptr)
        return QDomNode();
    return m_xml->getChildNodeByAttribute(m_root, kClass, kForeground);
}

QDomNode QLXFrontPage::makeForegroundGroup()
{
    if (m_xml == nullptr)
        return QDomNode();
    const QDomNode group = m_xml->newChildNode(m_root, kGroup, QString());
    if (!group.isNull())
        m_xml->setNodeAttribute(group, kClass, kForeground, true);
    return group;
}

QDomNode QLXFrontPage::resolveLayer(bool mayCreate)
{
    if (!m_layer.isNull())
        return m_layer;
    if (!m_foreground) {
        m_layer = m_root;
        return m_layer;
    }
    m_layer = findForegroundGroup();
    if (m_layer.isNull() && mayCreate)
        m_layer = makeForegroundGroup();
    return m_layer;
}

bool QLXFrontPage::setForeground(bool on)
{
    m_layer = findForegroundGroup();
    if (on) {
        if (m_layer.isNull())
            m_layer = makeForegroundGroup();
        if (m_layer.isNull())
            return false;
        m_foreground = true;
        return true;
    }
    // Removal goes by element name, so the first "g" child goes, whichever it is.
    if (!m_layer.isNull())
        m_xml->removeChildNode(m_root, kGroup);
    m_layer.clear();
    m_foreground = false;
    return true;
}

bool QLXFrontPage::isFrontPage()
{
    return !m_layer.isNull();
}

// ---------------------------------------------------------------- page attributes

bool QLXFrontPage::getPageFormat(PageFormat &format)
{
    if (!isOpen())
        return false;
    QString text;
    if (!m_xml->getNodeAttribute(m_root, QStringLiteral("format"), text, QString()))
        return false;
    return QPropertyTransfer::pageFormat2FormatID(text, format);
}

bool QLXFrontPage::setPageFormat(PageFormat format)
{
    if (!isOpen())
        return false;
    QString text;
    // The codec never fails today (an unknown format becomes a single NUL
    // character); the fallback stays for a codec that one day might.
    if (!QPropertyTransfer::formatID2PageFormat(format, text))
        text = QStringLiteral("lzn");
    return m_xml->setNodeAttribute(m_root, QStringLiteral("format"), text, true);
}

bool QLXFrontPage::getPageSize(QSize &size)
{
    if (!isOpen())
        return false;
    int width = 0;
    int height = 0;
    m_xml->getNodeAttribute(m_root, QStringLiteral("width"), width, 1024);
    m_xml->getNodeAttribute(m_root, QStringLiteral("height"), height, 768);
    size = QSize(width, height);
    return true;
}

bool QLXFrontPage::setPageSize(QSize size)
{
    if (!isOpen())
        return false;
    m_xml->setNodeAttribute(m_root, QStringLiteral("width"), size.width(), true);
    m_xml->setNodeAttribute(m_root, QStringLiteral("height"), size.height(), true);
    return true;
}

bool QLXFrontPage::getPageMargin(int &left, int &top, int &right, int &bottom)
{
    if (!isOpen())
        return false;
    m_xml->getNodeAttribute(m_root, QStringLiteral("left-margin"), left, 0);
    m_xml->getNodeAttribute(m_root, QStringLiteral("top-margin"), top, 0);
    m_xml->getNodeAttribute(m_root, QStringLiteral("right-margin"), right, 0);
    m_xml->getNodeAttribute(m_root, QStringLiteral("bottom-margin"), bottom, 0);
    return true;
}

bool QLXFrontPage::setPageMargin(int left, int top, int right, int bottom)
{
    if (!isOpen())
        return false;
    m_xml->setNodeAttribute(m_root, QStringLiteral("left-margin"), left, true);
    m_xml->setNodeAttribute(m_root, QStringLiteral("top-margin"), top, true);
    m_xml->setNodeAttribute(m_root, QStringLiteral("right-margin"), right, true);
    m_xml->setNodeAttribute(m_root, QStringLiteral("bottom-margin"), bottom, true);
    return true;
}

bool QLXFrontPage::getMaxGraphicId(int &id)
{
    return getLXPageAttribute(QStringLiteral("max-gid"), id);
}

bool QLXFrontPage::setMaxGraphicId(int id)
{
    return setLXPageAttribute(QStringLiteral("max-gid"), id);
}

bool QLXFrontPage::getLXPageAttribute(const QString &name, int &value)
{
    return isOpen() && m_xml->getNodeAttribute(m_root, name, value, 0);
}

bool QLXFrontPage::getLXPageAttribute(const QString &name, float &value)
{
    return isOpen() && m_xml->getNodeAttribute(m_root, name, value, 0.0f);
}

bool QLXFrontPage::getLXPageAttribute(const QString &name, QString &value)
{
    return isOpen() && m_xml->getNodeAttribute(m_root, name, value, QStringLiteral(""));
}

bool QLXFrontPage::setLXPageAttribute(const QString &name, int value)
{
    return isOpen() && m_xml->setNodeAttribute(m_root, name, value, true);
}

bool QLXFrontPage::setLXPageAttribute(const QString &name, float value)
{
    return isOpen() && m_xml->setNodeAttribute(m_root, name, value, true);
}

bool QLXFrontPage::setLXPageAttribute(const QString &name, const QString &value)
{
    return isOpen() && m_xml->setNodeAttribute(m_root, name, value, true);
}

// ---------------------------------------------------------------- title

bool QLXFrontPage::getPageTitle(QString &title)
{
    if (!isOpen())
        return false;
    const QDomNode node = m_xml->getChildNode(m_root, kTitle);
    if (node.isNull())
        return false;
    title = m_xml->getNodeStringValue(node);
    return !title.isEmpty();
}

bool QLXFrontPage::setPageTitle(const QString &title)
{
    if (!isOpen())
        return false;
    const QDomNode node = m_xml->getChildNode(m_root, kTitle);
    if (!node.isNull())
        return m_xml->setNodeValue(node, title);
    m_xml->newChildNode(m_root, kTitle, title);
    return true;
}

// ---------------------------------------------------------------- background

bool QLXFrontPage::getPageBgColor(QColor &color)
{
    if (!isOpen())
        return false;
    const QDomNode rect = m_xml->getChildNode(m_root, kRect);
    if (rect.isNull())
        return false;
    QString fill;
    m_xml->getNodeAttribute(rect, QStringLiteral("fill"), fill, QStringLiteral("#ffffff"));
    color = QColor(fill);
    return true;
}

bool QLXFrontPage::setPageBgColor(QColor color)
{
    if (!isOpen())
        return false;
    // The page keeps no alpha for its background: only the colour name is stored.
    const QString fill = color.name();
    QDomNode rect = m_xml->getChildNode(m_root, kRect);
    if (!rect.isNull())
        return m_xml->setNodeAttribute(rect, QStringLiteral("fill"), fill, true);
    rect = m_xml->newChildNode(m_root, kRect, QString());
    if (rect.isNull())
        return false;
    writeFullPageRect(rect);
    m_xml->setNodeAttribute(rect, QStringLiteral("fill"), fill, true);
    return true;
}

bool QLXFrontPage::getPageBgTempl(QString &path, QSize &size)
{
    if (!isOpen())
        return false;
    const QDomNode rect = m_xml->getChildNode(m_root, kRect);
    if (rect.isNull())
        return false;
    int width = 0;
    int height = 0;
    m_xml->getNodeAttribute(rect, QStringLiteral("image-width"), width, 0);
    m_xml->getNodeAttribute(rect, QStringLiteral("image-height"), height, 0);
    size = QSize(width, height);
    m_xml->getNodeAttribute(rect, QStringLiteral("xlink:href"), path, QStringLiteral(""));
    return !path.isEmpty();
}

bool QLXFrontPage::setPageBgTempl(const QString &path, QSize &size)
{
    if (!isOpen())
        return false;
    QDomNode rect = m_xml->getChildNode(m_root, kRect);
    const bool made = rect.isNull();
    if (made) {
        rect = m_xml->newChildNode(m_root, kRect, QString());
        if (rect.isNull())
            return false;
    }
    if (!size.isNull()) {
        m_xml->setNodeAttribute(rect, QStringLiteral("image-width"), size.width(), true);
        m_xml->setNodeAttribute(rect, QStringLiteral("image-height"), size.height(), true);
    }
    if (made)
        writeFullPageRect(rect);
    m_xml->setNodeAttribute(rect, QStringLiteral("xmlns:xlink"), kXLinkNamespace, true);
    const bool written = m_xml->setNodeAttribute(rect, QStringLiteral("xlink:href"), path, true);
    return made || written;
}

bool QLXFrontPage::newPageBg()
{
    if (!isOpen())
        return false;
    m_background = m_xml->newChildNode(m_root, kRect, QString());
    return !m_background.isNull();
}

void QLXFrontPage::writeFullPageRect(const QDomNode &rect)
{
    m_xml->setNodeAttribute(rect, QStringLiteral("x"), QStringLiteral("0"), true);
    m_xml->setNodeAttribute(rect, QStringLiteral("y"), QStringLiteral("0"), true);
    m_xml->setNodeAttribute(rect, QStringLiteral("width"), QStringLiteral("100%"), true);
    m_xml->setNodeAttribute(rect, QStringLiteral("height"), QStringLiteral("100%"), true);
}

// ---------------------------------------------------------------- grid

bool QLXFrontPage::getPageGrid(tagPageGrid *grid)
{
    if (!isOpen() || grid == nullptr)
        return false;
    const QDomNode node = m_xml->getChildNode(m_root, kGrid);
    if (node.isNull())
        return false;
    m_xml->getNodeAttribute(node, QStringLiteral("grid-horizontal"), grid->horizontal, 0);
    m_xml->getNodeAttribute(node, QStringLiteral("grid-vertical"), grid->vertical, 0);
    QString stroke;
    if (m_xml->getNodeAttribute(node, QStringLiteral("stroke"), stroke, QString())) {
        if (stroke.isEmpty()) {
            grid->lineColor = QColor(Qt::black);
        } else {
            // A grid stored without "opacity" reads back fully transparent;
            // hosts depend on that to keep hand-made grids hidden.
            QColor color(stroke);
            float opacity = 0.0f;
            m_xml->getNodeAttribute(node, QStringLiteral("opacity"), opacity, 0.0f);
            color.setAlphaF(NumberText::unitFraction(opacity));
            grid->lineColor = color;
        }
    }
    m_xml->getNodeAttribute(node, QStringLiteral("stroke-width"), grid->lineWidth, 1.0f);
    QString dash;
    m_xml->getNodeAttribute(node, QStringLiteral("stroke-dasharray"), dash, QString());
    if (!QPropertyTransfer::dashSvg2Qt(dash, grid->lineStyle))
        grid->lineStyle = Qt::SolidLine;
    return true;
}

bool QLXFrontPage::setPageGrid(tagPageGrid *grid)
{
    if (!isOpen() || grid == nullptr)
        return false;
    QDomNode node = m_xml->getChildNode(m_root, kGrid);
    if (node.isNull())
        node = m_xml->newChildNode(m_root, kGrid, QString());
    if (node.isNull())
        return false;
    if (!grid->visible) {
        m_xml->removeNode(node);
        return true;
    }
    m_xml->setNodeAttribute(node, QStringLiteral("grid-horizontal"), grid->horizontal, true);
    m_xml->setNodeAttribute(node, QStringLiteral("grid-vertical"), grid->vertical, true);
    m_xml->setNodeAttribute(node, QStringLiteral("stroke"), grid->lineColor.name(), true);
    m_xml->setNodeAttribute(node, QStringLiteral("opacity"),
                            static_cast<float>(grid->lineColor.alphaF()), true);
    m_xml->setNodeAttribute(node, QStringLiteral("stroke-width"), grid->lineWidth, true);
    QString dash;
    if (QPropertyTransfer::dashQt2Svg(grid->lineStyle, NumberText::saturatedInt(grid->lineWidth), dash))
        m_xml->setNodeAttribute(node, QStringLiteral("stroke-dasharray"), dash, true);
    return true;
}

// ---------------------------------------------------------------- objects

ILXObject *QLXFrontPage::wrap(const QDomNode &node)
{
    if (node.isNull())
        return nullptr;
    return new QLXObject(m_xml, node);
}

ILXObject *QLXFrontPage::newLXObject(const QString &name)
{
    if (!isOpen())
        return nullptr;
    const QDomNode layer = resolveLayer(true);
    if (layer.isNull())
        return nullptr;
    m_cursor = m_xml->newChildNode(layer, name, QString());
    return wrap(m_cursor);
}

ILXObject *QLXFrontPage::newLXObjectFromXmlStream(QXmlStream *source)
{
    if (!isOpen() || source == nullptr)
        return nullptr;
    return adoptFirstClassed(source);
}

ILXObject *QLXFrontPage::newLXObjectFromSVG(const QString &svgText)
{
    if (!isOpen() || svgText.length() < kMinSvgTextLength)
        return nullptr;
    QXmlStream source;
    if (!source.loadFromXmlStream(svgText))
        return nullptr;
    return adoptFirstClassed(&source);
}

ILXObject *QLXFrontPage::adoptFirstClassed(QXmlStream *source)
{
    // Only the chain of first children is searched, never siblings: a pasted
    // object is the outermost classed element of what was copied.
    QDomNode node = source->getRootNode();
    while (!node.isNull()) {
        QString cls;
        source->getNodeAttribute(node, kClass, cls, QString());
        if (!cls.isEmpty())
            break;
        node = source->getFirstChildNode(node);
    }
    if (node.isNull() || !XmlName::isNamedTree(node))
        return nullptr;
    QDomNode layer = resolveLayer(true);
    if (layer.isNull() || isLayerOrAbove(node, layer))
        return nullptr;
    // Moved, not imported: the element leaves the source tree.
    m_cursor = layer.appendChild(node);
    m_xml->saveFile();
    return wrap(m_cursor);
}

// Taking over from the page's own stream must not move the layer, or one of
// the elements holding it, into the layer itself.
bool QLXFrontPage::isLayerOrAbove(const QDomNode &node, const QDomNode &layer)
{
    for (QDomNode above = layer; !above.isNull(); above = above.parentNode()) {
        if (above == node)
            return true;
    }
    return false;
}

ILXObject *QLXFrontPage::getFirstLXObject()
{
    if (!isOpen())
        return nullptr;
    const QDomNode layer = resolveLayer(false);
    if (layer.isNull())
        return nullptr;
    m_cursor = m_xml->getFirstChildNode(layer);
    return wrap(m_cursor);
}

ILXObject *QLXFrontPage::getNextLXObject()
{
    if (m_xml == nullptr || m_cursor.isNull())
        return nullptr;
    m_cursor = m_xml->getNextNode(m_cursor);
    return wrap(m_cursor);
}

ILXObject *QLXFrontPage::getLXObjectByName(const QString &name)
{
    if (m_xml == nullptr || m_layer.isNull())
        return nullptr;
    return wrap(m_xml->getChildNode(m_layer, name));
}

bool QLXFrontPage::clearAllLXObjects()
{
    if (!isOpen())
        return false;
    const QDomNode layer = resolveLayer(false);
    if (layer.isNull())
        return false;
    m_xml->removeAllChildNotes(layer);
    return true;
}
