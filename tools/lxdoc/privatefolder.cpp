// SPDX-License-Identifier: MIT
#include "privatefolder.h"

#include "document/folderremover.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>


PrivateFolder::PrivateFolder(const QString &pattern)
{
    QByteArray name = QFile::encodeName(pattern);
    if (::mkdtemp(name.data()))
        m_path = name;
}

PrivateFolder::~PrivateFolder()
{
    if (!m_path.isEmpty())
        FolderRemover(FolderRemover::Everything).remove(m_path, true);
}

bool PrivateFolder::isValid() const
{
    return !m_path.isEmpty();
}

QString PrivateFolder::path() const
{
    return QFile::decodeName(m_path);
}

QString PrivateFolder::filePath(const QString &name) const
{
    return path() + QLatin1Char('/') + name;
}

bool PrivateFolder::moveTo(const QString &target)
{
    // mkdtemp made the folder for this user alone; the result is the user's.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(m_path.constData(), 0777 & ~mask);
    if (::rename(m_path.constData(), QFile::encodeName(target).constData()) != 0)
        return false;
    m_path.clear();
    return true;
}
