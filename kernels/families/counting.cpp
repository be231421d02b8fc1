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

// Pixels per block.
constexpr size_t kBlock = 8;
static_assert(kBlock % kCountingLanes == 0 && kLinePixels % kBlock == 0);

bool isOneColor(const Pixel* block) {
  const __m128i first = _mm_set1_epi32(static_cast<int32_t>(block[0]));
  __m128i halves[2];
  __builtin_memcpy(halves, block, sizeof halves);
  const __m128i differing = _mm_and_si128((halves[0] ^ first) | (halves[1] ^ first), _mm_set1_epi32(kColor));
  return _mm_movemask_epi8(_mm_cmpeq_epi32(differing, _mm_setzero_si128())) == 0xFFFF;
}

}  // namespace

uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(color << 8);
  return countWhere(in, count, ~color, [=](Pixels p) { return p << 8 == wanted; });
}

void histogram(const Pixel* in, size_t count, ChannelCounts& counts) {
  // Blocks of one colour are added once, when another colour follows.
  uint32_t color = 0, times = 0;
  const auto countBlock = [&](const Pixel* block) {
    if (!isOneColor(block)) {
      for (size_t i = 0; i < kBlock; ++i) countPixel(counts, i % kCountingLanes, block[i], 1);
    } else if (((block[0] ^ color) & kColor) == 0) {
      times += kBlock;
    } else {
      countPixel(counts, 0, color, times);
      color = block[0];
      times = kBlock;
    }
  };
  const size_t lines = inStreams<kReadStreams, kLinePixels>(0, count, [&](size_t at) {
    prefetch(in + at);
    for (size_t i = 0; i < kLinePixels; i += kBlock) countBlock(in + at + i);
  });
  countPixel(counts, 0, color, times);
  for (size_t i = lines; i < count; ++i) countPixel(counts, 0, in[i], 1);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
