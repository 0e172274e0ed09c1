// SPDX-License-Identifier: MIT
#ifndef LXDOC_LINECAPSTYLE_H
#define LXDOC_LINECAPSTYLE_H

// End decoration of a line, stored as a marker name ("ArrowAnchor", ...).
enum LineCapStyle {
    LineCapNone = 0,
    LineCapArrow = 1,
    LineCapSquare = 2,
    LineCapRound = 3,
    LineCapDiamond = 4
};

#endif
