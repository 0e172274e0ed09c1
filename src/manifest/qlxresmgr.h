// SPDX-License-Identifier: MIT
#ifndef LXDOC_QLXRESMGR_H
#define LXDOC_QLXRESMGR_H

#include "ilxresmgr.h"

class QManifest;

// Copies media into the working folder under names that do not clash.
class QLXResMgr : public ILXResMgr {
public:
    QLXResMgr(QManifest *manifest, const QString &documentPath);

    void release() override;
    bool addImageFile(const QString &source, QString &newPath) override;
    bool addSoundFile(const QString &source, QString &newPath) override;
    bool addAvMediaFile(const QString &source, QString &newPath) override;
    bool addFlashFile(const QString &source, QString &newPath) override;
    bool addFillblockFile(const QString &source, QString &newPath) override;
    bool addAttachmentFile(const QString &source, QString &newPath) override;
    QString getTempPath() override;
    virtual ~QLXResMgr();

    // Naming step: true when a free name was found, false when an identical
    // copy already exists (fullPath then names it).
    bool getNewFilePath(const QString &source, const QString &subfolder, QString &fullPath,
                        QString &relativeName);

private:
    bool addResource(const QString &source, QString &newPath, const QString &subfolder,
                     bool (QManifest::*enter)(const QString &));

    QString m_path;
    QManifest *m_manifest;
};

#endif
