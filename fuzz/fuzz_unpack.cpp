// SPDX-License-Identifier: MIT
#include "fuzzmain.h"

LXFUZZ_TARGET(lxfuzz::runUnpack)
