// SPDX-License-Identifier: MIT
#ifndef LXDOC_FUZZMAIN_H
#define LXDOC_FUZZMAIN_H

// The two libFuzzer hooks around one entry function of lxfuzz.h.

#include "lxfuzz.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace lxfuzz {

// The library reports through qWarning on every malformed input; printing
// those would cost more than the parsing being tested.
inline void quietMessages(QtMsgType, const QMessageLogContext &, const QString &)
{
}

inline int runOne(QString (*entry)(const QByteArray &), const uint8_t *data, size_t size)
{
    const QString problem =
        entry(QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size)));
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "lxfuzz: %s\n", qPrintable(problem));
        std::abort();
    }
    return 0;
}

} // namespace lxfuzz

#define LXFUZZ_TARGET(entry)                                                                       \
    extern "C" int LLVMFuzzerInitialize(int *, char ***)                                           \
    {                                                                                              \
        qInstallMessageHandler(lxfuzz::quietMessages);                                             \
        return 0;                                                                                  \
    }                                                                                              \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)                       \
    {                                                                                              \
        return lxfuzz::runOne(entry, data, size);                                                  \
    }

#endif
