// Heap use of the plug-in: replacements for malloc and its relatives that count on request.
#pragma once

#include <cstddef>

namespace bench {

struct HeapUse {
  size_t now = 0, peak = 0;  // bytes
  int blocks = 0;            // allocations
};

// Counts from zero until `stopCounting`, except while paused. Precondition: blocks allocated before are not
// freed in between.
void startCounting();
HeapUse stopCounting();
void pauseCounting(bool pause);

// Freed large blocks are kept for the next allocation of that size, because their pages are already mapped.
// This clears used ones, so that no clearing happens while the plug-in is measured.
void clearSpareBlocks();

}  // namespace bench
