// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_DEMOSHAPEWRITER_H
#define LXDOC_TOOL_DEMOSHAPEWRITER_H

#include "demopagemodel.h"

#include <initializer_list>
#include <utility>

class ILXFrontPage;
class ILXObject;

// Writes sample shapes as page objects through the object interface, as
// plain SVG elements so any SVG viewer shows the page.
class DemoShapeWriter {
public:
    static bool write(ILXFrontPage *page, const DemoShape &shape, int gid);

private:
    static void writeStyle(ILXObject *object, const DemoShape &shape);
    static void writeGeometry(ILXObject *object, const DemoShape &shape);
    using NamedNumber = std::pair<const char *, double>;
    static void writeNumbers(ILXObject *object, std::initializer_list<NamedNumber> numbers);
    static void writeRect(ILXObject *object, const QRectF &box);
    static void writeText(ILXObject *object, const DemoShape &shape);
    static void writeImage(ILXObject *object, const DemoShape &shape);
};

#endif
