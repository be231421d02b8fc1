// Memory blocks that a caller made for an operation: they may be shorter than they should be.
#pragma once

#include "frame/text.h"

// How many of the first `wanted` bytes lie in the block, and so may be read or written. All of them on a host
// that can't tell the size of blocks: there the caller is trusted.
inline int64_t bytesWithin(const rbData& block, int64_t wanted) {
  if (!block.data()) return 0;
  if (block.length() <= 0) return HCallResolver("memoryBlockGetSize") ? 0 : wanted;
  return block.length() < wanted ? block.length() : wanted;
}
