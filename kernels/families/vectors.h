// The widest vectors of the instruction set being compiled for, so that each algorithm is written once. Lanes
// of each width add, multiply, shift and compare with the usual operators; ZVR_VECTOR names the intrinsics
// that all instruction sets share.
#pragma once

// GCC 12 warns about the deliberately undefined vectors in its own headers.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop

#include "kernels/families/families.h"

#if defined(__AVX512VBMI__)
#define ZVR_VECTOR(operation) _mm512_##operation
#elif defined(__AVX2__)
#define ZVR_VECTOR(operation) _mm256_##operation
#else
#define ZVR_VECTOR(operation) _mm_##operation
#endif

namespace kernels::ZVR_INSTRUCTION_SET {

#if defined(__AVX512VBMI__)
using Vector = __m512i;
#elif defined(__AVX2__)
using Vector = __m256i;
#else
using Vector = __m128i;
#endif

typedef uint8_t Bytes __attribute__((vector_size(sizeof(Vector))));
typedef uint16_t Words __attribute__((vector_size(sizeof(Vector))));
typedef uint32_t Pixels __attribute__((vector_size(sizeof(Vector))));

constexpr size_t kPixels = sizeof(Vector) / sizeof(Pixel);

inline Vector allPixels(uint32_t word) { return ZVR_VECTOR(set1_epi32)(static_cast<int32_t>(word)); }
inline Vector allWords(uint32_t word) { return ZVR_VECTOR(set1_epi16)(static_cast<int16_t>(word)); }
// The same 128 bits in each 128-bit lane.
inline Vector allLanes(__m128i lane) {
#if defined(__AVX512VBMI__)
  return _mm512_maskz_broadcast_i32x4(0xFFFF, lane);
#elif defined(__AVX2__)
  return _mm256_broadcastsi128_si256(lane);
#else
  return lane;
#endif
}

// Interleaves the lower or upper half of each 128-bit lane: bytes of `low` become the low bytes of words,
// bytes of `high` the high bytes. `packed` is the inverse and saturates words above 255 to 255.
inline Words lowerWords(Vector low, Vector high = Vector{}) {
  return reinterpret_cast<Words>(ZVR_VECTOR(unpacklo_epi8)(low, high));
}
inline Words upperWords(Vector low, Vector high = Vector{}) {
  return reinterpret_cast<Words>(ZVR_VECTOR(unpackhi_epi8)(low, high));
}
inline Vector packed(Words lower, Words upper) {
  return ZVR_VECTOR(packus_epi16)(reinterpret_cast<Vector>(lower), reinterpret_cast<Vector>(upper));
}
// The high 16 bits of each product.
inline Words multiplyHigh(Words a, Words b) {
  return reinterpret_cast<Words>(
      ZVR_VECTOR(mulhi_epu16)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}

constexpr size_t kCacheLine = 64;  // bytes
// The hardware prefetcher stops at the end of a page; this distance reaches the pages after it. In bytes.
constexpr size_t kPrefetchDistance = 16384;
// Results of at least this many pixels use streaming stores. Smaller ones are faster in the caches.
constexpr size_t kStreamingThreshold = 3 << 20;

inline void prefetch(const void* at, size_t ahead = kPrefetchDistance) {
  __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(at) + ahead));
}

// A non-temporal store. `to` must be aligned to the vector's size.
inline void stream(void* to, Vector vector) {
#if defined(__AVX512VBMI__)
  _mm512_stream_si512(static_cast<Vector*>(to), vector);
#elif defined(__AVX2__)
  _mm256_stream_si256(static_cast<Vector*>(to), vector);
#else
  _mm_stream_si128(static_cast<Vector*>(to), vector);
#endif
}

// Maps work on blocks of n vectors: map(Vector (&)[n]) changes a block in place.
//
// Maps fewer pixels than a block holds, in a padded block of their own.
template <size_t n, typename Map>
__attribute__((always_inline)) inline void mapPartial(Pixel* out, const Pixel* in, size_t count,
                                                      const Map& map) {
  Vector block[n] = {};
#if defined(__AVX512VBMI__)
  if constexpr (n == 1) {
    const auto few = static_cast<__mmask16>((1U << count) - 1);
    block[0] = _mm512_maskz_loadu_epi32(few, in);
    map(block);
    return _mm512_mask_storeu_epi32(out, few, block[0]);
  }
#endif
  __builtin_memcpy(block, in, count * sizeof *in);
  map(block);
  __builtin_memcpy(out, block, count * sizeof *out);
}

// out[i] from in[i], block by block. `streaming`: uses streaming stores; `out` must be cache-line aligned.
template <size_t n, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Pixel* out, const Pixel* in, size_t count,
                                                     bool streaming, const Map& map) {
  for (; count >= n * kPixels; count -= n * kPixels, in += n * kPixels, out += n * kPixels) {
    Vector block[n];
    for (size_t i = 0; i < n; ++i) {
      __builtin_memcpy(&block[i], in + i * kPixels, sizeof block[i]);
      // Keeps the block in registers: the compiler would rather load it again than spill.
      __asm__("" : "+x"(block[i]));
      if (streaming) prefetch(in + i * kPixels);
    }
    map(block);
    for (size_t i = 0; i < n; ++i) {
      if (streaming) {
        stream(out + i * kPixels, block[i]);
      } else {
        __builtin_memcpy(out + i * kPixels, &block[i], sizeof block[i]);
      }
    }
  }
  if (count > 0) mapPartial<n>(out, in, count, map);
}

// The same, with streaming stores where they are faster: for maps that do some arithmetic, only if the result
// is large and one vector is a whole cache line.
template <size_t n, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Pixel* out, const Pixel* in, size_t count,
                                                     const Map& map) {
  const uintptr_t misalignment = reinterpret_cast<uintptr_t>(out) % kCacheLine;
  const bool streaming =
      sizeof(Vector) == kCacheLine && count >= kStreamingThreshold && misalignment % sizeof(Pixel) == 0;
  const size_t head = streaming ? (kCacheLine - misalignment) % kCacheLine / sizeof(Pixel) : 0;
  if (head > 0) mapPartial<n>(out, in, head, map);
  mapBlocks<n>(out + head, in + head, count - head, streaming, map);
  if (streaming) _mm_sfence();  // orders the streaming stores for other threads
}

// Blocks of one vector: map(pixels) returns the new pixels.
template <typename Map>
__attribute__((always_inline)) inline void mapVectors(Pixel* out, const Pixel* in, size_t count,
                                                      const Map& map) {
  mapBlocks<1>(
      out, in, count, [&](Vector(&block)[1]) __attribute__((always_inline)) { block[0] = map(block[0]); });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
