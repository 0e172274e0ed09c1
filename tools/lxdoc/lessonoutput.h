// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_LESSONOUTPUT_H
#define LXDOC_TOOL_LESSONOUTPUT_H

#include <QString>

class ILXDocument;

// The archive a rescue writes. The library packs it into a private folder
// and it is put in place only when complete; an existing file is replaced
// only when the user forces it.
class LessonOutput {
public:
    LessonOutput(const QString &target, bool force);

    // Checked before any work is done.
    bool isUsable(QString *reason) const;
    bool write(ILXDocument *document, QString *reason) const;

private:
    const QString m_target;
    const bool m_force;
};

#endif
