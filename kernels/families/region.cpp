// Tests whole spans, and counts colourful pixels.

#include "kernels/families/reads.h"

namespace kernels::ZVR_INSTRUCTION_SET {

bool isAllColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(static_cast<uint32_t>(color));
  return findPart(
             in, count, [=](Pixels differing, Pixels p) { return differing | (p ^ wanted); },
             [](Pixels differing) { return differing & 0xFFFFFF; })
             .from == count;
}

bool isAllGray(const Pixel* in, size_t count, int32_t tolerance) {
  if (tolerance == 0) {
    return findPart(
               in, count, [](Pixels differing, Pixels p) { return differing | (p ^ p >> 8); },
               [](Pixels differing) { return differing & 0xFFFF; })
               .from == count;
  }
  // The lowest byte of each word collects the largest difference between two channels.
  const Pixels tolerated = allOf(static_cast<uint32_t>(tolerance));
  return findPart(
             in, count,
             [](Pixels widest, Pixels p) {
               const Pixels green = p >> 8, red = p >> 16;
               const Pixels largest = max(max(p, green), red);
               const Pixels smallest = min(min(p, green), red);
               return max(widest, subtractSaturated(largest, smallest));
             },
             [=](Pixels widest) { return subtractSaturated(widest & 0xFF, tolerated); })
             .from == count;
}

uint32_t countColorful(const Pixel* in, size_t count, int32_t threshold) {
  // No byte exceeds FF, so an FF here leaves that byte out of the comparison.
  const Pixels dark = allOf(0xFF1D1D1D);
  if (threshold < 0)
    return countWhere(in, count, 0, [=](Pixels p) { return subtractSaturated(p, dark) != 0; });
  const Pixels tolerated = allOf(0xFFFF0000 | static_cast<uint32_t>(threshold) * 0x0101);
  return countWhere(in, count, 0, [=](Pixels p) {
    // Red and blue are compared only with green, never with each other, on purpose.
    const Pixels shifted = p >> 8,
                 differences = subtractSaturated(p, shifted) | subtractSaturated(shifted, p);
    return ~((subtractSaturated(p, dark) == 0) | (subtractSaturated(differences, tolerated) == 0));
  });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
