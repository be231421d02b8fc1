// Pixels from pixels: the one loop over vectors that all maps share.
#pragma once

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

inline const uint8_t* bytes(const Pixel* pixels) { return reinterpret_cast<const uint8_t*>(pixels); }
inline uint8_t* bytes(Pixel* pixels) { return reinterpret_cast<uint8_t*>(pixels); }

// Maps `period` blocks of n vectors of each source that begin `from` bytes after the pixels.
template <size_t n, size_t period, bool streaming, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapPeriod(Pixel* out, const Pixel* const (&in)[sources],
                                                     size_t from, const Map& map) {
  unroll<period>([&](size_t place) __attribute__((always_inline)) {
    const size_t at = from + place * n * sizeof(Vector);
    Vector block[sources * n];
    unroll<sources * n>([&](size_t i) __attribute__((always_inline)) {
      block[i] = reinterpret_cast<Vector>(load(bytes(in[i / n]) + at + i % n * sizeof(Vector)));
    });
    map(block, place);
    unroll<n>([&](size_t i) __attribute__((always_inline)) {
      uint8_t* to = bytes(out) + at + i * sizeof(Vector);
      if (streaming) {
        stream(to, block[i]);
      } else {
        store(to, reinterpret_cast<Pixels>(block[i]));
      }
    });
  });
}

// Maps the bytes from .. end - 1, fewer than a period holds, in padded blocks.
template <size_t n, size_t period, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapPartial(Pixel* out, const Pixel* const (&in)[sources],
                                                      size_t from, size_t end, const Map& map) {
  const size_t size = end - from;
#if defined(__AVX512VBMI__)
  if constexpr (n * period == 1) {
    Vector block[sources];
    const auto few = static_cast<__mmask16>((1U << size / sizeof(Pixel)) - 1);
    for (size_t k = 0; k < sources; ++k) block[k] = _mm512_maskz_loadu_epi32(few, bytes(in[k]) + from);
    map(block, 0);
    return _mm512_mask_storeu_epi32(bytes(out) + from, few, block[0]);
  }
#endif
  Vector padded[sources][n * period] = {};
  const Pixel* copies[sources];
  for (size_t k = 0; k < sources; ++k) {
    __builtin_memcpy(padded[k], bytes(in[k]) + from, size);
    copies[k] = reinterpret_cast<const Pixel*>(padded[k]);
  }
  mapPeriod<n, period, false>(reinterpret_cast<Pixel*>(padded[0]), copies, 0, map);
  __builtin_memcpy(bytes(out) + from, padded[0], size);
}

// Maps the bytes from .. end - 1.
template <size_t n, size_t period, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapRange(Pixel* out, const Pixel* const (&in)[sources],
                                                    size_t from, size_t end, const Map& map) {
  constexpr size_t kStep = period * n * sizeof(Vector);
  for (; end - from >= kStep; from += kStep) mapPeriod<n, period, false>(out, in, from, map);
  if (from < end) mapPartial<n, period>(out, in, from, end, map);
}

// Maps as many of the bytes from .. end - 1 as make up whole lines and returns the first one that is left.
// Precondition: byte `from` of `out` begins a cache line.
template <size_t n, size_t period, bool streaming, size_t sources, typename Map>
__attribute__((always_inline)) inline size_t mapLines(Pixel* out, const Pixel* const (&in)[sources],
                                                      size_t from, size_t end, const Map& map) {
  constexpr size_t kLines = n * period, kStep = kLines * kCacheLine;  // as a period of the widest vectors
  return inStreams<kMapStreams, kStep, 1>(
      from, end, [&](size_t at) __attribute__((always_inline)) {
        unroll<sources * kLines>([&](size_t i) __attribute__((always_inline)) {
          prefetch(bytes(in[i % sources]) + at + i / sources * kCacheLine);
        });
        for (size_t i = 0; i < kStep; i += period * n * sizeof(Vector))
          mapPeriod<n, period, streaming>(out, in, at + i, map);
      });
}

// Maps `size` bytes of each source in blocks of n vectors of the first source, then n of the second, and so
// on: map(Vector (&)[sources * n], place) leaves the results in the first n. `place` counts the blocks modulo
// `period`.
template <size_t n, size_t period, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapBytes(Output out, const Pixel* const (&in)[sources],
                                                    size_t size, const Map& map) {
  // What comes before the first line must not shift a period.
  constexpr size_t kWhole = period == 1 ? sizeof(Pixel) : period * n * sizeof(Vector);
  constexpr size_t kLong = 2048;  // from this size on, vectors that cross lines cost more than a head
  const size_t head = (0 - reinterpret_cast<uintptr_t>(out.pixels)) % kCacheLine;
  if (head % kWhole != 0 || head >= size || (!out.streams && size < kLong))
    return mapRange<n, period>(out, in, 0, size, map);
  if (head > 0) mapRange<n, period>(out, in, 0, head, map);
  mapRange<n, period>(out, in,
                      out.streams ? mapLines<n, period, true>(out, in, head, size, map)
                                  : mapLines<n, period, false>(out, in, head, size, map),
                      size, map);
}

// out[i] from in[0][i], in[1][i] …, n vectors of each at a time: map(Vector (&)[sources * n]) as in mapBytes.
template <size_t n, size_t sources, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Output out, const Pixel* const (&in)[sources],
                                                     size_t count, const Map& map) {
  mapBytes<n, 1>(
      out, in,
      count * sizeof(Pixel), [&](Vector(&block)[sources * n], size_t) __attribute__((always_inline)) {
        map(block);
      });
}

// The same for RGB24 pixels, a vector of each source at a time: map(Vector (&)[sources], place) returns the
// new bytes. Three vectors, of places 0 to 2, hold whole pixels.
template <size_t sources, typename Map>
__attribute__((always_inline)) inline void mapRGB24(Output out, const Pixel* const (&in)[sources],
                                                    size_t count, const Map& map) {
  mapBytes<1, 3>(
      out, in, count * 3, [&](Vector(&block)[sources], size_t place) __attribute__((always_inline)) {
        block[0] = map(block, place);
      });
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
