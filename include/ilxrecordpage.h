// SPDX-License-Identifier: MIT
#ifndef LXDOC_ILXRECORDPAGE_H
#define LXDOC_ILXRECORDPAGE_H

#include "lxdoc_export.h"
#include <QString>

class ILXCmd;

// The recording of one page: its commands in recording order. The operation
// order is the binary layout a host relies on.
class LXDOC_EXPORT ILXRecordPage {
public:
    virtual void release() = 0;
    virtual bool saveFile() = 0;
    virtual bool closeFile(bool save) = 0;
    virtual bool loadRecPageFile(const QString &path) = 0;
    virtual bool createRecPageFile(const QString &path) = 0;
    virtual bool setClass(QString cls) = 0;
    virtual bool getClass(QString &cls) = 0;
    virtual bool clearAllCmdRecords() = 0;
    virtual ILXCmd *getFirstLXCmd() = 0;
    virtual ILXCmd *getNextLXCmd() = 0;
    virtual ILXCmd *newLXCmd(const QString &name) = 0;
    virtual bool getLXPageAttribute(const QString &name, int &value) = 0;
    virtual bool getLXPageAttribute(const QString &name, float &value) = 0;
    virtual bool getLXPageAttribute(const QString &name, QString &value) = 0;
    virtual bool setLXPageAttribute(const QString &name, int value) = 0;
    virtual bool setLXPageAttribute(const QString &name, float value) = 0;
    virtual bool setLXPageAttribute(const QString &name, const QString &value) = 0;

protected:
    ~ILXRecordPage() = default;
};

#endif
