#include "temproots.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QStringList TempRoots::candidates()
{
    QStringList roots{QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("Temp"))};
    const QString chosen = qEnvironmentVariable("LXDOC_TEMP_ROOT");
    if (!chosen.isEmpty())
        roots << QDir::cleanPath(chosen);
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
