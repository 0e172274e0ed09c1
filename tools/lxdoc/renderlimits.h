// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_RENDERLIMITS_H
#define LXDOC_TOOL_RENDERLIMITS_H

#include <QCommandLineOption>
#include <QStringList>

class CommandLine;

// How much a page from anyone may make the drawing commands do. Every limit
// of drawing lives here, so the defaults, their names on the command line
// and the texts of refusals agree. The defaults leave a real board's pages
// far inside; a user who trusts a lesson raises them with --limit.
class RenderLimits {
public:
    // Page side in page units; a larger page is a damaged page file.
    double side = 20000;
    // Pixels of one drawn image (256 MiB of pixels).
    double pixels = double(8192) * 8192;
    // Characters of one attribute; a 100,000-point stroke takes under 2 MB.
    double value = 4 * 1024 * 1024;
    // Characters of one text run.
    double text = 64 * 1024;
    // Largest magnitude of any coordinate, size or stroke width.
    double coordinate = 1e6;
    // Rasteriser work one page may take, as DrawingCost estimates it.
    double drawing = 4e7;

    static const RenderLimits &current();
    static QCommandLineOption option();
    // Applies the command's --limit values ("NAME=NUMBER", also several
    // joined by commas) to the limits every drawing command reads.
    static bool apply(const CommandLine &line, QString *error);

private:
    bool set(const QString &assignment, QString *error);
};

#endif
