// SPDX-License-Identifier: MIT
#include "pagefolder.h"

#include "console.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <unistd.h>

namespace {

const QDir::Filters kEverything = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;

bool isWritable(const QString &path)
{
    return ::access(QFile::encodeName(path).constData(), W_OK | X_OK) == 0;
}

} // namespace

PageFolder::PageFolder(const QString &path, int pageCount, bool force)
    : m_path(path)
    , m_count(pageCount)
    , m_force(force)
{
}

QString PageFolder::fileName(int index, int pageCount)
{
    const int digits = int(QString::number(qMax(pageCount, 1)).size());
    return QStringLiteral("page-%1.png").arg(index + 1, digits, 10, QLatin1Char('0'));
}

bool PageFolder::prepare()
{
    const QFileInfo info(m_path);
    if (info.exists() && !info.isDir())
        return fail(QStringLiteral("it exists and is not a folder"));
    if (info.exists() && !m_force && !QDir(m_path).entryList(kEverything).isEmpty())
        return fail(QStringLiteral("the folder holds other files (--force writes into it)"));
    errno = 0;
    if (!QDir().mkpath(m_path) || !isWritable(m_path))
        return fail(Console::systemReason(errno ? errno : EACCES));
    for (int index = 0; index < m_count; ++index) {
        const QFileInfo page(QDir(m_path).filePath(fileName(index, m_count)));
        if (page.exists() && !page.isFile())
            return fail(QStringLiteral("'%1' is not a file").arg(page.fileName()));
    }
    return true;
}

bool PageFolder::fill(const QStringList &drawn, QStringList *written)
{
    const QDir folder(m_path);
    QStringList names;
    for (int index = 0; index < drawn.size(); ++index) {
        const QString target = folder.filePath(fileName(index, m_count));
        QFile::remove(target);
        if (!QFile::rename(drawn.at(index), target))
            return fail(QStringLiteral("cannot write '%1'").arg(fileName(index, m_count)));
        names << fileName(index, m_count);
        *written << target;
    }
    return !m_force || removeStalePages(names);
}

QString PageFolder::error() const
{
    return m_error;
}

bool PageFolder::removeStalePages(const QStringList &kept)
{
    static const QRegularExpression pageName(QStringLiteral("^page-\\d+\\.png$"));
    QDir folder(m_path);
    for (const QString &name : folder.entryList(QDir::Files)) {
        if (pageName.match(name).hasMatch() && !kept.contains(name) && !folder.remove(name))
            return fail(QStringLiteral("cannot remove the older '%1'").arg(name));
    }
    return true;
}

bool PageFolder::fail(const QString &reason)
{
    m_error = QStringLiteral("cannot write to the folder '%1': %2").arg(m_path, reason);
    return false;
}
