// Tables of colours with entries that are hard to divide by, on every instruction set that this machine has.

#include <algorithm>

#include "kernels/kernels.h"
#include "tests/filter_models.h"

namespace {

using Words = std::vector<uint32_t>;

kernels::Pixel* pixels(Words& words) { return words.data(); }

// Sums around 17 * k, where kernels may calculate otherwise than by dividing.
TEST(FilterKernels, EntriesAtAndJustBelowEachWholeNumber) {
  const kernels::Tables sets = kernels::supported();
  Words in;
  for (uint32_t gray = 0; gray < 64; ++gray)
    in.insert(in.end(), {gray * 0x010101, gray << 16 | 17, gray * 3});
  Words out(in.size()), expected(in.size());
  for (int k = 1; k <= 256; ++k) {
    const double below = std::nextafter(k, 0), farBelow = std::nextafter(below, 0);
    const std::vector<double> cube = makeCube([&](const auto&, size_t x) {
      return x == 0 ? k : x == 1 ? below : farBelow;
    });
    plain::mapThroughCube(pixels(expected), pixels(in), in.size(), 0, cube.data());
    for (int set = 0; set < sets.count; ++set) {
      sets.table[set]->mapThroughCube(pixels(out), pixels(in), in.size(), 0, cube.data());
      ASSERT_EQ(out, expected) << sets.table[set]->name << ' ' << k;
    }
  }
}

}  // namespace
