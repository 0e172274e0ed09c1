#ifndef LXDOC_TOOL_RENDERCOMMAND_H
#define LXDOC_TOOL_RENDERCOMMAND_H

#include <QStringList>

class LessonPages;

// "lxdoc render": every page to PNG, and all pages to one PDF.
class RenderCommand {
public:
    static int run(const QStringList &arguments);

    // Shared with "demo": draws pages into folder (and pdf when given); size is "WxH" or empty.
    static int renderPages(const LessonPages &pages, const QString &folder, const QString &pdf, const QString &size);
};

#endif
