// Memory blocks from callers; they may be shorter than expected.
#pragma once

#include "frame/text.h"

// The number of the first `wanted` bytes that lie in the block and may be accessed. All of them on a host
// that can't tell a block's size: there the caller is trusted.
inline int64_t bytesWithin(const rbData& block, int64_t wanted) {
  if (!block.data()) return 0;
  if (block.length() <= 0) return HCallResolver("memoryBlockGetSize") ? 0 : wanted;
  return block.length() < wanted ? block.length() : wanted;
}
