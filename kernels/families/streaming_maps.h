// Maps so cheap that memory bandwidth limits them.
#pragma once

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

inline Pixels allOf(uint32_t word) { return Pixels{} + word; }

inline Pixels load(const void* from) {
  Pixels pixels;
  __builtin_memcpy(&pixels, from, sizeof pixels);
  // Keeps the pixels in a register: the compiler would rather load them again.
  __asm__("" : "+x"(pixels));
  return pixels;
}

inline void store(void* to, Pixels pixels) { __builtin_memcpy(to, &pixels, sizeof pixels); }

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

// out[i] = map({in[0][i], in[1][i] ...}), vector by vector.
template <size_t n, typename Map>
inline void mapCached(Pixel* out, const Pixel* const (&in)[n], size_t from, size_t end, const Map& map) {
  Pixels pixels[n];
  for (; end - from >= kPixels; from += kPixels) {
    for (size_t k = 0; k < n; ++k) pixels[k] = load(in[k] + from);
    store(out + from, map(pixels));
  }
  if (from == end) return;
  for (size_t k = 0; k < n; ++k) {
    pixels[k] = Pixels{};
    __builtin_memcpy(&pixels[k], in[k] + from, (end - from) * sizeof(Pixel));
  }
  const Pixels last = map(pixels);
  __builtin_memcpy(out + from, &last, (end - from) * sizeof(Pixel));
}

// The same, with streaming stores for large results. A cache line that is written whole need not be read
// first, which saves a third of the traffic. This doesn't pay with 16-byte vectors, nor for maps with more
// arithmetic, where the processor waits first for one and then for the other.
template <size_t n, typename Map>
inline void mapStreaming(Pixel* out, const Pixel* const (&in)[n], size_t count, const Map& map) {
  const size_t misalignment = reinterpret_cast<uintptr_t>(out) % kCacheLine;
  if (sizeof(Vector) < 32 || count < kStreamingThreshold || misalignment % sizeof(Pixel) != 0)
    return mapCached(out, in, 0, count, map);
  constexpr size_t kCacheLinePixels = kCacheLine / sizeof(Pixel);
  size_t at = (kCacheLinePixels - misalignment / sizeof(Pixel)) % kCacheLinePixels;
  mapCached(out, in, 0, at, map);
  for (; count - at >= kCacheLinePixels; at += kCacheLinePixels) {
    for (size_t k = 0; k < n; ++k) prefetch(in[k] + at);
    for (size_t part = at; part < at + kCacheLinePixels; part += kPixels) {
      Pixels pixels[n];
      for (size_t k = 0; k < n; ++k) pixels[k] = load(in[k] + part);
      stream(out + part, reinterpret_cast<Vector>(map(pixels)));
    }
  }
  _mm_sfence();  // orders the streaming stores for other threads
  mapCached(out, in, at, count, map);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
