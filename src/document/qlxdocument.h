// SPDX-License-Identifier: MIT
#ifndef LXDOC_QLXDOCUMENT_H
#define LXDOC_QLXDOCUMENT_H

#include "ilxdocument.h"
#include "manifest/qmanifest.h"

class QFileInfo;

// One open lesson: its working folder, manifest and resource manager.
class QLXDocument : public ILXDocument {
public:
    QLXDocument();

    bool init(const QString &path, bool flag) override;
    void release(bool flag) override;
    bool newFile(const QString &folder, bool makeSubfolders) override;
    bool openFile(const QString &path) override;
    bool openDocument(const QString &folder) override;
    bool openPage(int id) override;
    bool saveFile(const QString &archive, bool pack) override;
    bool startSaveFile(const QString &archive) override;
    bool savePage(IDrawPage *page, int index, unsigned int flags, bool preview) override;
    void finishSaveFile() override;
    ILXFrontPage *insertFrontPage(int index, int id) override;
    ILXRecordPage *insertRecPage(int index, int id) override;
    int getPagesCount() override;
    bool deletePage(int id, bool flag) override;
    bool adjustPageIndex(int id, int oldIndex, int newIndex) override;
    ILXFrontPage *getPageByIndex(int index, int &id) override;
    ILXFrontPage *getPageById(int id) override;
    ILXRecordPage *getRecPageById(int id) override;
    ILXResMgr *getLXResMgr() override;
    bool getLXDocAttribute(const QString &name, int &value) override;
    bool getLXDocAttribute(const QString &name, float &value) override;
    bool getLXDocAttribute(const QString &name, const QString &value) override;
    bool setLXDocAttribute(const QString &name, int value) override;
    bool setLXDocAttribute(const QString &name, float value) override;
    bool setLXDocAttribute(const QString &name, const QString &value) override;
    QString getDocPath() override;
    QString getTempPath() override;
    virtual ~QLXDocument();

    bool createFolder(const QString &path, bool makeSubfolders);
    bool removeFolder(const QString &path, bool removeSelf);
    bool openOtherTypeFile(const QString &path);

private:
    QString pagePath(const QString &name) const;
    bool hasDocument() const;
    bool withinPageLimit();
    void releaseResMgr();
    static QString unpackFolderFor(const QString &first, int counter);
    QString claimUnpackFolder(const QFileInfo &archive);
    bool unpackArchive(const QString &archive, const QString &folder);

    QString m_path;
    QManifest m_manifest;
    ILXResMgr *m_resMgr = nullptr;
};

#endif
