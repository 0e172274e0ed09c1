// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_RAWARGUMENTS_H
#define LXDOC_TOOL_RAWARGUMENTS_H

#include <QString>

// The command line as the system gave it, before Qt decodes it: a file name
// that is not valid UTF-8 decodes to another name, which then "does not exist".
class RawArguments {
public:
    RawArguments(int argc, char **argv);

    // The first argument that names an existing file or folder but is not
    // valid UTF-8, shown with its bad bytes replaced; empty when there is none.
    QString unusableName() const;

private:
    int m_argc;
    char **m_argv;
};

#endif
