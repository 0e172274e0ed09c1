// SPDX-License-Identifier: MIT
#ifndef LXDOC_TESTS_SCOPEDDOCUMENT_H
#define LXDOC_TESTS_SCOPEDDOCUMENT_H

#include "document/qlxdocument.h"

// A document released when the test function leaves, also on a failed
// check; release() deletes its working folder, so tests only ever give it
// folders of their own.
class ScopedDocument {
public:
    ScopedDocument() : m_document(new QLXDocument) {}
    ~ScopedDocument() { release(); }
    ScopedDocument(const ScopedDocument &) = delete;
    ScopedDocument &operator=(const ScopedDocument &) = delete;

    QLXDocument *operator->() const { return m_document; }
    QLXDocument *get() const { return m_document; }
    void release()
    {
        if (m_document)
            static_cast<ILXDocument *>(m_document)->release(false);
        m_document = nullptr;
    }

private:
    QLXDocument *m_document;
};

#endif
