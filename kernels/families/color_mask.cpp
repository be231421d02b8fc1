// Finds coloured pixels that are not covered.

#include "kernels/families/reads.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Some bit set where a pixel is coloured: blue differs from green or green from red.
template <typename Words>
Words colorOf(Words pixels) {
  return (pixels ^ pixels >> 8) << 16;
}

}  // namespace

size_t findUncovered(const Pixel* in, const Pixel* out, size_t count) {
  const auto isUncovered = [=](size_t i) {
    return any(colorOf(load(in + i)) & reinterpret_cast<Pixels>(load(out + i) << 8 != 0));
  };
  size_t at = 0;
  // The caller writes some pixels after reading as many: this reaches those that it reads next.
  constexpr size_t kPieceDistance = 16384, kBlock = 4 * kLinePixels;
  for (; count - at >= kBlock; at += kBlock) {
    Pixels found{};
    for (size_t i = at; i < at + kBlock; i += kLinePixels) {
      found = foldLine(
          found, in + i, [](Pixels any, Pixels p) { return any | colorOf(p); }, kPieceDistance);
    }
    if (!any(found)) continue;
    size_t i = at;
    while (i < at + kBlock && !isUncovered(i)) i += kPixels;
    if (i < at + kBlock) break;
  }
  while (count - at >= kPixels && !isUncovered(at)) at += kPixels;
  while (at < count && (colorOf(+in[at]) == 0 || out[at] << 8 == 0)) ++at;
  return at;
}

size_t findUncoveredRGB24(const uint8_t* in, const uint8_t* out, size_t count) {
  // In bytes: each is compared with the next of its pixel. One more is read than a block has.
  constexpr size_t kBlock = 3 * sizeof(Vector);
  const size_t end = count * 3;
  const auto colorOf = [=](size_t i, size_t k) {
    const auto blue = reinterpret_cast<Pixels>(channelAt(k / sizeof(Vector), 2));
    return (load(in + i + k) ^ load(in + i + k + 1)) & ~blue;
  };
  size_t at = 0;
  for (; end - at > kBlock; at += kBlock) {
    Pixels found{};
    for (size_t k = 0; k < kBlock; k += sizeof(Vector)) {
      prefetch(in + at + k);
      found |= colorOf(at, k);
    }
    if (!any(found)) continue;
    found = Pixels{};
    for (size_t k = 0; k < kBlock; k += sizeof(Vector))
      found |= colorOf(at, k) & (load(out + at + k) | load(out + at + k + 1));
    if (any(found)) break;
  }
  const auto isUncovered = [=](size_t i) {
    return (in[i] != in[i + 1] || in[i + 1] != in[i + 2]) && (out[i] | out[i + 1] | out[i + 2]) != 0;
  };
  while (at < end && !isUncovered(at)) at += 3;
  return at / 3;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
