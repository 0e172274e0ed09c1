// SPDX-License-Identifier: MIT
#ifndef LXDOC_TESTS_TREESNAPSHOT_H
#define LXDOC_TESTS_TREESNAPSHOT_H

// What a folder tree looks like on disk, links not followed, so a test can
// tell exactly which entries appeared, vanished or changed.

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMap>
#include <QString>
#include <QStringList>

#include <sys/stat.h>

class TreeSnapshot {
public:
    explicit TreeSnapshot(const QString &root)
    {
        QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            m_entries.insert(path, describe(path));
        }
    }

    // Paths that differ between the two snapshots, leaving out those inside
    // any of the allowed folders.
    QStringList changesSince(const TreeSnapshot &before, const QStringList &allowed) const
    {
        QStringList changed;
        QMap<QString, QString> all = before.m_entries;
        for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
            all.insert(it.key(), QString());
        for (auto it = all.cbegin(); it != all.cend(); ++it) {
            if (isAllowed(it.key(), allowed))
                continue;
            if (before.m_entries.value(it.key(), QStringLiteral("<absent>"))
                != m_entries.value(it.key(), QStringLiteral("<absent>")))
                changed << it.key();
        }
        return changed;
    }

private:
    static bool isAllowed(const QString &path, const QStringList &allowed)
    {
        for (const QString &folder : allowed) {
            if (path == folder || path.startsWith(folder + QLatin1Char('/')))
                return true;
        }
        return false;
    }

    static QString describe(const QString &path)
    {
        struct stat st;
        if (::lstat(QFile::encodeName(path).constData(), &st) != 0)
            return QStringLiteral("<unreadable>");
        const QFileInfo info(path);
        // A folder's time and link count move whenever an entry inside it
        // comes or goes, and those entries are compared themselves.
        return QStringLiteral("mode %1 size %2 links %3 mtime %4.%5 -> %6")
            .arg(st.st_mode, 0, 8)
            .arg(qint64(st.st_size))
            .arg(S_ISDIR(st.st_mode) ? 0 : qint64(st.st_nlink))
            .arg(S_ISDIR(st.st_mode) ? 0 : qint64(st.st_mtim.tv_sec))
            .arg(S_ISDIR(st.st_mode) ? 0 : qint64(st.st_mtim.tv_nsec))
            .arg(info.isSymLink() ? info.symLinkTarget() : QString());
    }

    QMap<QString, QString> m_entries;
};

#endif
