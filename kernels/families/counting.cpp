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

// Whether `lines` lines of pixels have a colour.
template <size_t lines>
__attribute__((always_inline)) inline bool areAll(const Pixel* line, Pixels color) {
  Pixels differing{};
  for (size_t i = 0; i < lines; ++i) {
    differing =
        foldLine(differing, line + i * kLinePixels, [=](Pixels sum, Pixels p) { return sum | (p ^ color); });
  }
  return !any(differing & kColor);
}

}  // namespace

uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(color << 8);
  return countWhere(in, count, ~color, [=](Pixels p) { return p << 8 == wanted; });
}

void histogram(const Pixel* in, size_t count, ChannelCounts& counts) {
  // Lines of one colour are added once, when another colour follows.
  constexpr size_t kTogether = 8;
  uint32_t times = 0;
  Pixels color{};
  const size_t head = headOf(in, count);
  for (size_t i = 0; i < head; ++i) countPixel(counts, 0, in[i], 1);
  const auto addLine = [&](const Pixel* line) {
    if (areAll<1>(line, color)) {
      times += kLinePixels;
    } else if (areAll<1>(line, allOf(line[0]))) {
      countPixel(counts, 0, color[0], times);
      color = allOf(line[0]);
      times = kLinePixels;
    } else {
      for (size_t i = 0; i < kLinePixels; ++i) countPixel(counts, i % kCountingLanes, line[i], 1);
    }
  };
  size_t at = inStreams<kReadStreams, kTogether * kLinePixels>(head, count, [&](size_t from) {
    if (areAll<kTogether>(in + from, color)) {
      times += kTogether * kLinePixels;
    } else {
      for (size_t i = 0; i < kTogether; ++i) addLine(in + from + i * kLinePixels);
    }
  });
  for (; count - at >= kLinePixels; at += kLinePixels) addLine(in + at);
  countPixel(counts, 0, color[0], times);
  for (; at < count; ++at) countPixel(counts, 0, in[at], 1);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
