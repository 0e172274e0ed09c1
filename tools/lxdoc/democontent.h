// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOCONTENT_H
#define LXDOC_TOOL_DEMOCONTENT_H

#include "demopagemodel.h"

#include <QList>
#include <QString>

// The sample lesson: always the same pages, shapes and recordings, so its
// output can be compared from run to run.
class DemoContent {
public:
    // pictureName is the lesson-relative name of the sample picture.
    static QList<DemoPageModel> pages(const QString &pictureName);
    // Draws the sample picture and saves it as PNG.
    static bool writePicture(const QString &path);

private:
    static DemoPageModel shapesPage(const QString &pictureName);
    // Line caps and end decorations, one of each.
    static QList<DemoShape> lineEnds();
    static DemoPageModel freehandPage();
    static DemoPageModel picturePage(const QString &pictureName);
    static QList<DemoCommand> recording(const QList<DemoShape> &shapes);
    static DemoShape shape(DemoShape::Kind kind, const QRectF &box, const QColor &stroke,
                           const QColor &fill, float width);
    static tagPageGrid grid(int step, const QColor &color, Qt::PenStyle style);
};

#endif
