// Maps that have so little to calculate that memory is all they wait for.
#pragma once

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

inline Pixels allOf(uint32_t word) { return Pixels{} + word; }

inline Pixels load(const void* from) {
  Pixels pixels;
  __builtin_memcpy(&pixels, from, sizeof pixels);
  // Read once: the compiler would rather read memory again, and across cache lines, than keep it.
  __asm__("" : "+x"(pixels));
  return pixels;
}

inline void store(void* to, Pixels pixels) { __builtin_memcpy(to, &pixels, sizeof pixels); }

// Larger and smaller bytes, and differences of bytes, 0 for those below 0.
inline Pixels largerBytes(Pixels a, Pixels b) {
  return reinterpret_cast<Pixels>(
      ZVR_VECTOR(max_epu8)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}
inline Pixels smallerBytes(Pixels a, Pixels b) {
  return reinterpret_cast<Pixels>(
      ZVR_VECTOR(min_epu8)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}
inline Pixels excess(Pixels a, Pixels b) {
  return reinterpret_cast<Pixels>(
      ZVR_VECTOR(subs_epu8)(reinterpret_cast<Vector>(a), reinterpret_cast<Vector>(b)));
}

// out[i] = map({in[0][i], in[1][i] ...}), vector by vector.
template <size_t n, typename Map>
inline void mapThroughCaches(Pixel* out, const Pixel* const (&in)[n], size_t from, size_t end,
                             const Map& map) {
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

// The same, past the caches if there is much of it. A line that is written as a whole need not be read first,
// which saves a third of the traffic. Vectors of 16 bytes are too small for it to pay, and so is it where
// there is more to calculate: the processor then waits for one after the other.
template <size_t n, typename Map>
inline void mapLightly(Pixel* out, const Pixel* const (&in)[n], size_t count, const Map& map) {
  const size_t misplaced = reinterpret_cast<uintptr_t>(out) % kLine;
  if (sizeof(Vector) < 32 || count < kStreamedPixels || misplaced % sizeof(Pixel) != 0)
    return mapThroughCaches(out, in, 0, count, map);
  constexpr size_t kLinePixels = kLine / sizeof(Pixel);
  size_t at = (kLinePixels - misplaced / sizeof(Pixel)) % kLinePixels;
  mapThroughCaches(out, in, 0, at, map);
  for (; count - at >= kLinePixels; at += kLinePixels) {
    for (size_t k = 0; k < n; ++k) fetchAhead(in[k] + at);
    for (size_t part = at; part < at + kLinePixels; part += kPixels) {
      Pixels pixels[n];
      for (size_t k = 0; k < n; ++k) pixels[k] = load(in[k] + part);
      stream(out + part, reinterpret_cast<Vector>(map(pixels)));
    }
  }
  _mm_sfence();  // other threads see the result in order
  mapThroughCaches(out, in, at, count, map);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
