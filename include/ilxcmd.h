// SPDX-License-Identifier: MIT
#ifndef LXDOC_ILXCMD_H
#define LXDOC_ILXCMD_H

#include "lxdoc_export.h"
#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>

class ILXObject;

// One recorded command of a record page. The operation order is the binary
// layout a host relies on, getIntList standing before setIntList included.
class LXDOC_EXPORT ILXCmd {
public:
    virtual void release() = 0;
    virtual bool setClass(const QString &cls) = 0;
    virtual bool getClass(QString &cls) = 0;
    virtual bool setListGraphicsId(const QList<int> &ids) = 0;
    virtual bool getListGraphicsId(QList<int> &ids) = 0;
    virtual bool setSizeFList(const QString &name, const QList<QSizeF> &sizes) = 0;
    virtual bool getSizeFList(const QString &name, QList<QSizeF> &sizes) = 0;
    virtual bool setPointFList(const QString &name, const QList<QPointF> &points) = 0;
    virtual bool getPointFList(const QString &name, QList<QPointF> &points) = 0;
    virtual bool getIntList(const QString &name, QList<int> &values) = 0;
    virtual bool setIntList(const QString &name, QList<int> &values) = 0;
    virtual bool setTransform(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV, QPointF centre) = 0;
    virtual bool getTransform(QPointF &pos, QSizeF &scale, float &angle, bool &flipH, bool &flipV) = 0;
    virtual bool setLXCmdAttribute(const QString &name, int value) = 0;
    virtual bool setLXCmdAttribute(const QString &name, float value) = 0;
    virtual bool setLXCmdAttribute(const QString &name, const QString &value) = 0;
    virtual bool getLXCmdAttribute(const QString &name, int &value) = 0;
    virtual bool getLXCmdAttribute(const QString &name, float &value) = 0;
    virtual bool getLXCmdAttribute(const QString &name, QString &value) = 0;
    virtual ILXCmd *newLXCmd(const QString &name) = 0;
    virtual ILXCmd *getFirstLXCmd() = 0;
    virtual ILXCmd *getNextLXCmd() = 0;
    virtual bool clearAllLXCmd() = 0;
    virtual ILXCmd *getLXCmd(const QString &name) = 0;
    virtual ILXObject *newLXObject(const QString &name) = 0;
    virtual ILXObject *getFirstLXObject() = 0;
    virtual ILXObject *getNextLXObject() = 0;
    virtual bool clearAllLXObjects() = 0;

protected:
    ~ILXCmd() = default;
};

#endif
