// Moves channels away from a pixel's own gray value, or towards it.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

uint32_t clamped(int32_t value) { return static_cast<uint32_t>(value < 0 ? 0 : value > 255 ? 255 : value); }

// The new distance from gray: distance * factor / 255. The product wraps; the quotient truncates toward zero.
int32_t moved(int32_t distance, int32_t factor) {
  return static_cast<int32_t>(static_cast<uint32_t>(distance) * static_cast<uint32_t>(factor)) / 255;
}

void saturateByAny(Pixel* out, const Pixel* in, size_t count, uint32_t top, int32_t factor) {
  for (size_t i = 0; i < count; ++i) {
    const auto r = static_cast<int32_t>(in[i] >> 16 & 0xFF);
    const auto g = static_cast<int32_t>(in[i] >> 8 & 0xFF);
    const auto b = static_cast<int32_t>(in[i] & 0xFF);
    const int32_t gray = (r + 2 * g + b) >> 2;
    out[i] = clamped(moved(r - gray, factor) + gray) << 16 | clamped(moved(g - gray, factor) + gray) << 8 |
             clamped(moved(b - gray, factor) + gray) | top;
  }
}

// Each pixel's gray value in its lower three bytes.
#ifdef __AVX2__
Vector grayOf(Vector pixels) {
  // 64 times the weighted sum: its second byte is a quarter of the sum.
  const Vector sum =
      ZVR_VECTOR(madd_epi16)(ZVR_VECTOR(maddubs_epi16)(pixels, allPixels(0x102010)), allWords(4));
  const Vector second = allLanes(_mm_setr_epi8(1, 1, 1, 1, 5, 5, 5, 5, 9, 9, 9, 9, 13, 13, 13, 13));
  return ZVR_VECTOR(shuffle_epi8)(sum, second);
}
#else
Vector grayOf(Vector pixels) {
  const auto words = reinterpret_cast<Pixels>(pixels);
  const Vector redAndBlue = reinterpret_cast<Vector>(words & 0xFF00FF);
  const auto sum = reinterpret_cast<Pixels>(ZVR_VECTOR(madd_epi16)(redAndBlue, allWords(1)));
  const Pixels gray = (sum + (words >> 7 & 0x1FE)) >> 2, twice = gray | gray << 16;
  return reinterpret_cast<Vector>(twice | twice << 8);
}
#endif

// distance * remainder / 255, rounded down; remainder is below 255. The multiplier in 65536ths is rounded up
// by less than 1 / 65536, so products with distances up to 255 are less than 1 / 255 too high, and every
// quotient lies at least that far below the next integer.
struct Share {
  Words multiplier;
  explicit Share(uint32_t remainder)
      : multiplier(reinterpret_cast<Words>(allWords((remainder * 65536 + 254) / 255))) {}
  Words operator()(Words distance) const { return multiplyHigh(distance, multiplier); }
};

// Moves base(pixels, gray) by further(distance), away from gray, or towards the other side for negative
// factors. The caller splits the factor into 255 * whole + remainder.
template <typename Base, typename Distance>
void saturateBy(Output out, const Pixel* in, size_t count, uint32_t top, bool isNegative, const Base& base,
                const Distance& further) {
  const Vector color = allPixels(0xFFFFFF), tops = allPixels(top),
               flip = allPixels(isNegative ? 0xFFFFFFFF : 0);
  mapVectors(
      out, in, count, [&](Vector pixels) __attribute__((always_inline)) {
        const Vector gray = grayOf(pixels);
        const Vector above = ZVR_VECTOR(subs_epu8)(pixels, gray), below = ZVR_VECTOR(subs_epu8)(gray, pixels);
        const Vector distance = above | below;
        const Vector moved = packed(further(lowerWords(distance)), further(upperWords(distance)));
        const Vector isDown = reinterpret_cast<Vector>(reinterpret_cast<Bytes>(above) == 0) ^ flip;
        // Saturating subtraction as addition to the complement.
        return ((ZVR_VECTOR(adds_epu8)(base(pixels, gray) ^ isDown, moved) ^ isDown) & color) | tops;
      });
}

}  // namespace

void saturate(Output out, const Pixel* in, size_t count, uint32_t top, int32_t factor) {
  constexpr uint32_t kModerate = 128 * 255;
  const bool isNegative = factor < 0;
  const uint32_t size = isNegative ? 0 - static_cast<uint32_t>(factor) : static_cast<uint32_t>(factor);
  const Share share(size % 255);
  if (size < 255) {
    saturateBy(
        out, in, count, top, isNegative, [](Vector, Vector gray) { return gray; }, share);
  } else if (size < 510 && !isNegative) {
    saturateBy(
        out, in, count, top, false, [](Vector pixels, Vector) { return pixels; }, share);
  } else if (size < kModerate) {
    const auto whole = reinterpret_cast<Words>(allWords(size / 255));
    saturateBy(
        out, in, count, top, isNegative, [](Vector, Vector gray) { return gray; },
        [&](Words distance) { return distance * whole + share(distance); });
  } else {
    saturateByAny(out, in, count, top, factor);
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
