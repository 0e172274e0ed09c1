// SPDX-License-Identifier: MIT
#ifndef LXDOC_ILXFRONTPAGE_H
#define LXDOC_ILXFRONTPAGE_H

#include "lxdoc_export.h"
#include "pageformat.h"
#include "tagpagegrid.h"
#include <QColor>
#include <QSize>
#include <QString>

class ILXObject;
class QXmlStream;

// One visible page of a lesson (an SVG file). The operation order is the
// binary layout a host relies on.
class LXDOC_EXPORT ILXFrontPage {
public:
    virtual bool saveFile() = 0;
    virtual void release() = 0;
    virtual void closeFile(bool save) = 0;
    virtual QXmlStream *getXmlStream() = 0;
    virtual bool getPageFormat(PageFormat &format) = 0;
    virtual bool setPageFormat(PageFormat format) = 0;
    virtual bool getPageSize(QSize &size) = 0;
    virtual bool setPageSize(QSize size) = 0;
    virtual bool getPageTitle(QString &title) = 0;
    virtual bool setPageTitle(const QString &title) = 0;
    virtual bool getPageBgColor(QColor &color) = 0;
    virtual bool setPageBgColor(QColor color) = 0;
    virtual bool getPageBgTempl(QString &path, QSize &size) = 0;
    virtual bool setPageBgTempl(const QString &path, QSize &size) = 0;
    virtual bool getPageGrid(tagPageGrid *grid) = 0;
    virtual bool setPageGrid(tagPageGrid *grid) = 0;
    virtual bool getPageMargin(int &left, int &top, int &right, int &bottom) = 0;
    virtual bool setPageMargin(int left, int top, int right, int bottom) = 0;
    virtual bool getMaxGraphicId(int &id) = 0;
    virtual bool setMaxGraphicId(int id) = 0;
    virtual bool setForeground(bool on) = 0;
    virtual bool isFrontPage() = 0;
    virtual bool newPageBg() = 0;
    virtual ILXObject *getFirstLXObject() = 0;
    virtual ILXObject *getNextLXObject() = 0;
    virtual ILXObject *getLXObjectByName(const QString &name) = 0;
    virtual bool clearAllLXObjects() = 0;
    virtual ILXObject *newLXObject(const QString &name) = 0;
    virtual bool getLXPageAttribute(const QString &name, int &value) = 0;
    virtual bool getLXPageAttribute(const QString &name, float &value) = 0;
    virtual bool getLXPageAttribute(const QString &name, QString &value) = 0;
    virtual bool setLXPageAttribute(const QString &name, int value) = 0;
    virtual bool setLXPageAttribute(const QString &name, float value) = 0;
    virtual bool setLXPageAttribute(const QString &name, const QString &value) = 0;

protected:
    ~ILXFrontPage() = default;
};

#endif
