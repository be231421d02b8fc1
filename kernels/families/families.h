// Declares the kernels of the instruction set being compiled for. Kernel sources include no standard header
// with inline functions: the linker might keep the copy compiled for a newer processor for everyone.
#pragma once

#include "kernels/kernels.h"

namespace kernels::ZVR_INSTRUCTION_SET {

extern const Table table;

#define ZVR_DECLARATION(type, kernel) type kernel;
ZVR_KERNELS(ZVR_DECLARATION)
#undef ZVR_DECLARATION

}  // namespace kernels::ZVR_INSTRUCTION_SET
