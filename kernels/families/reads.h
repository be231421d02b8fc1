// Read-only passes over pixels: counts, and tests that stop at the first failure.
#pragma once

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

// Pixels per block: a small block stops early, a large one amortises the check of its outcome.
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
  constexpr size_t kCacheLinePixels = kCacheLine / sizeof(Pixel);
  for (size_t line = 0; line < block; line += kCacheLinePixels) {
    prefetch(in + line);
    for (size_t i = line; i < line + kCacheLinePixels; i += kPixels) state = fold(state, load(in + i));
  }
  return state;
}

// The same for the tail, fewer pixels than a block; `padding` fills up the last vector.
template <typename Fold>
inline Pixels foldTail(Pixels state, const Pixel* in, size_t count, uint32_t padding, const Fold& fold) {
  for (; count >= kPixels; count -= kPixels, in += kPixels) state = fold(state, load(in));
  if (count == 0) return state;
  Pixels last = allOf(padding);
  __builtin_memcpy(&last, in, count * sizeof *in);
  return fold(state, last);
}

// Counts the pixels that pass: passes(pixels) sets all bits of those that do. `failing` is a pixel that
// fails.
template <typename Passes>
inline uint32_t countWhere(const Pixel* in, size_t count, uint32_t failing, const Passes& passes) {
  const auto fold = [&](Pixels passed, Pixels pixels) {
    return passed - reinterpret_cast<Pixels>(passes(pixels));
  };
  Pixels passed{};
  for (; count >= kLargeBlock; count -= kLargeBlock, in += kLargeBlock)
    passed = foldBlock<kLargeBlock>(passed, in, fold);
  passed = foldTail(passed, in, count, failing, fold);
  uint32_t sum = 0;
  for (size_t i = 0; i < kPixels; ++i) sum += passed[i];
  return sum;
}

// The index of the first block for which fails(folded from 0) has any bit set; `count` if there is none. The
// tail counts as a block.
template <size_t block, typename Fold, typename Fails>
inline size_t findBlock(const Pixel* in, size_t count, const Fold& fold, const Fails& fails) {
  size_t at = 0;
  for (; count - at >= block; at += block)
    if (any(fails(foldBlock<block>(Pixels{}, in + at, fold)))) return at;
  if (at == count) return count;
  return any(fails(foldTail(Pixels{}, in + at, count - at, in[at], fold))) ? at : count;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
