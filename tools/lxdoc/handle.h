// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_HANDLE_H
#define LXDOC_TOOL_HANDLE_H

#include "lxdoc.h"

#include <memory>

// Everything the library hands out is ended with its own release(), never
// with delete (the interfaces have no public destructor).
struct LibraryRelease {
    void operator()(ILXDocument *document) const { document->release(false); }
    template <typename T>
    void operator()(T *object) const { object->release(); }
};

template <typename T>
using Handle = std::unique_ptr<T, LibraryRelease>;

#endif
