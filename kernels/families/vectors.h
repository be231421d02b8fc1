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

#include <utility>

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

inline Pixels allOf(uint32_t word) { return Pixels{} + word; }

template <typename Lanes = Pixels>
inline Lanes load(const void* from) {
  Lanes lanes;
  __builtin_memcpy(&lanes, from, sizeof lanes);
  // Keeps them in a register: the compiler would rather load them again.
  __asm__("" : "+x"(lanes));
  return lanes;
}

template <typename Lanes>
inline void store(void* to, Lanes lanes) {
  __builtin_memcpy(to, &lanes, sizeof lanes);
}

// Byte by byte, unsigned.
inline Pixels max(Pixels a, Pixels b) {
  return reinterpret_cast<Pixels>(
      ZVR_VECTOR(max_epu8)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}
inline Pixels min(Pixels a, Pixels b) {
  return reinterpret_cast<Pixels>(
      ZVR_VECTOR(min_epu8)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}
inline Pixels subtractSaturated(Pixels a, Pixels b) {
  return reinterpret_cast<Pixels>(
      ZVR_VECTOR(subs_epu8)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}

// step(0) … step(n - 1), unrolled: a loop that the compiler keeps would hold the vectors in memory.
template <typename Step, size_t... i>
__attribute__((always_inline)) inline void unroll(std::index_sequence<i...>, const Step& step) {
  (step(i), ...);
}
template <size_t n, typename Step>
__attribute__((always_inline)) inline void unroll(const Step& step) {
  unroll(std::make_index_sequence<n>(), step);
}

constexpr size_t kCacheLine = 64;  // bytes
constexpr size_t kLinePixels = kCacheLine / sizeof(Pixel);
// As measured on processors of these instruction sets; those with AVX-512 are faster, their memory is not.
// How far ahead of a sequential read to prefetch, and the shortest stream that a span is split into, in
// bytes; and the streams that maps take in turn: more than two streams of stores would flush each other's
// unfinished lines.
#if defined(__AVX512VBMI__)
constexpr size_t kPrefetchDistance = 2048, kShortestStream = 8192, kMapStreams = 1;
#else
constexpr size_t kPrefetchDistance = 512, kShortestStream = 3072, kMapStreams = 2;
#endif

inline void prefetch(const void* at, size_t ahead = kPrefetchDistance) {
  __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(at) + ahead));
}

// The pixels from `at` to the next cache line, at most `count`: vectors that cross lines are slow.
inline size_t headOf(const Pixel* at, size_t count) {
  const size_t head = (0 - reinterpret_cast<uintptr_t>(at)) % kCacheLine / sizeof(Pixel);
  return head < count ? head : count;
}

// Memory serves several sequential accesses far from each other faster than one. This is the longest distance
// between the streams that a span is split into, in bytes: no power of two, so that streams don't compete for
// the same sets of the caches.
constexpr size_t kLongestStream = 65536 + 1024;

// Calls step(at) for all steps of `length` pixels, or other units of that size in bytes, that fit in from ..
// end - 1, in `streams` streams taken in turn where the range is long enough. Returns the end of the last
// step.
template <size_t streams, size_t length, size_t unit = sizeof(Pixel), typename Step>
__attribute__((always_inline)) inline size_t inStreams(size_t from, size_t end, const Step& step) {
  constexpr size_t kLongest = kLongestStream / unit, kShortest = kShortestStream / unit;
  while (end - from >= streams * kShortest) {
    const size_t most = (end - from) / streams;
    const size_t stream = (most < kLongest ? most : kLongest) / length * length;
    for (size_t i = 0; i < stream; i += length) {
      for (size_t s = 0; s < streams; ++s) step(from + s * stream + i);
    }
    from += streams * stream;
  }
  for (; end - from >= length; from += length) step(from);
  return from;
}

// Every third byte, from the third on.
struct Thirds {
  uint8_t at[2 + 3 * sizeof(Vector)];
  constexpr Thirds() : at() {
    for (size_t i = 2; i < sizeof at; i += 3) at[i] = 255;
  }
};
constexpr Thirds kThirds;

// The bytes of a channel, 0 to 2 for red, green and blue, in the vector at a place: three vectors of RGB24
// pixels, at places 0 to 2, hold whole ones.
inline Vector channelAt(size_t place, size_t channel) {
  Vector bits;
  __builtin_memcpy(&bits, kThirds.at + 2 - channel + place * sizeof bits, sizeof bits);
  return bits;
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

}  // namespace kernels::ZVR_INSTRUCTION_SET
