// Pixels from pixels: the one loop over vectors that all maps share.
#pragma once

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

// Maps the pixels from .. end - 1, fewer than a block holds, in a padded block.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapPartial(Pixel* out, const Pixel* const (&in)[sources],
                                                      size_t from, size_t end, const Map& map) {
  Vector block[sources][n] = {};
#if defined(__AVX512VBMI__)
  if constexpr (n == 1) {
    const auto few = static_cast<__mmask16>((1U << (end - from)) - 1);
    for (size_t k = 0; k < sources; ++k) block[k][0] = _mm512_maskz_loadu_epi32(few, in[k] + from);
    map(block);
    return _mm512_mask_storeu_epi32(out + from, few, block[0][0]);
  }
#endif
  for (size_t k = 0; k < sources; ++k) __builtin_memcpy(block[k], in[k] + from, (end - from) * sizeof(Pixel));
  map(block);
  __builtin_memcpy(out + from, block[0], (end - from) * sizeof(Pixel));
}

// Maps the pixels from .. end - 1. `streaming`: by streaming stores; out + from must begin a cache line.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapRange(Pixel* out, const Pixel* const (&in)[sources],
                                                    size_t from, size_t end, bool streaming, const Map& map) {
  for (; end - from >= n * kPixels; from += n * kPixels) {
    Vector block[sources][n];
    for (size_t i = 0; i < n; ++i) {
      for (size_t k = 0; k < sources; ++k) {
        const Pixel* at = in[k] + from + i * kPixels;
        __builtin_memcpy(&block[k][i], at, sizeof block[k][i]);
        // Keeps the block in registers: the compiler would rather load it again than spill.
        __asm__("" : "+x"(block[k][i]));
        if (streaming) prefetch(at);
      }
    }
    map(block);
    for (size_t i = 0; i < n; ++i) {
      if (streaming) {
        stream(out + from + i * kPixels, block[0][i]);
      } else {
        __builtin_memcpy(out + from + i * kPixels, &block[0][i], sizeof block[0][i]);
      }
    }
  }
  if (from < end) mapPartial<n>(out, in, from, end, map);
}

// out[i] from in[0][i], in[1][i] …, in blocks of n vectors of each source: map(Vector (&)[sources][n]) leaves
// the results in place of the first source's.
template <Work work, size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Pixel* out, const Pixel* const (&in)[sources],
                                                     size_t count, const Map& map) {
  const size_t misalignment = reinterpret_cast<uintptr_t>(out) % kCacheLine;
  if (sizeof(Vector) < kNarrowestStreamed<work> || count < kStreamingThreshold ||
      misalignment % sizeof(Pixel) != 0)
    return mapRange<n>(out, in, 0, count, false, map);
  const size_t head = (kCacheLine - misalignment) % kCacheLine / sizeof(Pixel);
  mapRange<n>(out, in, 0, head, false, map);
  mapRange<n>(out, in, head, count, true, map);
  _mm_sfence();  // orders the streaming stores for other threads
}

// One vector at a time. Light maps get a vector of each source and return the new pixels: map(Pixels
// (&)[sources]).
template <size_t sources, typename Map>
inline void mapLightly(Pixel* out, const Pixel* const (&in)[sources], size_t count, const Map& map) {
  mapBlocks<Work::kLight, 1>(
      out, in, count, [&](Vector(&block)[sources][1]) __attribute__((always_inline)) {
        Pixels pixels[sources];
        for (size_t k = 0; k < sources; ++k) pixels[k] = reinterpret_cast<Pixels>(block[k][0]);
        block[0][0] = reinterpret_cast<Vector>(map(pixels));
      });
}

// Heavy maps of one source: map(pixels) returns the new pixels.
template <typename Map>
__attribute__((always_inline)) inline void mapVectors(Pixel* out, const Pixel* in, size_t count,
                                                      const Map& map) {
  const Pixel* const sources[] = {in};
  mapBlocks<Work::kHeavy, 1>(
      out, sources,
      count, [&](Vector(&block)[1][1]) __attribute__((always_inline)) { block[0][0] = map(block[0][0]); });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
