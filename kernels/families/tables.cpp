// Maps each channel through a lookup table.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {

#ifdef __AVX2__

namespace {

#ifdef __AVX512VBMI__
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
#else
// Looks up 32 bytes in each row of 16 entries. A shuffle gives 0 where an index has its top bit set, which
// joins rows of the two halves of the table; the next three bits choose one of the eight results.
__attribute__((always_inline)) inline Vector lookUp(const uint8_t* table, Vector bytes) {
  __asm__("" : "+r"(table));  // as above
  const auto lower = reinterpret_cast<Vector>(reinterpret_cast<Bytes>(bytes) & 0x8F);
  const auto upper = reinterpret_cast<Vector>(reinterpret_cast<Bytes>(lower) ^ 0x80);
  const auto row = [=](size_t i, Vector index) __attribute__((always_inline)) {
    __m128i entries;
    __builtin_memcpy(&entries, table + i * sizeof entries, sizeof entries);
    return _mm256_shuffle_epi8(allLanes(entries), index);
  };
  const auto one = [=](size_t i) __attribute__((always_inline)) { return row(i, lower) | row(i + 8, upper); };
  const auto ofTwo = [=](size_t i) __attribute__((always_inline)) {
    return _mm256_blendv_epi8(one(i), one(i + 1), _mm256_slli_epi16(bytes, 3));
  };
  const auto ofFour = [=](size_t i) __attribute__((always_inline)) {
    return _mm256_blendv_epi8(ofTwo(i), ofTwo(i + 2), _mm256_slli_epi16(bytes, 2));
  };
  return _mm256_blendv_epi8(ofFour(0), ofFour(4), _mm256_slli_epi16(bytes, 1));
}
#endif

}  // namespace

void mapThroughTables(Output out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  const Vector tops = allPixels(top | top >> 8 | top >> 16 | top >> 24);
  const Vector byChannel = allLanes(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  mapBlocks<4>(
      out, {in}, count, [&](Vector(&block)[4]) __attribute__((always_inline)) {
        for (Vector& pixels : block) pixels = ZVR_VECTOR(shuffle_epi8)(pixels, byChannel);
        const Vector lowFirst = ZVR_VECTOR(unpacklo_epi32)(block[0], block[1]),
                     lowLast = ZVR_VECTOR(unpacklo_epi32)(block[2], block[3]),
                     highFirst = ZVR_VECTOR(unpackhi_epi32)(block[0], block[1]),
                     highLast = ZVR_VECTOR(unpackhi_epi32)(block[2], block[3]);
        const Vector blue = lookUp(tables.blue, ZVR_VECTOR(unpacklo_epi64)(lowFirst, lowLast));
        const Vector green = lookUp(tables.green, ZVR_VECTOR(unpackhi_epi64)(lowFirst, lowLast));
        const Vector red = lookUp(tables.red, ZVR_VECTOR(unpacklo_epi64)(highFirst, highLast));
        const auto join = [](Words low, Words high, Vector& first, Vector& last) {
          first = ZVR_VECTOR(unpacklo_epi16)(reinterpret_cast<Vector>(low), reinterpret_cast<Vector>(high));
          last = ZVR_VECTOR(unpackhi_epi16)(reinterpret_cast<Vector>(low), reinterpret_cast<Vector>(high));
        };
        join(lowerWords(blue, green), lowerWords(red, tops), block[0], block[1]);
        join(upperWords(blue, green), upperWords(red, tops), block[2], block[3]);
      });
}

#else

// Scalar: vectors of this set cannot look up bytes. The channels are loaded one by one, since taking a pixel
// apart needs more registers than there are.
void mapThroughTables(Output out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  const auto& placed = tables.placed;
  const auto map = [&](size_t i) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(in + i);
    out[i] = placed.red[bytes[2]] | placed.green[bytes[1]] | placed.blue[bytes[0]] | top;
  };
  constexpr size_t kAtOnce = 16;
  size_t from = 0;
  for (; count - from >= kAtOnce; from += kAtOnce) {
    for (size_t i = from; i < from + kAtOnce; ++i) map(i);
  }
  for (; from < count; ++from) map(from);
}

#endif

}  // namespace kernels::ZVR_INSTRUCTION_SET
