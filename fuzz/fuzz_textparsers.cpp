#include "fuzzmain.h"

LXFUZZ_TARGET(lxfuzz::runTextParsers)
