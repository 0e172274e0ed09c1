// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_RENDERCOMMAND_H
#define LXDOC_TOOL_RENDERCOMMAND_H

#include <QStringList>

class LessonPages;

// "lxdoc render": every page to PNG, and all pages to one PDF.
class RenderCommand {
public:
    static int run(const QStringList &arguments);

    struct Outputs {
        QString folder;
        QString pdf;  // empty: no PDF
        QString size; // "WxH", or empty for the page size
        bool force;
    };
    // Shared with "demo": draws pages into the folder (and the PDF when given).
    static int renderPages(const LessonPages &pages, const Outputs &outputs);
};

#endif
