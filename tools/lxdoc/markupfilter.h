// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_MARKUPFILTER_H
#define LXDOC_TOOL_MARKUPFILTER_H

#include <QString>

struct SvgNode;

// What of a page reaches the picture. A page comes from anyone: what would
// run code, fetch something from outside the lesson, repeat drawing without
// bound or hand the painter numbers no board has is left out, so the SVG
// drawn (by QtSvg or by a browser) is only the page's own shapes.
class MarkupFilter {
public:
    static bool isDrawable(const SvgNode &element);
    static bool keepsAttribute(const QString &name, const QString &value);
    static bool keepsText(const QString &text);
    // True when every number in a geometry value is finite and within the
    // largest board.
    static bool isSaneGeometry(const QString &value);
};

#endif
