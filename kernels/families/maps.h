// Pixels from pixels: the one loop over vectors that all maps share.
#pragma once

#include <utility>

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

// How much a map does for each pixel. It decides how large results are stored: a cache line that streaming
// stores write as a whole need not be read first, which saves a third of the traffic of a copy.
enum class Work {
  // Memory bandwidth is the limit: streaming stores pay from vectors of 32 bytes on.
  kLight,
  // The processor waits for arithmetic and for memory in turn: they pay only where a vector is a whole line.
  kHeavy,
};
template <Work work>
constexpr size_t kNarrowestStreamed = work == Work::kLight ? 32 : kCacheLine;

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

// Maps the pixels from .. end - 1. `streaming`: with streaming stores; out + from must begin a cache line.
template <size_t n, bool streaming, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapRange(Pixel* out, const Pixel* const (&in)[sources],
                                                    size_t from, size_t end, const Map& map) {
  for (; end - from >= n * kPixels; from += n * kPixels) {
    Vector block[sources * n];
    unroll<sources * n>([&](size_t i) __attribute__((always_inline)) {
      const Pixel* at = in[i / n] + from + i % n * kPixels;
      block[i] = reinterpret_cast<Vector>(load(at));
      if (streaming) prefetch(at);
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
  if (from < end) mapPartial<n>(out, in, from, end, map);
}

// out[i] from in[0][i], in[1][i] …, in blocks of n vectors of the first source, then n of the second, and so
// on: map(Vector (&)[sources * n]) leaves the results in the first n.
template <Work work, size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Pixel* out, const Pixel* const (&in)[sources],
                                                     size_t count, const Map& map) {
  const size_t misalignment = reinterpret_cast<uintptr_t>(out) % kCacheLine;
  if (sizeof(Vector) < kNarrowestStreamed<work> || count < kStreamingThreshold ||
      misalignment % sizeof(Pixel) != 0)
    return mapRange<n, false>(out, in, 0, count, map);
  const size_t head = (kCacheLine - misalignment) % kCacheLine / sizeof(Pixel);
  mapRange<n, false>(out, in, 0, head, map);
  mapRange<n, true>(out, in, head, count, map);
  _mm_sfence();  // orders the streaming stores for other threads
}

// A vector of each source at a time. Light maps return the new pixels: map(Pixels (&)[sources]).
template <size_t sources, typename Map>
__attribute__((always_inline)) inline void mapLightly(Pixel* out, const Pixel* const (&in)[sources],
                                                      size_t count, const Map& map) {
  mapBlocks<Work::kLight, 1>(
      out, in, count, [&](Vector(&block)[sources]) __attribute__((always_inline)) {
        Pixels pixels[sources];
        unroll<sources>([&](size_t k) { pixels[k] = reinterpret_cast<Pixels>(block[k]); });
        block[0] = reinterpret_cast<Vector>(map(pixels));
      });
}

// A vector at a time. Heavy maps of one source: map(pixels) returns the new pixels.
template <typename Map>
__attribute__((always_inline)) inline void mapVectors(Pixel* out, const Pixel* in, size_t count,
                                                      const Map& map) {
  mapBlocks<Work::kHeavy, 1>(
      out, {in}, count, [&](Vector(&block)[1]) __attribute__((always_inline)) { block[0] = map(block[0]); });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
