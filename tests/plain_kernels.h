// Every kernel as it is defined: one pixel at a time, in the most literal arithmetic.
#pragma once

#include "kernels/kernels.h"
#include "tests/values.h"

namespace plain {

using namespace kernels;

// A kernel without a definition does not link.
#define ZVR_DECLARATION(type, kernel) type kernel;
ZVR_KERNELS(ZVR_DECLARATION)
#undef ZVR_DECLARATION
extern const Table kTable;

inline bool isGray(uint32_t p) { return red(p) == green(p) && green(p) == blue(p); }

}  // namespace plain
