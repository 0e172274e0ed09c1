// SPDX-License-Identifier: MIT
#ifndef LXDOC_LESSONPATH_H
#define LXDOC_LESSONPATH_H

#include <QString>

class QFile;

// The one rule for names that come from inside a lesson (manifest lists,
// page and record file names, image and media references, background
// templates): such a name is resolved inside the lesson's folder or it is
// not used. The library, the renderer and every command of the tool ask here.
//
// A name is refused when it is empty, absolute, carries a URL scheme
// ("file:", "http:", "C:"), holds a NUL or a backslash, or has a ".." step
// that leaves the folder. Opening walks the name step by step from a
// descriptor of the folder without following any symbolic link, and opens
// the last step without blocking, so a name swapped for a link, a FIFO or a
// device between a check and the open cannot slip through; only regular
// files are handed out.
class LessonPath {
public:
    enum Verdict {
        Regular,    // a regular file inside the folder, reached through no link
        Missing,    // a name that stays inside, but no such file
        Outside,    // the name itself leads outside (absolute, URL, "..")
        Link,       // a step of it is a symbolic link
        NotRegular  // a folder, FIFO, device or socket
    };

    // The cleaned relative form of name ("a/./b" -> "a/b"), or an empty
    // string when the name could lead outside the folder.
    static QString clean(const QString &name);
    // folder + "/" + clean(name), or empty when the name is refused.
    static QString inside(const QString &folder, const QString &name);
    // What name is inside folder, looked at without following links.
    static Verdict inspect(const QString &folder, const QString &name);
    // A descriptor open for reading on a regular file, or -1 (errno set).
    static int openRegular(const QString &folder, const QString &name);
    // As openRegular, handed to file (which then owns the descriptor).
    static bool open(QFile *file, const QString &folder, const QString &name);
    // The same checks on a full path whose last step is opened without
    // following a link; for paths the library built itself.
    static int openRegularPath(const QString &path);

    static QString verdictText(Verdict verdict);
};

#endif
