// The table of one instruction set.

#include "kernels/families/families.h"

#define ZVR_NAME_OF(set) #set
#define ZVR_NAME(set) ZVR_NAME_OF(set)

namespace kernels::ZVR_INSTRUCTION_SET {

const Table table = {ZVR_NAME(ZVR_INSTRUCTION_SET), ZVR_KERNELS(ZVR_ADDRESS)};

}  // namespace kernels::ZVR_INSTRUCTION_SET
