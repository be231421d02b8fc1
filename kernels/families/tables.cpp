// Each channel through a lookup table.

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {

#ifdef __AVX512VBMI__

namespace {

// Looks up the bytes that `where` says and sets the top bytes. A table is four vectors, and an instruction
// looks up in two of them.
void lookUp(Pixel* out, const Pixel* in, size_t count, uint32_t top, const uint8_t* entries,
            __mmask64 where) {
  Vector first, second, third, fourth;
  __builtin_memcpy(&first, entries, sizeof first);
  __builtin_memcpy(&second, entries + 64, sizeof second);
  __builtin_memcpy(&third, entries + 128, sizeof third);
  __builtin_memcpy(&fourth, entries + 192, sizeof fourth);
  __asm__("" : "+x"(first), "+x"(second), "+x"(third), "+x"(fourth));  // to be kept in registers
  const Vector color = allPixels(0xFFFFFF), tops = allPixels(top);
  mapVectors(
      out, in, count, false, [&](Vector pixels) __attribute__((always_inline)) {
        const Vector lower = _mm512_permutex2var_epi8(first, pixels, second);
        const Vector upper = _mm512_permutex2var_epi8(third, pixels, fourth);
        const Vector found = _mm512_mask_blend_epi8(_mm512_movepi8_mask(pixels), lower, upper);
        return (_mm512_mask_blend_epi8(where, pixels, found) & color) | tops;
      });
}

}  // namespace

// Channel by channel: one table fits the registers, three don't.
void mapThroughTables(Pixel* out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  constexpr size_t kTile = 512;
  constexpr __mmask64 kBlue = 0x1111111111111111, kGreen = kBlue << 1, kRed = kBlue << 2;
  alignas(64) Pixel tile[kTile];
  for (size_t length; count > 0; count -= length, in += length, out += length) {
    length = count < kTile ? count : kTile;
    lookUp(tile, in, length, top, tables.red, kRed);
    lookUp(tile, tile, length, top, tables.green, kGreen);
    lookUp(out, tile, length, top, tables.blue, kBlue);
  }
}

#else

// Gathering entries with vectors takes longer.
void mapThroughTables(Pixel* out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  const auto& placed = tables.placed;
  const auto mapped = [&](uint32_t pixel) {
    return placed.red[pixel >> 16 & 0xFF] | placed.green[pixel >> 8 & 0xFF] | placed.blue[pixel & 0xFF] | top;
  };
  constexpr size_t kAtOnce = 16;
  for (; count >= kAtOnce; count -= kAtOnce, in += kAtOnce, out += kAtOnce) {
    for (size_t i = 0; i < kAtOnce; ++i) out[i] = mapped(in[i]);
  }
  for (size_t i = 0; i < count; ++i) out[i] = mapped(in[i]);
}

#endif

}  // namespace kernels::ZVR_INSTRUCTION_SET
