// Maps each channel through a lookup table.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {

#ifdef __AVX512VBMI__

namespace {

// Swaps the bytes of `a` selected by `right` with the bytes of `b` that lie n bits lower.
void exchange(Vector& a, Vector& b, uint32_t n, __mmask64 right) {
  const Vector left = _mm512_maskz_slli_epi32(0xFFFF, b, n);
  b = _mm512_mask_blend_epi8(right, _mm512_maskz_srli_epi32(0xFFFF, a, n), b);
  a = _mm512_mask_blend_epi8(right, a, left);
}

// Swaps byte j of each word of vector i with byte i of each word of vector j: pixels become channels, and
// channels pixels.
void transpose(Vector (&v)[4]) {
  constexpr __mmask64 kOdd = 0xAAAAAAAAAAAAAAAA, kUpper = 0xCCCCCCCCCCCCCCCC;
  exchange(v[0], v[1], 8, kOdd);
  exchange(v[2], v[3], 8, kOdd);
  exchange(v[0], v[2], 16, kUpper);
  exchange(v[1], v[3], 16, kUpper);
}

// Looks up 64 bytes. A table fills four vectors; one instruction looks up in two of them.
Vector lookUp(const uint8_t* table, Vector bytes) {
  // Reads the table in place: the compiler would rather copy all tables to the stack first.
  __asm__("" : "+r"(table));
  const auto quarter = [=](size_t i) {
    Vector entries;
    __builtin_memcpy(&entries, table + i * sizeof entries, sizeof entries);
    return entries;
  };
  const Vector lower = _mm512_permutex2var_epi8(quarter(0), bytes, quarter(1));
  const Vector upper = _mm512_permutex2var_epi8(quarter(2), bytes, quarter(3));
  return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), lower, upper);
}

}  // namespace

void mapThroughTables(Output out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  const Vector tops = allPixels(top | top >> 8 | top >> 16 | top >> 24);
  mapBlocks<4>(
      out, {in}, count, [&](Vector(&block)[4]) __attribute__((always_inline)) {
        transpose(block);
        block[0] = lookUp(tables.blue, block[0]);
        block[1] = lookUp(tables.green, block[1]);
        block[2] = lookUp(tables.red, block[2]);
        block[3] = tops;
        transpose(block);
      });
}

#else

// Scalar: gathering entries with vectors is slower.
void mapThroughTables(Output out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  const auto& placed = tables.placed;
  const auto mapped = [&](uint32_t pixel) {
    return placed.red[pixel >> 16 & 0xFF] | placed.green[pixel >> 8 & 0xFF] | placed.blue[pixel & 0xFF] | top;
  };
  constexpr size_t kAtOnce = 16;
  size_t from = 0;
  for (; count - from >= kAtOnce; from += kAtOnce) {
    for (size_t i = from; i < from + kAtOnce; ++i) out[i] = mapped(in[i]);
  }
  for (; from < count; ++from) out[from] = mapped(in[from]);
}

#endif

}  // namespace kernels::ZVR_INSTRUCTION_SET
