// SPDX-License-Identifier: MIT
#ifndef LXDOC_LXFUZZ_H
#define LXDOC_LXFUZZ_H

// The fuzz entry functions, header-only so that the libFuzzer targets and the
// QtTest that replays their past crashes run exactly the same code. Each takes
// raw bytes, drives the library's public operations over them and returns an
// empty text, or a description of a broken promise (a file written outside the
// unpack folder, a number reader that disagrees with Qt's own). Crashes and
// sanitizer reports speak for themselves.

#include "document/archivetool.h"
#include "manifest/qmanifest.h"
#include "object/qlxobject.h"
#include "object/qpropertytransfer.h"
#include "page/qlxfrontpage.h"
#include "record/qlxcmd.h"
#include "record/qlxrecordpage.h"
#include "xml/numbertext.h"
#include "xml/xmlstream.h"

#include "ilxcmd.h"
#include "ilxobject.h"
#include "tagpagegrid.h"

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QRectF>
#include <QSet>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>
#include <dlfcn.h>
#include <sys/stat.h>

#ifndef LXDOC_BIN_DIR
#error "LXDOC_BIN_DIR names the folder that holds ziplib.so"
#endif

namespace lxfuzz {

// Inputs nest elements; a walk deeper than this only repeats itself.
constexpr int maxDepth = 4;
// Enough wrappers per level to reach every kind of element in a small input.
constexpr int maxSiblings = 64;

inline QTemporaryDir &scratch()
{
    static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/lxfuzz-XXXXXX"));
    return dir;
}

inline bool writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size();
}

// Every attribute name used anywhere in the text, so the typed getters of a
// command are asked for names the input really has.
inline QStringList attributeNames(const QByteArray &data)
{
    QDomDocument dom;
    QStringList names;
    if (!dom.setContent(data))
        return names;
    QSet<QString> seen;
    QDomElement element = dom.documentElement();
    QList<QDomElement> pending{element};
    while (!pending.isEmpty() && names.size() < 16) {
        const QDomElement current = pending.takeFirst();
        const QDomNamedNodeMap attributes = current.attributes();
        for (int i = 0; i < attributes.count() && names.size() < 16; ++i) {
            const QString name = attributes.item(i).nodeName();
            if (!seen.contains(name)) {
                seen.insert(name);
                names << name;
            }
        }
        for (QDomElement child = current.firstChildElement(); !child.isNull() && pending.size() < 256;
             child = child.nextSiblingElement())
            pending << child;
    }
    return names;
}

// ---------------------------------------------------------------- XML layer

inline void walkNode(QXmlStream &xml, const QDomNode &node, int depth)
{
    if (depth > 2 * maxDepth)
        return;
    int i = 0;
    for (QDomNode child = xml.getFirstChildNode(node); !xml.isNullNode(child) && i < maxSiblings;
         child = xml.getNextNode(child), ++i) {
        const QString name = xml.getNodeName(child);
        for (int a = 0; a < 32; ++a) {
            const QString attribute = xml.getNodeAttributeName(child, a);
            if (attribute.isEmpty())
                break;
            int number = 0;
            float real = 0;
            QString text;
            xml.getNodeAttribute(child, attribute, number, 0);
            xml.getNodeAttribute(child, attribute, real, 0.0f);
            xml.getNodeAttribute(child, attribute, text, QString());
            xml.getChildNodeByAttribute(node, attribute, text);
            xml.getChildNodeByAttribute(node, attribute, number);
            xml.getFirstChildNode(node, attribute, text);
            xml.getNextNode(child, attribute, text);
            xml.getPreviousNode(child, attribute, text);
        }
        xml.hadNodeValue(child);
        xml.getNodeIntValue(child);
        xml.getNodeFloatValue(child);
        xml.getNodeStringValue(child);
        xml.getChildNodesCount(child);
        xml.getChildNode(node, name);
        xml.getChildNodeByNodename(node, name);
        xml.getParentNode(child);
        xml.isRootNode(child);
        walkNode(xml, child, depth + 1);
    }
    xml.getLastChildNode(node);
}

// Each line of the input as a name given to the setters and creators of an
// object and a command: whatever they take must read back.
inline QString runNames(const QByteArray &data)
{
    QXmlStream xml;
    xml.createXmlStream(QStringLiteral("svg"));
    QLXObject *const object = new QLXObject(&xml, xml.getRootNode());
    QLXCmd *const cmd = new QLXCmd(&xml, xml.getRootNode());
    const QList<QByteArray> lines = data.split('\n');
    for (int i = 0; i < lines.size() && i < maxSiblings; ++i) {
        const QString name = QString::fromUtf8(lines.at(i));
        object->setLXObjectAttribute(name, i);
        object->setLXObjectAttribute(name, 0.5f);
        cmd->setLXCmdAttribute(name, name);
        if (ILXObject *child = object->newLXObject(name)) {
            child->setLXObjectAttribute(name, name);
            child->release();
        }
        if (ILXCmd *child = cmd->newLXCmd(name))
            child->release();
    }
    object->release();
    cmd->release();
    QXmlStream again;
    if (!again.loadFromXmlStream(xml.getXmlStream()))
        return QStringLiteral("a name taken by a setter does not read back");
    return QString();
}

// Parses the text as a whole XML document, walks every node through the
// typed readers, edits a little and serialises the result.
inline QString runXmlStream(const QByteArray &data)
{
    QXmlStream xml;
    if (!xml.loadFromXmlStream(QString::fromUtf8(data)))
        return runNames(data);
    const QDomNode root = xml.getRootNode();
    walkNode(xml, root, 0);
    const QDomNode added = xml.newChildNode(root, QStringLiteral("probe"), QStringLiteral("1.5"));
    xml.setNodeAttribute(added, QStringLiteral("gid"), 7, true);
    xml.setNodeAttribute(added, QStringLiteral("opacity"), 0.25f, true);
    xml.setNodeValue(added, 3);
    xml.removeNodeValue(added);
    const QString first = xml.getXmlStream();
    xml.removeChildNode(root, QStringLiteral("probe"));
    xml.getXmlStream();
    // What the library writes it must read again. Qt's parser takes some
    // malformed processing instructions (a target such as "em`F" or U+FFFD)
    // only while they carry no data, and every writer gives them back with
    // a blank: when Qt's own serialisation of the same tree does not read
    // again either, the round trip is Qt's to keep.
    QXmlStream again;
    if (!again.loadFromXmlStream(first)) {
        QXmlStream qtOwn;
        if (qtOwn.loadFromXmlStream(xml.getRootNode().ownerDocument().toString()))
            return QStringLiteral("serialised document does not parse again");
        qtOwn.closeFile(false);
    }
    again.closeFile(false);
    xml.closeFile(false);
    return runNames(data);
}

// ---------------------------------------------------------------- objects

inline void readObject(ILXObject *object, int depth)
{
    QString text;
    int number = 0;
    float real = 0;
    bool flag = false;
    QColor color;
    object->getClass(text);
    object->getgid(number);
    object->getStroke(color);
    object->getStrokeWidth(real);
    Qt::PenJoinStyle join;
    object->getStrokeLineJoin(join);
    Qt::PenCapStyle cap;
    object->getStrokeLineCap(cap);
    Qt::PenStyle style;
    object->getStrokeDashArray(style);
    LineCapStyle marker;
    object->getMarkerStart(marker);
    object->getMarkerEnd(marker);
    object->getFill(flag, color);
    object->getOpacity(real);
    object->getShortcut(text, number);
    object->getSoundToken(text, number);
    QPointF pos;
    QSizeF scale;
    bool flipV = false;
    object->getTransform(pos, scale, real, flag, flipV);
    object->getScaleRule(number);
    object->getLocked(flag);
    QList<QPointF> points;
    object->getPoints(points);
    const int polygons = object->getPolygonCount();
    for (int i = -1; i <= qMin(polygons, maxSiblings); ++i) {
        QList<float> widths;
        object->getPolygonPoints(i, points);
        object->getPolygonPoints(i, points, widths);
    }
    QRectF bound;
    object->getBound(bound);
    object->getSvgText(text);
    object->getLXObjectAttribute(QStringLiteral("x1"), real);
    object->getLXObjectAttribute(QStringLiteral("font-size"), number);
    object->getLXObjectAttribute(QStringLiteral("href"), text);
    static_cast<QLXObject *>(object)->getBeelinePoints(points);
    if (depth >= maxDepth)
        return;
    int i = 0;
    for (ILXObject *child = object->getFirstLXObject(); child && i < maxSiblings;
         child = object->getNextLXObject(), ++i) {
        readObject(child, depth + 1);
        child->release();
    }
}

inline void readCommand(ILXCmd *cmd, const QStringList &names, int depth)
{
    QString text;
    cmd->getClass(text);
    QList<int> ids;
    cmd->getListGraphicsId(ids);
    for (const QString &name : names) {
        QList<QSizeF> sizes;
        QList<QPointF> points;
        QList<int> values;
        int number = 0;
        float real = 0;
        cmd->getSizeFList(name, sizes);
        cmd->getPointFList(name, points);
        cmd->getIntList(name, values);
        cmd->getLXCmdAttribute(name, number);
        cmd->getLXCmdAttribute(name, real);
        cmd->getLXCmdAttribute(name, text);
    }
    QPointF pos;
    QSizeF scale;
    float angle = 0;
    bool flipH = false, flipV = false;
    cmd->getTransform(pos, scale, angle, flipH, flipV);
    if (depth >= maxDepth)
        return;
    int i = 0;
    for (ILXCmd *child = cmd->getFirstLXCmd(); child && i < maxSiblings; child = cmd->getNextLXCmd(), ++i) {
        readCommand(child, names, depth + 1);
        child->release();
    }
    i = 0;
    for (ILXObject *object = cmd->getFirstLXObject(); object && i < maxSiblings;
         object = cmd->getNextLXObject(), ++i) {
        readObject(object, depth + 1);
        object->release();
    }
}

// ---------------------------------------------------------------- loaders

inline void readManifest(const QString &path)
{
    QManifest manifest;
    if (!manifest.loadManifestFile(path))
        return;
    const QStringList pages = manifest.getPagesList();
    for (const char *id : {"pages", "records", "images", "sounds", "flashes", "avmedia", "fillblocks",
                           "attachments"}) {
        QStringList list;
        manifest.getResourceList(list, QString::fromLatin1(id));
    }
    manifest.insertFrontPage(int(pages.size()), QStringLiteral("page9.svg"));
    manifest.insertRecPage(0, QStringLiteral("page9.mtrec"));
    manifest.addImageFile(QStringLiteral("images/a.png"));
    manifest.addAttachment(QStringLiteral("attachments/a.pdf"));
    manifest.deleteFrontPage(QStringLiteral("page9.svg"));
    manifest.closeFile(true);
}

inline void readFrontPage(const QString &path)
{
    QLXFrontPage *page = new QLXFrontPage;
    if (page->loadPageFile(path)) {
        PageFormat format;
        page->getPageFormat(format);
        QSize size;
        page->getPageSize(size);
        QString text;
        page->getPageTitle(text);
        QColor color;
        page->getPageBgColor(color);
        page->getPageBgTempl(text, size);
        tagPageGrid grid;
        page->getPageGrid(&grid);
        int l = 0, t = 0, r = 0, b = 0;
        page->getPageMargin(l, t, r, b);
        page->getMaxGraphicId(l);
        page->isFrontPage();
        for (const bool foreground : {false, true}) {
            page->setForeground(foreground);
            int i = 0;
            for (ILXObject *object = page->getFirstLXObject(); object && i < maxSiblings;
                 object = page->getNextLXObject(), ++i) {
                readObject(object, 0);
                object->release();
            }
        }
        if (ILXObject *named = page->getLXObjectByName(QStringLiteral("path")))
            named->release();
        page->closeFile(true);
    }
    page->release();
}

inline void readRecordPage(const QString &path, const QStringList &names)
{
    QLXRecordPage *page = new QLXRecordPage;
    if (page->loadRecPageFile(path)) {
        QString text;
        page->getClass(text);
        int i = 0;
        for (ILXCmd *cmd = page->getFirstLXCmd(); cmd && i < maxSiblings; cmd = page->getNextLXCmd(), ++i) {
            readCommand(cmd, names, 0);
            cmd->release();
        }
        page->closeFile(true);
    }
    page->release();
}

// The same bytes as a manifest, a front page and a record page file.
inline QString runLoaders(const QByteArray &data)
{
    if (!scratch().isValid())
        return QStringLiteral("no scratch folder");
    const QString path = scratch().filePath(QStringLiteral("input.xml"));
    const QStringList names = attributeNames(data);
    if (!writeFile(path, data))
        return QStringLiteral("cannot write the input file");
    readManifest(path);
    if (!writeFile(path, data))
        return QStringLiteral("cannot write the input file");
    readFrontPage(path);
    if (!writeFile(path, data))
        return QStringLiteral("cannot write the input file");
    readRecordPage(path, names);
    return QString();
}

// ---------------------------------------------------------------- text parsers

inline bool sameFloat(float a, float b)
{
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

// The fast number readers must agree with Qt's own conversion on any text.
inline QString checkNumbers(const QString &text)
{
    if (NumberText::toInt(text) != text.toInt())
        return QStringLiteral("toInt disagrees with QString::toInt on \"%1\"").arg(text);
    if (!sameFloat(NumberText::toFloat(text), text.toFloat()))
        return QStringLiteral("toFloat disagrees with QString::toFloat on \"%1\"").arg(text);
    QList<QPointF> points;
    NumberText::appendPoints(points, text);
    QList<int> ints;
    NumberText::appendInts(ints, text);
    QList<float> floats;
    NumberText::appendFloats(floats, text);
    // Splitting keeps empty parts, so what is written reads back as as many items.
    QList<QPointF> again;
    NumberText::appendPoints(again, NumberText::pointsText(points));
    if (again.size() != points.size())
        return QStringLiteral("points do not read back as many as written");
    QList<int> intsAgain;
    NumberText::appendInts(intsAgain, NumberText::intsText(ints));
    if (intsAgain != ints)
        return QStringLiteral("ints do not read back as written");
    QList<float> floatsAgain;
    NumberText::appendFloats(floatsAgain, NumberText::floatsText(floats));
    if (floatsAgain.size() != floats.size())
        return QStringLiteral("floats do not read back as many as written");
    return QString();
}

inline void checkCodecs(const QString &text)
{
    QPointF pos;
    QSizeF scale;
    float angle = 0;
    bool flipH = false, flipV = false;
    QPropertyTransfer::transformSvg2Qt(text, pos, scale, angle, flipH, flipV);
    QString written;
    QPropertyTransfer::transformQt2Svg(pos, scale, angle, flipH, flipV, QPointF(1, 1), written);
    QPropertyTransfer::transformSvg2Qt(written, pos, scale, angle, flipH, flipV);
    Qt::PenStyle style;
    QPropertyTransfer::dashSvg2Qt(text, style);
    Qt::PenJoinStyle join;
    QPropertyTransfer::penJoinSvg2Qt(text, join);
    Qt::PenCapStyle cap;
    QPropertyTransfer::penCapSvg2Qt(text, cap);
    LineCapStyle marker;
    QPropertyTransfer::lineCapSvg2Qt(text, marker);
    PageFormat format;
    QPropertyTransfer::pageFormat2FormatID(text, format);
}

// The text as every list and geometry attribute of an object and a command.
inline void checkElements(const QString &text)
{
    QXmlStream xml;
    if (!xml.createXmlStream(QStringLiteral("svg")))
        return;
    const QDomNode root = xml.getRootNode();
    const QDomNode element = xml.newChildNode(root, QStringLiteral("path"), QString());
    for (const char *name : {"points", "points-width", "bound", "transform", "stroke-dasharray", "x1", "y2"})
        xml.setNodeAttribute(element, QString::fromLatin1(name), text, true);
    const QDomNode polyline = xml.newChildNode(element, QStringLiteral("polyline"), QString());
    xml.setNodeAttribute(polyline, QStringLiteral("points"), text, true);
    xml.setNodeAttribute(polyline, QStringLiteral("points-width"), text, true);
    ILXObject *object = new QLXObject(&xml, element);
    readObject(object, maxDepth);
    object->release();

    const QDomNode command = xml.newChildNode(root, QStringLiteral("cmd"), QString());
    for (const char *name : {"gid", "list", "transform", "class"})
        xml.setNodeAttribute(command, QString::fromLatin1(name), text, true);
    ILXCmd *cmd = new QLXCmd(&xml, command);
    readCommand(cmd, {QStringLiteral("list"), QStringLiteral("gid")}, maxDepth);
    cmd->release();
    xml.closeFile(false);
}

inline QString runTextParsers(const QByteArray &data)
{
    const QString text = QString::fromUtf8(data);
    checkCodecs(text);
    checkElements(text);
    return checkNumbers(text);
}

// ---------------------------------------------------------------- archive plug-in

inline ArchiveToolFactory pluginFactory()
{
    // Loaded once for the whole run: a fuzzer calls it millions of times.
    static void *handle = dlopen(LXDOC_BIN_DIR "/ziplib.so", RTLD_LAZY);
    static ArchiveToolFactory factory =
        handle ? reinterpret_cast<ArchiveToolFactory>(dlsym(handle, "get_interface")) : nullptr;
    return factory;
}

inline bool isInside(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + QLatin1Char('/'));
}

// What an unpack may leave: the archive, the untouched sentinel and its
// victim file, and anything inside the unpack folder that stays inside it.
inline QString checkContainment(const QString &caseRoot, const QString &unpack, const QString &sentinel,
                                const QByteArray &victimText)
{
    const QString archive = caseRoot + QStringLiteral("/outer/inner/in.zip");
    const QString victim = sentinel + QStringLiteral("/victim.txt");
    QDirIterator it(caseRoot, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QFileInfo info(path);
        if (isInside(path, unpack)) {
            if (info.isSymLink()) {
                const QString target = QFileInfo(info.symLinkTarget()).absoluteFilePath();
                if (!isInside(QDir::cleanPath(target), QFileInfo(unpack).canonicalFilePath())
                    && !isInside(QDir::cleanPath(target), unpack))
                    return QStringLiteral("unpacked link leads outside: %1 -> %2").arg(path, target);
            }
            continue;
        }
        if (path == archive || path == sentinel || path == victim || path == caseRoot + QStringLiteral("/outer")
            || path == caseRoot + QStringLiteral("/outer/inner"))
            continue;
        return QStringLiteral("written outside the unpack folder: %1").arg(path);
    }
    QFile file(victim);
    if (!file.open(QIODevice::ReadOnly) || file.readAll() != victimText)
        return QStringLiteral("a file outside the unpack folder changed");
    struct stat st;
    if (::stat(QFile::encodeName(victim).constData(), &st) != 0 || st.st_nlink != 1)
        return QStringLiteral("a file outside the unpack folder gained a hard link");
    return QString();
}

// Unpacks the bytes as an archive into <case>/outer/inner/unpack, beside a
// sentinel folder, and checks that nothing landed or changed outside.
inline QString runUnpack(const QByteArray &data)
{
    const ArchiveToolFactory factory = pluginFactory();
    if (!factory)
        return QStringLiteral("ziplib.so cannot be loaded: ") + QString::fromLocal8Bit(dlerror());
    if (!scratch().isValid())
        return QStringLiteral("no scratch folder");
    const QString caseRoot = scratch().filePath(QStringLiteral("case"));
    QDir(caseRoot).removeRecursively();
    const QString inner = caseRoot + QStringLiteral("/outer/inner");
    const QString unpack = inner + QStringLiteral("/unpack");
    const QString sentinel = inner + QStringLiteral("/sentinel");
    const QByteArray victimText("the teacher's own file\n");
    if (!QDir().mkpath(unpack) || !QDir().mkpath(sentinel)
        || !writeFile(sentinel + QStringLiteral("/victim.txt"), victimText)
        || !writeFile(inner + QStringLiteral("/in.zip"), data))
        return QStringLiteral("cannot prepare the case folder");
    ArchiveTool *tool = factory();
    if (!tool)
        return QStringLiteral("the plug-in gave no tool");
    tool->unpackArchive(inner + QStringLiteral("/in.zip"), unpack);
    tool->releaseTool();
    const QString problem = checkContainment(caseRoot, unpack, sentinel, victimText);
    QDir(caseRoot).removeRecursively();
    return problem;
}

} // namespace lxfuzz

#endif
