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

bool areSame(uint32_t a, uint32_t b) { return ((a ^ b) & kColor) == 0; }

// Whether `count` pixels, whole vectors, have a colour. Looks at the ends first, where most pictures fail.
template <size_t count>
bool areAll(const Pixel* in, uint32_t color) {
  if (!areSame(in[0], color) || !areSame(in[count - 1], color)) return false;
  Pixels differing{};
  for (size_t i = 0; i < count; i += kPixels) differing |= load(in + i) ^ allOf(color);
  return !any(differing & kColor);
}

}  // namespace

uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(color << 8);
  return countWhere(in, count, ~color, [=](Pixels p) { return p << 8 == wanted; });
}

void histogram(const Pixel* in, size_t count, ChannelCounts& counts) {
  // Lines of one colour are added once, when another colour follows.
  constexpr size_t kTogether = 8 * kLinePixels;
  uint32_t color = 0, times = 0;
  const size_t head = headOf(in, count);
  for (size_t i = 0; i < head; ++i) countPixel(counts, 0, in[i], 1);
  const auto addLine = [&](const Pixel* line) {
    if (!areAll<kLinePixels>(line, line[0])) {
      for (size_t i = 0; i < kLinePixels; ++i) countPixel(counts, i % kCountingLanes, line[i], 1);
      return;
    }
    if (!areSame(line[0], color)) {
      countPixel(counts, 0, color, times);
      color = line[0];
      times = 0;
    }
    times += kLinePixels;
  };
  size_t at = inStreams<kReadStreams, kTogether>(head, count, [&](size_t from) {
    for (size_t i = 0; i < kTogether; i += kLinePixels) prefetch(in + from + i);
    if (areAll<kTogether>(in + from, color)) {
      times += kTogether;
    } else {
      for (size_t i = 0; i < kTogether; i += kLinePixels) addLine(in + from + i);
    }
  });
  for (; count - at >= kLinePixels; at += kLinePixels) addLine(in + at);
  countPixel(counts, 0, color, times);
  for (; at < count; ++at) countPixel(counts, 0, in[at], 1);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
