// SPDX-License-Identifier: MIT
#ifndef LXDOC_ILXRESMGR_H
#define LXDOC_ILXRESMGR_H

#include "lxdoc_export.h"
#include <QString>

// Copies media into the working folder and lists them in the manifest.
// Owned by the document: a host never releases it. The operation order is
// the binary layout a host relies on.
class LXDOC_EXPORT ILXResMgr {
public:
    virtual void release() = 0;
    virtual bool addImageFile(const QString &source, QString &newPath) = 0;
    virtual bool addSoundFile(const QString &source, QString &newPath) = 0;
    virtual bool addAvMediaFile(const QString &source, QString &newPath) = 0;
    virtual bool addFlashFile(const QString &source, QString &newPath) = 0;
    virtual bool addFillblockFile(const QString &source, QString &newPath) = 0;
    virtual bool addAttachmentFile(const QString &source, QString &newPath) = 0;
    virtual QString getTempPath() = 0;

protected:
    ~ILXResMgr() = default;
};

#endif
