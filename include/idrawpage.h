// SPDX-License-Identifier: MIT
#ifndef LXDOC_IDRAWPAGE_H
#define LXDOC_IDRAWPAGE_H

#include <QSize>

class QPixmap;
class ILXDocument;

// A page of the host application. The host's own declaration has further
// operations; the library calls only these two, in this order.
class IDrawPage {
public:
    // Draws the page into target at the given size; the result is not used.
    virtual bool renderPreview(QPixmap *target, QSize size, int reserved) = 0;
    // Writes the page into the document at the given index through the
    // document's page operations.
    virtual bool savePageTo(ILXDocument *document, int index, unsigned int flags) = 0;

protected:
    ~IDrawPage() = default;
};

#endif
