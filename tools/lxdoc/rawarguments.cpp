// SPDX-License-Identifier: MIT
#include "rawarguments.h"

#include <sys/stat.h>

namespace {

bool isUtf8(const unsigned char *text)
{
    while (*text) {
        const unsigned char lead = *text++;
        const int follow = lead < 0x80 ? 0 : lead >= 0xc2 && lead < 0xe0 ? 1 : lead >= 0xe0 && lead < 0xf0 ? 2
                                                                         : lead >= 0xf0 && lead < 0xf5 ? 3 : -1;
        if (follow < 0)
            return false;
        for (int i = 0; i < follow; ++i) {
            if ((*text++ & 0xc0) != 0x80)
                return false;
        }
    }
    return true;
}

} // namespace

RawArguments::RawArguments(int argc, char **argv)
    : m_argc(argc)
    , m_argv(argv)
{
}

QString RawArguments::unusableName() const
{
    for (int index = 1; index < m_argc; ++index) {
        const char *argument = m_argv[index];
        struct stat status;
        if (!isUtf8(reinterpret_cast<const unsigned char *>(argument)) && ::lstat(argument, &status) == 0)
            return QString::fromUtf8(argument);
    }
    return QString();
}
