// In the place of kernels/dispatch.cpp: the library with one instruction set alone, for comparison.

#include "kernels/kernels.h"

namespace kernels {
namespace ZVR_INSTRUCTION_SET {
extern const Table table;
}

const Table& best() { return ZVR_INSTRUCTION_SET::table; }

}  // namespace kernels
