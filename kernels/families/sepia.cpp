// Toned monochrome.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

uint32_t clamped(uint32_t bits) {
  const int32_t value = static_cast<int32_t>(bits);
  const int32_t atLeast0 = value < 0 ? 0 : value;
  return static_cast<uint32_t>(atLeast0 > 255 ? 255 : atLeast0);
}

// For any weights and tones: sums and products wrap in 32 bits.
void sepiaByAny(Output out, const Pixel* in, size_t count, uint32_t top, const Sepia& toning) {
  const Sepia t = toning;
  for (size_t i = 0; i < count; ++i) {
    const uint32_t pixel = in[i];
    const int32_t sum =
        static_cast<int32_t>((pixel >> 16 & 0xFF) * t.redWeight + (pixel >> 8 & 0xFF) * t.greenWeight +
                             (pixel & 0xFF) * t.blueWeight);

    const uint32_t brightness = static_cast<uint32_t>(sum / 1024);
    out[i] = clamped(t.red + brightness) << 16 | clamped(t.green + brightness) << 8 |
             clamped(t.blue + brightness) | top;
  }
}

bool isSmall(uint32_t bits) { return bits + 0x8000 < 0x10000; }

// For weights and tones that fit 16 bits: then every brightness does too, and sums with tones may saturate,
// because the result is clamped to 0..255 anyway.
void sepiaBySmall(Output out, const Pixel* in, size_t count, uint32_t top, const Sepia& t) {
  const Vector redAndBlue = allPixels(t.redWeight << 16 | (t.blueWeight & 0xFFFF));
  const Vector green = allPixels(t.greenWeight & 0xFFFF);
  const auto word = [](uint32_t bits) { return static_cast<int16_t>(bits); };
  const int16_t r = word(t.red), g = word(t.green), b = word(t.blue);
  // Brightness is at most 24480 in magnitude: the top byte becomes 0 or 255 whatever it is.
  const int16_t a = top == 0 ? -32768 : 32767;
  const Vector tones = allLanes(_mm_setr_epi16(b, g, r, a, b, g, r, a));
  const auto toned = [&](Vector brightness) __attribute__((always_inline)) {
    return reinterpret_cast<Words>(ZVR_VECTOR(adds_epi16)(brightness, tones));
  };
#ifdef __AVX2__
  const Vector lowerPixels = allLanes(_mm_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 4, 5, 4, 5, 4, 5, 4, 5)),
               upperPixels = allLanes(_mm_setr_epi8(8, 9, 8, 9, 8, 9, 8, 9, 12, 13, 12, 13, 12, 13, 12, 13));
#endif
  mapVectors(
      out, in, count, [&](Vector pixels) __attribute__((always_inline)) {
        const auto even = reinterpret_cast<Vector>(reinterpret_cast<Words>(pixels) & 0xFF);
        const auto odd = reinterpret_cast<Vector>(reinterpret_cast<Words>(pixels) >> 8);
        const Vector sum = ZVR_VECTOR(add_epi32)(ZVR_VECTOR(madd_epi16)(even, redAndBlue),
                                                 ZVR_VECTOR(madd_epi16)(odd, green));
        // Truncation toward zero: adds 1023 to negative sums before the shift.
        const Vector brightness = ZVR_VECTOR(srai_epi32)(
            ZVR_VECTOR(add_epi32)(sum, ZVR_VECTOR(srli_epi32)(ZVR_VECTOR(srai_epi32)(sum, 31), 22)), 10);
    // Repeats each brightness four times.
#ifdef __AVX2__
        const Vector lower = ZVR_VECTOR(shuffle_epi8)(brightness, lowerPixels),
                     upper = ZVR_VECTOR(shuffle_epi8)(brightness, upperPixels);
#else
        const Vector once = _mm_packs_epi32(brightness, brightness), twice = _mm_unpacklo_epi16(once, once);
        const Vector lower = _mm_unpacklo_epi32(twice, twice), upper = _mm_unpackhi_epi32(twice, twice);
#endif
        return packed(toned(lower), toned(upper));
      });
}

}  // namespace

void sepia(Output out, const Pixel* in, size_t count, uint32_t top, const Sepia& t) {
  const bool areSmall = isSmall(t.redWeight) && isSmall(t.greenWeight) && isSmall(t.blueWeight) &&
                        isSmall(t.red) && isSmall(t.green) && isSmall(t.blue);
  (areSmall ? sepiaBySmall : sepiaByAny)(out, in, count, top, t);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
