// Memory blocks that a caller filled, or made, for an operation: they may be shorter than they should be.
#pragma once

#include "frame/text.h"

// How many of the first `wanted` bytes lie in the block, and so may be read or written. None when the block
// has no bytes at all; all of them when the host knows the bytes but not their number.
inline int32_t bytesWithin(const rbData& block, int32_t wanted) {
  if (!block.data()) return 0;
  return block.length() <= 0 || block.length() > wanted ? wanted : block.length();
}
