#include "document/qlxdocument.h"
#include "lxdoc.h"

#include <new>

ILXDocument *get_interface()
{
    // A host gets null rather than an exception across the C boundary.
    return new (std::nothrow) QLXDocument;
}
