// What each kernel source defines for the instruction set that it is being compiled for. Kernel sources
// include no standard header with inline functions: the linker might keep a copy compiled for a newer
// processor for everybody.
#pragma once

#include "kernels/kernels.h"

namespace kernels::ZVR_INSTRUCTION_SET {

extern const Table table;

#define ZVR_DECLARATION(type, kernel) type kernel;
ZVR_KERNELS(ZVR_DECLARATION)
#undef ZVR_DECLARATION

}  // namespace kernels::ZVR_INSTRUCTION_SET
