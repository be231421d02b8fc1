// The widest vectors of the instruction set that a kernel is being compiled for, so that an algorithm is
// written once. Lanes of each width add, multiply, shift and compare by the usual operators; ZVR_VECTOR names
// the intrinsics that all instruction sets have in common.
#pragma once

// GCC 12 takes the undefined vectors that some of its own definitions name for mistakes.
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
// The same in each 128 bits.
inline Vector allLanes(__m128i lane) {
#if defined(__AVX512VBMI__)
  return _mm512_maskz_broadcast_i32x4(0xFFFF, lane);
#elif defined(__AVX2__)
  return _mm256_broadcastsi128_si256(lane);
#else
  return lane;
#endif
}

// Words from the lower and the upper half of each 128 bits of `low`, with `high` above; and back, words above
// 255 as 255.
inline Words lowerWords(Vector low, Vector high = Vector{}) {
  return reinterpret_cast<Words>(ZVR_VECTOR(unpacklo_epi8)(low, high));
}
inline Words upperWords(Vector low, Vector high = Vector{}) {
  return reinterpret_cast<Words>(ZVR_VECTOR(unpackhi_epi8)(low, high));
}
inline Vector packed(Words lower, Words upper) {
  return ZVR_VECTOR(packus_epi16)(reinterpret_cast<Vector>(lower), reinterpret_cast<Vector>(upper));
}
// The upper halves of the products.
inline Words upperProducts(Words a, Words b) {
  return reinterpret_cast<Words>(
      ZVR_VECTOR(mulhi_epu16)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}

constexpr size_t kLine = 64;  // bytes of a cache line
// What fetches ahead by itself stops at the end of a page; this is far enough to have the next ones at hand.
constexpr size_t kAhead = 16384;
// From this many pixels on a result is written past the caches. Smaller ones are faster in them.
constexpr size_t kStreamedPixels = 3 << 20;

inline void fetchAhead(const void* at, size_t ahead = kAhead) {
  __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(at) + ahead));
}

// Past the caches, to an address that is a multiple of the vector's size.
inline void stream(void* to, Vector vector) {
#if defined(__AVX512VBMI__)
  _mm512_stream_si512(static_cast<Vector*>(to), vector);
#elif defined(__AVX2__)
  _mm256_stream_si256(static_cast<Vector*>(to), vector);
#else
  _mm_stream_si128(static_cast<Vector*>(to), vector);
#endif
}

// Pixels go through maps in blocks of n vectors: map(Vector (&)[n]) changes them.
//
// Fewer pixels than a block has, through `map` in a block of their own.
template <size_t n, typename Map>
__attribute__((always_inline)) inline void mapFew(Pixel* out, const Pixel* in, size_t count, const Map& map) {
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

// out[i] from in[i], block by block; `past` the caches, where `out` begins with a line.
template <size_t n, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Pixel* out, const Pixel* in, size_t count, bool past,
                                                     const Map& map) {
  for (; count >= n * kPixels; count -= n * kPixels, in += n * kPixels, out += n * kPixels) {
    Vector block[n];
    for (size_t i = 0; i < n; ++i) {
      __builtin_memcpy(&block[i], in + i * kPixels, sizeof block[i]);
      // Read once: the compiler would rather read memory again, and across cache lines, than spill.
      __asm__("" : "+x"(block[i]));
      if (past) fetchAhead(in + i * kPixels);
    }
    map(block);
    for (size_t i = 0; i < n; ++i) {
      if (past) {
        stream(out + i * kPixels, block[i]);
      } else {
        __builtin_memcpy(out + i * kPixels, &block[i], sizeof block[i]);
      }
    }
  }
  if (count > 0) mapFew<n>(out, in, count, map);
}

// The same, past the caches where that is faster: while there is something to calculate, only if much is
// written and one vector is a whole line.
template <size_t n, typename Map>
__attribute__((always_inline)) inline void mapBlocks(Pixel* out, const Pixel* in, size_t count,
                                                     const Map& map) {
  const uintptr_t misplaced = reinterpret_cast<uintptr_t>(out) % kLine;
  const bool past = sizeof(Vector) == kLine && count >= kStreamedPixels && misplaced % sizeof(Pixel) == 0;
  const size_t head = past ? (kLine - misplaced) % kLine / sizeof(Pixel) : 0;
  if (head > 0) mapFew<n>(out, in, head, map);
  mapBlocks<n>(out + head, in + head, count - head, past, map);
  if (past) _mm_sfence();  // other threads see the result in order
}

// Blocks of one vector: map(pixels) gives the new ones.
template <typename Map>
__attribute__((always_inline)) inline void mapVectors(Pixel* out, const Pixel* in, size_t count,
                                                      const Map& map) {
  mapBlocks<1>(
      out, in, count, [&](Vector(&block)[1]) __attribute__((always_inline)) { block[0] = map(block[0]); });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
