// Read-only passes over pixels: counts, and tests that stop at the first failure.
#pragma once

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

constexpr size_t kReadStreams = 4;

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

// state = fold(state, pixels) for all vectors of a line.
template <typename Fold>
__attribute__((always_inline)) inline Pixels foldLine(Pixels state, const Pixel* in, const Fold& fold,
                                                      size_t ahead = kPrefetchDistance) {
  prefetch(in, ahead);
  for (size_t i = 0; i < kLinePixels; i += kPixels) state = fold(state, load(in + i));
  return state;
}

// The same for `count` pixels; `padding` fills up the last vector.
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
  const size_t head = headOf(in, count);
  Pixels passed = foldTail(Pixels{}, in, head, failing, fold);
  const size_t lines = inStreams<kReadStreams, kLinePixels>(
      head,
      count, [&](size_t at) __attribute__((always_inline)) { passed = foldLine(passed, in + at, fold); });
  passed = foldTail(passed, in + lines, count - lines, failing, fold);
  uint32_t sum = 0;
  for (size_t i = 0; i < kPixels; ++i) sum += passed[i];
  return sum;
}

struct Part {
  size_t from, end;
};

// Looks at growing parts of the pixels: returns the first for which fails(folded from 0) has any bit set, or
// an empty one at the end.
template <typename Fold, typename Fails>
inline Part findPart(const Pixel* in, size_t count, const Fold& fold, const Fails& fails) {
  constexpr size_t kFirst = 64, kLongest = kReadStreams * kLongestStream / sizeof(Pixel);
  size_t from = 0, end = headOf(in, count), length = kFirst;
  for (;;) {
    Pixels state{};
    const size_t lines = inStreams<kReadStreams, kLinePixels>(
        from, end, [&](size_t at) __attribute__((always_inline)) { state = foldLine(state, in + at, fold); });
    if (lines < end) state = foldTail(state, in + lines, end - lines, in[lines], fold);
    if (any(fails(state))) return {from, end};
    if (end == count) return {count, count};
    from = end;
    end = count - from < length ? count : from + length;
    length = length * 2 < kLongest ? length * 2 : kLongest;
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
