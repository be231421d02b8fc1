// Reading pixels without writing any: counts, and tests that stop at the first failure.
#pragma once

#include "kernels/families/light_maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {

// Pixels that are looked at together: few enough to stop early, or enough to make up for the look at the
// outcome.
constexpr size_t kSmallBlock = 64, kLargeBlock = 256;

inline bool any(Pixels bits) {
  const auto vector = reinterpret_cast<Vector>(bits);
#if defined(__AVX512VBMI__)
  return _mm512_test_epi32_mask(vector, vector) != 0;
#elif defined(__AVX2__)
  return _mm256_testz_si256(vector, vector) == 0;
#else
  return _mm_movemask_epi8(_mm_cmpeq_epi8(vector, Vector{})) != 0xFFFF;
#endif
}

// state = fold(state, pixels) for all vectors of a block.
template <size_t block, typename Fold>
inline Pixels foldBlock(Pixels state, const Pixel* in, const Fold& fold) {
  constexpr size_t kLinePixels = kLine / sizeof(Pixel);
  for (size_t line = 0; line < block; line += kLinePixels) {
    fetchAhead(in + line);
    for (size_t i = line; i < line + kLinePixels; i += kPixels) state = fold(state, load(in + i));
  }
  return state;
}

// The same for fewer pixels than a block has; what the last vector lacks is filled up with `rest`.
template <typename Fold>
inline Pixels foldRest(Pixels state, const Pixel* in, size_t count, uint32_t rest, const Fold& fold) {
  for (; count >= kPixels; count -= kPixels, in += kPixels) state = fold(state, load(in));
  if (count == 0) return state;
  Pixels last = allOf(rest);
  __builtin_memcpy(&last, in, count * sizeof *in);
  return fold(state, last);
}

// How many of the pixels pass: passes(pixels) has all bits of those that do. `failing` is one that doesn't.
template <typename Passes>
inline uint32_t countWhere(const Pixel* in, size_t count, uint32_t failing, const Passes& passes) {
  const auto fold = [&](Pixels passed, Pixels pixels) {
    return passed - reinterpret_cast<Pixels>(passes(pixels));
  };
  Pixels passed{};
  for (; count >= kLargeBlock; count -= kLargeBlock, in += kLargeBlock)
    passed = foldBlock<kLargeBlock>(passed, in, fold);
  passed = foldRest(passed, in, count, failing, fold);
  uint32_t sum = 0;
  for (size_t i = 0; i < kPixels; ++i) sum += passed[i];
  return sum;
}

// The index of the first block of pixels, the rest counting as one, of which fails(folded from 0) has bits
// set; `count` if there is none.
template <size_t block, typename Fold, typename Fails>
inline size_t findBlock(const Pixel* in, size_t count, const Fold& fold, const Fails& fails) {
  size_t at = 0;
  for (; count - at >= block; at += block)
    if (any(fails(foldBlock<block>(Pixels{}, in + at, fold)))) return at;
  if (at == count) return count;
  return any(fails(foldRest(Pixels{}, in + at, count - at, in[at], fold))) ? at : count;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
