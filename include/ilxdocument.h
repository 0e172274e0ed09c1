// SPDX-License-Identifier: MIT
#ifndef LXDOC_ILXDOCUMENT_H
#define LXDOC_ILXDOCUMENT_H

#include "lxdoc_export.h"
#include <QString>

class IDrawPage;
class ILXFrontPage;
class ILXRecordPage;
class ILXResMgr;

// One open lesson document. A host gets it from get_interface() and ends it
// with release(), which deletes the working folder. The operation order is the
// binary layout a host relies on.
class LXDOC_EXPORT ILXDocument {
public:
    virtual bool init(const QString &path, bool flag) = 0;
    virtual void release(bool flag) = 0;
    virtual bool newFile(const QString &folder, bool makeSubfolders) = 0;
    virtual bool openFile(const QString &path) = 0;
    virtual bool openDocument(const QString &folder) = 0;
    virtual bool openPage(int id) = 0;
    virtual bool saveFile(const QString &archive, bool pack) = 0;
    virtual bool startSaveFile(const QString &archive) = 0;
    virtual bool savePage(IDrawPage *page, int index, unsigned int flags, bool preview) = 0;
    virtual void finishSaveFile() = 0;
    virtual ILXFrontPage *insertFrontPage(int index, int id) = 0;
    virtual ILXRecordPage *insertRecPage(int index, int id) = 0;
    virtual int getPagesCount() = 0;
    virtual bool deletePage(int id, bool flag) = 0;
    virtual bool adjustPageIndex(int id, int oldIndex, int newIndex) = 0;
    virtual ILXFrontPage *getPageByIndex(int index, int &id) = 0;
    virtual ILXFrontPage *getPageById(int id) = 0;
    virtual ILXRecordPage *getRecPageById(int id) = 0;
    virtual ILXResMgr *getLXResMgr() = 0;
    virtual bool getLXDocAttribute(const QString &name, int &value) = 0;
    virtual bool getLXDocAttribute(const QString &name, float &value) = 0;
    virtual bool getLXDocAttribute(const QString &name, const QString &value) = 0;
    virtual bool setLXDocAttribute(const QString &name, int value) = 0;
    virtual bool setLXDocAttribute(const QString &name, float value) = 0;
    virtual bool setLXDocAttribute(const QString &name, const QString &value) = 0;
    virtual QString getDocPath() = 0;
    virtual QString getTempPath() = 0;

protected:
    ~ILXDocument() = default;
};

#endif
