// SPDX-License-Identifier: MIT
#ifndef LXDOC_QLXRECORDPAGE_H
#define LXDOC_QLXRECORDPAGE_H

#include "ilxrecordpage.h"
#include <QDomNode>

class QXmlStream;

// The recording of one page: a "record" root with one element per command.
class QLXRecordPage : public ILXRecordPage {
public:
    QLXRecordPage();
    explicit QLXRecordPage(const QString &path);

    void release() override;
    bool saveFile() override;
    bool closeFile(bool save) override;
    bool loadRecPageFile(const QString &path) override;
    bool createRecPageFile(const QString &path) override;
    bool setClass(QString cls) override;
    bool getClass(QString &cls) override;
    bool clearAllCmdRecords() override;
    ILXCmd *getFirstLXCmd() override;
    ILXCmd *getNextLXCmd() override;
    ILXCmd *newLXCmd(const QString &name) override;
    bool getLXPageAttribute(const QString &name, int &value) override;
    bool getLXPageAttribute(const QString &name, float &value) override;
    bool getLXPageAttribute(const QString &name, QString &value) override;
    bool setLXPageAttribute(const QString &name, int value) override;
    bool setLXPageAttribute(const QString &name, float value) override;
    bool setLXPageAttribute(const QString &name, const QString &value) override;
    virtual ~QLXRecordPage();

private:
    bool isReady() const;
    void dropStream();
    ILXCmd *wrapCurrent() const;

    QXmlStream *m_stream = nullptr;
    QDomNode m_root;
    QDomNode m_current;
};

#endif
