// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PRIVATEFOLDER_H
#define LXDOC_TOOL_PRIVATEFOLDER_H

#include <QByteArray>
#include <QString>

// A folder only this run uses, removed with everything in it when the
// object goes, on every way out of a command, deep trees included.
class PrivateFolder {
public:
    // pattern ends in "XXXXXX", which becomes a unique part of the name.
    explicit PrivateFolder(const QString &pattern);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder &) = delete;
    PrivateFolder &operator=(const PrivateFolder &) = delete;

    bool isValid() const;
    QString path() const;
    QString filePath(const QString &name) const;
    // Renames the folder to target (a missing or empty folder) and lets it go.
    bool moveTo(const QString &target);

private:
    QByteArray m_path;
};

#endif
