// SPDX-License-Identifier: MIT
#ifndef LXDOC_PAGEFORMAT_H
#define LXDOC_PAGEFORMAT_H

// The numbers are never stored: pages keep the id text ("lzn", "doc", ...).
enum PageFormat {
    PageFormatNone = 0,
    PageFormatLzn = 1,
    PageFormatDoc = 2,
    PageFormatPpt = 3,
    PageFormatExcel = 4,
    PageFormatPdf = 5
};

#endif
