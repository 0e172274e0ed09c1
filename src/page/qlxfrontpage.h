// SPDX-License-Identifier: MIT
#ifndef LXDOC_QLXFRONTPAGE_H
#define LXDOC_QLXFRONTPAGE_H

#include "ilxfrontpage.h"
#include <QDomNode>

class QXmlStream;

// One visible page: an SVG file with the page properties and its objects.
class QLXFrontPage : public ILXFrontPage {
public:
    QLXFrontPage();
    explicit QLXFrontPage(const QString &path);

    bool saveFile() override;
    void release() override;
    void closeFile(bool save) override;
    QXmlStream *getXmlStream() override;
    bool getPageFormat(PageFormat &format) override;
    bool setPageFormat(PageFormat format) override;
    bool getPageSize(QSize &size) override;
    bool setPageSize(QSize size) override;
    bool getPageTitle(QString &title) override;
    bool setPageTitle(const QString &title) override;
    bool getPageBgColor(QColor &color) override;
    bool setPageBgColor(QColor color) override;
    bool getPageBgTempl(QString &path, QSize &size) override;
    bool setPageBgTempl(const QString &path, QSize &size) override;
    bool getPageGrid(tagPageGrid *grid) override;
    bool setPageGrid(tagPageGrid *grid) override;
    bool getPageMargin(int &left, int &top, int &right, int &bottom) override;
    bool setPageMargin(int left, int top, int right, int bottom) override;
    bool getMaxGraphicId(int &id) override;
    bool setMaxGraphicId(int id) override;
    bool setForeground(bool on) override;
    bool isFrontPage() override;
    bool newPageBg() override;
    ILXObject *getFirstLXObject() override;
    ILXObject *getNextLXObject() override;
    ILXObject *getLXObjectByName(const QString &name) override;
    bool clearAllLXObjects() override;
    ILXObject *newLXObject(const QString &name) override;
    bool getLXPageAttribute(const QString &name, int &value) override;
    bool getLXPageAttribute(const QString &name, float &value) override;
    bool getLXPageAttribute(const QString &name, QString &value) override;
    bool setLXPageAttribute(const QString &name, int value) override;
    bool setLXPageAttribute(const QString &name, float value) override;
    bool setLXPageAttribute(const QString &name, const QString &value) override;
    virtual ~QLXFrontPage();

    bool createPageFile(const QString &path);
    bool loadPageFile(const QString &path);
    ILXObject *newLXObjectFromXmlStream(QXmlStream *source);
    ILXObject *newLXObjectFromSVG(const QString &svgText);

private:
    void startNewStream();
    bool dropStream();
    bool isOpen() const;
    QDomNode findForegroundGroup();
    QDomNode makeForegroundGroup();
    QDomNode resolveLayer(bool mayCreate);
    void writeFullPageRect(const QDomNode &rect);
    ILXObject *wrap(const QDomNode &node);
    ILXObject *adoptFirstClassed(QXmlStream *source);
    static bool isLayerOrAbove(const QDomNode &node, const QDomNode &layer);

    QXmlStream *m_xml = nullptr;
    QDomNode m_root;
    QDomNode m_layer;
    QDomNode m_background;
    QDomNode m_cursor;
    bool m_foreground = false;
};

#endif
