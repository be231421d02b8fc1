// What the plug-in takes from the heap: this program's malloc and its relatives count while they are told to.
#pragma once

#include <cstddef>

namespace bench {

struct HeapUse {
  size_t now = 0, peak = 0;  // bytes
  int blocks = 0;            // that were asked for
};

// Counts from zero until `stopCounting`, but not while paused. A block that was there before must not be
// freed in between.
void startCounting();
HeapUse stopCounting();
void pauseCounting(bool pause);

// Large blocks that are freed stay with the program, for the next that asks for as much: the pages of these
// are touched. This clears those that were used, so that nothing is cleared while the plug-in is measured.
void clearSpareBlocks();

}  // namespace bench
