// SPDX-License-Identifier: MIT
#include "temproots.h"

#include "document/temproot.h"

#include <QDir>
#include <QFileInfo>

QStringList TempRoots::candidates()
{
    QStringList roots;
    for (const QString &place : TempRoot::places())
        roots << QDir::cleanPath(place);
    return roots;
}

bool TempRoots::isRoot(const QString &folder)
{
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    for (const QString &root : candidates()) {
        if (!canonical.isEmpty() && canonical == QFileInfo(root).canonicalFilePath())
            return true;
    }
    return false;
}

bool TempRoots::holds(const QString &folder)
{
    return isRoot(QFileInfo(folder).absolutePath());
}
