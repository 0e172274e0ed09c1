// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOPAINTER_H
#define LXDOC_TOOL_DEMOPAINTER_H

#include "demopagemodel.h"

class QPainter;

// Paints a sample page straight from its model: the board's preview is made
// before the page is written, so it cannot come from the page file.
class DemoPainter {
public:
    DemoPainter(const DemoPageModel &page, const QString &pictureFile);
    void paint(QPainter &painter, QSize target) const;

private:
    void paintGrid(QPainter &painter) const;
    void paintShape(QPainter &painter, const DemoShape &shape) const;
    void paintText(QPainter &painter, const DemoShape &shape) const;

    const DemoPageModel &m_page;
    QString m_pictureFile;
};

#endif
