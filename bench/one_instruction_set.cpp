// Replaces kernels/dispatch.cpp: the library with only one instruction set, for comparison.

#include "kernels/kernels.h"

namespace kernels {
namespace ZVR_INSTRUCTION_SET {
extern const Table table;
}

const Table& best() { return ZVR_INSTRUCTION_SET::table; }

}  // namespace kernels
