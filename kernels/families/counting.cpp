// Counts the pixels of one colour, and histograms.

#include "kernels/families/reads.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr uint32_t kColor = 0xFFFFFF;

void countPixel(ChannelCounts& counts, size_t lane, uint32_t pixel, uint32_t times) {
  counts.red[lane][pixel >> 16 & 0xFF] += times;
  counts.green[lane][pixel >> 8 & 0xFF] += times;
  counts.blue[lane][pixel & 0xFF] += times;
}

// Whether a line of pixels has one colour.
bool isOneColor(const Pixel* line) {
  const Pixels first = allOf(line[0]);
  return !any(foldLine(Pixels{}, line, [=](Pixels differing, Pixels p) { return differing | (p ^ first); }) &
              kColor);
}

}  // namespace

uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(color << 8);
  return countWhere(in, count, ~color, [=](Pixels p) { return p << 8 == wanted; });
}

void histogram(const Pixel* in, size_t count, ChannelCounts& counts) {
  // Lines of one colour are added once, when another colour follows.
  uint32_t color = 0, times = 0;
  const size_t head = headOf(in, count);
  for (size_t i = 0; i < head; ++i) countPixel(counts, 0, in[i], 1);
  const size_t lines = inStreams<kReadStreams, kLinePixels>(head, count, [&](size_t at) {
    const Pixel* const line = in + at;
    if (!isOneColor(line)) {
      for (size_t i = 0; i < kLinePixels; ++i) countPixel(counts, i % kCountingLanes, line[i], 1);
    } else if (((line[0] ^ color) & kColor) == 0) {
      times += kLinePixels;
    } else {
      countPixel(counts, 0, color, times);
      color = line[0];
      times = kLinePixels;
    }
  });
  countPixel(counts, 0, color, times);
  for (size_t i = lines; i < count; ++i) countPixel(counts, 0, in[i], 1);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
