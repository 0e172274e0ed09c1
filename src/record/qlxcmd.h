// SPDX-License-Identifier: MIT
#ifndef LXDOC_QLXCMD_H
#define LXDOC_QLXCMD_H

#include "ilxcmd.h"
#include <QDomNode>

class QXmlStream;

// A light handle on one command element; it owns nothing but its position.
class QLXCmd : public ILXCmd {
public:
    QLXCmd(QXmlStream *stream, QDomNode node);

    void release() override;
    bool setClass(const QString &cls) override;
    bool getClass(QString &cls) override;
    bool setListGraphicsId(const QList<int> &ids) override;
    bool getListGraphicsId(QList<int> &ids) override;
    bool setSizeFList(const QString &name, const QList<QSizeF> &sizes) override;
    bool getSizeFList(const QString &name, QList<QSizeF> &sizes) override;
    bool setPointFList(const QString &name, const QList<QPointF> &points) override;
    bool getPointFList(const QString &name, QList<QPointF> &points) override;
    bool getIntList(const QString &name, QList<int> &values) override;
    bool setIntList(const QString &name, QList<int> &values) override;
    bool setTransform(QPointF pos, QSizeF scale, float angle, bool flipH, bool flipV, QPointF centre) override;
    bool getTransform(QPointF &pos, QSizeF &scale, float &angle, bool &flipH, bool &flipV) override;
    bool setLXCmdAttribute(const QString &name, int value) override;
    bool setLXCmdAttribute(const QString &name, float value) override;
    bool setLXCmdAttribute(const QString &name, const QString &value) override;
    bool getLXCmdAttribute(const QString &name, int &value) override;
    bool getLXCmdAttribute(const QString &name, float &value) override;
    bool getLXCmdAttribute(const QString &name, QString &value) override;
    ILXCmd *newLXCmd(const QString &name) override;
    ILXCmd *getFirstLXCmd() override;
    ILXCmd *getNextLXCmd() override;
    bool clearAllLXCmd() override;
    ILXCmd *getLXCmd(const QString &name) override;
    ILXObject *newLXObject(const QString &name) override;
    ILXObject *getFirstLXObject() override;
    ILXObject *getNextLXObject() override;
    bool clearAllLXObjects() override;
    virtual ~QLXCmd();

private:
    bool writeText(const QString &name, const QString &text);
    bool readText(const QString &name, QString &text);
    QDomNode appendChild(const QString &name);
    QDomNode firstChild();
    QDomNode nextChild();

    QXmlStream *m_stream;
    QDomNode m_node;
    QDomNode m_current;
};

#endif
