// Every kernel as it is defined: one pixel at a time, in the most literal arithmetic.
#pragma once

#include <algorithm>
#include <utility>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace plain {

using namespace kernels;

// A kernel without a definition does not link.
#define ZVR_DECLARATION(type, kernel) type kernel;
ZVR_KERNELS(ZVR_DECLARATION)
#undef ZVR_DECLARATION
extern const Table kTable;

inline bool isGray(uint32_t p) { return red(p) == green(p) && green(p) == blue(p); }

// Of a table that entry(r, g, b, channel) reads. From the lower corner the way leads along the axis of the
// largest share first. Of equal shares the smallest step in the table goes first, beginning with those that
// are none; that shows only where entries are infinite or no numbers.
template <typename Entry>
Rgb tetrahedral(uint32_t pixel, const Entry& entry) {
  const int values[3] = {red(pixel), green(pixel), blue(pixel)};
  int corner[3], share[3], step[3], axes[3] = {0, 1, 2};
  for (int a = 0; a < 3; ++a) {
    corner[a] = values[a] / 17;
    share[a] = values[a] % 17;
    step[a] = corner[a] == 15 ? 0 : 3 - a;
  }
  const auto isBefore = [&](int a, int b) {
    return share[a] != share[b] ? share[a] > share[b] : step[a] < step[b];
  };
  for (const int left : {0, 1, 0}) {
    if (isBefore(axes[left + 1], axes[left])) std::swap(axes[left], axes[left + 1]);
  }
  double sums[3];
  const double first = 17 - share[axes[0]];
  for (int x = 0; x < 3; ++x) sums[x] = first * entry(corner[0], corner[1], corner[2], x);
  for (int i = 0; i < 3; ++i) {
    corner[axes[i]] = std::min(corner[axes[i]] + 1, 15);
    const double weight = share[axes[i]] - (i < 2 ? share[axes[i + 1]] : 0);
    for (int x = 0; x < 3; ++x) sums[x] += weight * entry(corner[0], corner[1], corner[2], x);
  }
  const auto limited = [](double v) { return v >= 255 ? 255 : v > 0 ? static_cast<int>(v) : 0; };
  return rgb(limited(sums[0] / 17), limited(sums[1] / 17), limited(sums[2] / 17));
}
inline size_t cubeIndex(int r, int g, int b, size_t side) {
  return (static_cast<size_t>(r) * side + static_cast<size_t>(g)) * side + static_cast<size_t>(b);
}
}  // namespace plain
