// Tests of whole spans, and the count of colourful pixels.

#include "kernels/families/reads.h"

namespace kernels::ZVR_INSTRUCTION_SET {

bool isAllColor(const Pixel* in, size_t count, int32_t color) {
  const Pixels wanted = allOf(static_cast<uint32_t>(color));
  return findBlock<kLargeBlock>(
             in, count, [=](Pixels differing, Pixels p) { return differing | (p ^ wanted); },
             [](Pixels differing) { return differing & 0xFFFFFF; }) == count;
}

bool isAllGray(const Pixel* in, size_t count, int32_t tolerance) {
  if (tolerance == 0) {
    return findBlock<kLargeBlock>(
               in, count, [](Pixels differing, Pixels p) { return differing | (p ^ p >> 8); },
               [](Pixels differing) { return differing & 0xFFFF; }) == count;
  }
  // The lowest byte of each word gets the largest difference there is between two channels.
  const Pixels tolerated = allOf(static_cast<uint32_t>(tolerance));
  return findBlock<kLargeBlock>(
             in, count,
             [](Pixels widest, Pixels p) {
               const Pixels green = p >> 8, red = p >> 16;
               const Pixels largest = largerBytes(largerBytes(p, green), red);
               const Pixels smallest = smallerBytes(smallerBytes(p, green), red);
               return largerBytes(widest, excess(largest, smallest));
             },
             [=](Pixels widest) { return excess(widest & 0xFF, tolerated); }) == count;
}

uint32_t countColorful(const Pixel* in, size_t count, int32_t threshold) {
  constexpr uint32_t kDark = 29;
  const Pixels dark = allOf(kDark * 0x010101), always = allOf(threshold < 0 ? 1U : 0U);
  const Pixels tolerated = allOf(threshold < 0 ? 0U : static_cast<uint32_t>(threshold) * 0x0101);
  return countWhere(in, count, 0, [=](Pixels p) {
    const Pixels light = excess(p & 0xFFFFFF, dark);
    // Red and blue are compared only with green, on purpose.
    const Pixels shifted = p >> 8, differences = excess(p, shifted) | excess(shifted, p);
    const Pixels colored = excess(differences & 0xFFFF, tolerated) | always;
    return (light != 0) & (colored != 0);
  });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
