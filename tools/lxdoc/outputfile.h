// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_OUTPUTFILE_H
#define LXDOC_TOOL_OUTPUTFILE_H

#include <QString>

// A file the tool writes for the user: an archive or a PDF, or the standard
// output for "-". The finished file is copied beside the target under a name
// of its own and renamed over it, so a failure at any moment leaves the
// older file whole. A replaced file keeps its mode (and owner, where the
// process may set it); a symbolic link stays and the file it names is
// replaced. An existing file of another kind is replaced only when forced.
class OutputFile {
public:
    enum Kind { Archive, Pdf };

    OutputFile(const QString &target, Kind kind, bool force = false);

    bool isStandardOutput() const;
    // Whether the target can be written, asked before any work is done.
    bool check();
    bool publish(const QString &finished);
    // One line: "cannot write 'x.lzn': Read-only file system".
    QString error() const;

private:
    QString resolvedTarget() const;
    bool isOfKind(const QString &path) const;
    bool writeCopy(const QString &finished, const QString &target);
    // Partial files beside the target left by runs that were killed.
    static void removeLeftoverPartials(const QString &target);
    bool copyInto(const QString &finished, int fd);
    bool writeStandardOutput(const QString &finished);
    bool fail(const QString &reason);
    bool failWithErrno();

    QString m_target;
    Kind m_kind;
    bool m_force;
    QString m_error;
};

#endif
