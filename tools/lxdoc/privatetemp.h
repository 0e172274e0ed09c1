// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_PRIVATETEMP_H
#define LXDOC_TOOL_PRIVATETEMP_H

#include <QString>

// A private folder of one run in the system's temporary folder, removed
// with everything in it when the object goes, when the run is interrupted
// (SIGINT, SIGTERM), or by a later run once the owning process is gone: the
// folder name carries the process id ("lxdoc-<pid>-XXXXXX").
class PrivateTemp {
public:
    PrivateTemp();
    ~PrivateTemp();
    PrivateTemp(const PrivateTemp &) = delete;
    PrivateTemp &operator=(const PrivateTemp &) = delete;

    bool isValid() const;
    QString path() const;
    QString filePath(const QString &name) const;
    QString errorString() const;

    static void installSignalHandlers();
    // Removes the folders of earlier runs of this user whose process is gone.
    static void removeLeftovers();
    // Whether path is a folder (or a file) of this user left by process pid, now gone.
    static bool isLeftover(const QByteArray &path, qint64 pid, bool folder);

private:
    QString m_path;
    QString m_error;
    int m_slot = -1;
};

#endif
