// Pixels from pixels: the one loop over vectors that all maps share.
#pragma once

#include <utility>

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

// step(0) … step(n - 1), unrolled: a loop that the compiler keeps would hold the vectors in memory.
template <typename Step, size_t... i>
__attribute__((always_inline)) inline void unroll(std::index_sequence<i...>, const Step& step) {
  (step(i), ...);
}
template <size_t n, typename Step>
__attribute__((always_inline)) inline void unroll(const Step& step) {
  unroll(std::make_index_sequence<n>(), step);
}

// Maps the pixels from .. end - 1, fewer than a block holds, in a padded block.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapPartial(Pixel* out, const Pixel* const (&in)[sources],
                                                      size_t from, size_t end, const Map& map) {
  Vector block[sources * n] = {};
#if defined(__AVX512VBMI__)
  if constexpr (n == 1) {
    const auto few = static_cast<__mmask16>((1U << (end - from)) - 1);
    for (size_t k = 0; k < sources; ++k) block[k] = _mm512_maskz_loadu_epi32(few, in[k] + from);
    map(block);
    return _mm512_mask_storeu_epi32(out + from, few, block[0]);
  }
#endif
  const size_t size = (end - from) * sizeof(Pixel);
  for (size_t k = 0; k < sources; ++k) __builtin_memcpy(&block[k * n], in[k] + from, size);
  map(block);
  __builtin_memcpy(out + from, block, size);
}

template <size_t n, bool streaming, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapBlock(Pixel* out, const Pixel* const (&in)[sources],
                                                    size_t from, const Map& map) {
  Vector block[sources * n];
  unroll<sources * n>([&](size_t i) __attribute__((always_inline)) {
    block[i] = reinterpret_cast<Vector>(load(in[i / n] + from + i % n * kPixels));
  });
  map(block);
  unroll<n>([&](size_t i) __attribute__((always_inline)) {
    Pixel* at = out + from + i * kPixels;
    if (streaming) {
      stream(at, block[i]);
    } else {
      store(at, reinterpret_cast<Pixels>(block[i]));
    }
  });
}

// Maps the pixels from .. end - 1.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapRange(Pixel* out, const Pixel* const (&in)[sources],
                                                    size_t from, size_t end, const Map& map) {
  for (; end - from >= n * kPixels; from += n * kPixels) mapBlock<n, false>(out, in, from, map);
  if (from < end) mapPartial<n>(out, in, from, end, map);
}

// Maps as many of the pixels from .. end - 1 as make up whole lines, with streaming stores, and returns the
// first one that is left. Precondition: out + from begins a cache line.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline size_t streamRange(Pixel* out, const Pixel* const (&in)[sources],
                                                         size_t from, size_t end, const Map& map) {
  // One block or more, as the lines are.
  constexpr size_t kStep = n * kPixels < kLinePixels ? kLinePixels : n * kPixels;
  // More than two streams of stores would flush each other's unfinished lines.
  return inStreams<2, kStep>(
      from, end, [&](size_t at) __attribute__((always_inline)) {
        unroll<sources * kStep / kLinePixels>([&](size_t i) __attribute__((always_inline)) {
          prefetch(in[i % sources] + at + i / sources * kLinePixels);
        });
        for (size_t block = 0; block < kStep; block += n * kPixels)
          mapBlock<n, true>(out, in, at + block, map);
      });
}

// out[i] from in[0][i], in[1][i] …, in blocks of n vectors of the first source, then n of the second, and so
// on: map(Vector (&)[sources * n]) leaves the results in the first n.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Output out, const Pixel* const (&in)[sources],
                                                     size_t count, const Map& map) {
  const size_t misalignment = reinterpret_cast<uintptr_t>(out.pixels) % kCacheLine;
  if (!out.streams || misalignment % sizeof(Pixel) != 0) return mapRange<n>(out, in, 0, count, map);
  const size_t head = (kCacheLine - misalignment) % kCacheLine / sizeof(Pixel);
  if (head >= count) return mapRange<n>(out, in, 0, count, map);
  mapRange<n>(out, in, 0, head, map);
  mapRange<n>(out, in, streamRange<n>(out, in, head, count, map), count, map);
}

// A vector of each source at a time: map(Pixels (&)[sources]) returns the new pixels.
template <size_t sources, typename Map>
__attribute__((always_inline)) inline void mapLightly(Output out, const Pixel* const (&in)[sources],
                                                      size_t count, const Map& map) {
  mapBlocks<1>(
      out, in, count, [&](Vector(&block)[sources]) __attribute__((always_inline)) {
        Pixels pixels[sources];
        unroll<sources>([&](size_t k) { pixels[k] = reinterpret_cast<Pixels>(block[k]); });
        block[0] = reinterpret_cast<Vector>(map(pixels));
      });
}

// The same for one source: map(pixels).
template <typename Map>
__attribute__((always_inline)) inline void mapVectors(Output out, const Pixel* in, size_t count,
                                                      const Map& map) {
  mapBlocks<1>(
      out, {in}, count, [&](Vector(&block)[1]) __attribute__((always_inline)) { block[0] = map(block[0]); });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
