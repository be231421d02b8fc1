// Film looks in the table of a PictureLut3DZVR.
#pragma once

#include "zvr/files/cube.h"
#include "zvr/language/filters.h"

namespace zvr {

// Entries along an axis of the table that the class uses.
constexpr int64_t kTableSide = 16;

// action(r, g, b) for each used entry, blue changing fastest.
template <typename Action>
void forEachEntry(Action action) {
  for (int64_t r = 0; r < kTableSide; ++r) {
    for (int64_t g = 0; g < kTableSide; ++g) {
      for (int64_t b = 0; b < kTableSide; ++b) action(r, g, b);
    }
  }
}

// Fills a PictureLut3DZVR's table through its setter, entry by entry, so that results are rounded. Throws
// UsageError for a class without a table and Failure for an exception.
void fillTable(Filter& filter, const Cube& cube);

}  // namespace zvr
