// Counting pixels: those of one colour, and those of each value of a channel.

#include "kernels/families/reads.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

void countPixel(ChannelCounts& counts, size_t lane, uint32_t pixel, uint32_t times) {
  counts.red[lane][pixel >> 16 & 0xFF] += times;
  counts.green[lane][pixel >> 8 & 0xFF] += times;
  counts.blue[lane][pixel & 0xFF] += times;
}

}  // namespace

uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(color << 8);
  return countWhere(in, count, ~color, [=](Pixels p) { return p << 8 == wanted; });
}

void countChannels(const Pixel* in, size_t count, ChannelCounts& counts) {
  static_assert(kCountingLanes == 4);
  for (; count >= 4; count -= 4, in += 4) {
    const uint32_t a = in[0], b = in[1], c = in[2], d = in[3];
    if ((((a ^ b) | (a ^ c) | (a ^ d)) & 0xFFFFFF) == 0) {
      countPixel(counts, 0, a, 4);
    } else {
      countPixel(counts, 0, a, 1);
      countPixel(counts, 1, b, 1);
      countPixel(counts, 2, c, 1);
      countPixel(counts, 3, d, 1);
    }
  }
  for (; count > 0; --count) countPixel(counts, 0, *in++, 1);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
