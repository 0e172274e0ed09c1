// SPDX-License-Identifier: MIT
#ifndef LXDOC_TESTS_TESTSUPPORT_H
#define LXDOC_TESTS_TESTSUPPORT_H

// File helpers shared by the test folders; a test checks what reached the
// disk, not what a class keeps in memory.

#include <QDir>
#include <QFile>
#include <QFileInfo>

// A bound on wall time that catches a reader which never ends, not a slow
// one: sanitizer builds on a shared two-core machine run many times slower.
const qint64 kHangBoundMs = 180000;

inline bool writeFile(const QString &path, const QByteArray &content = "x")
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

inline QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A folder's entries in name order, hidden ones included.
inline QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

#endif
