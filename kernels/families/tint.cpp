// A pixel's brightness, weighted by one base colour, spread in the proportions of another.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

uint32_t redOf(uint32_t pixel) { return pixel >> 16 & 0xFF; }
uint32_t greenOf(uint32_t pixel) { return pixel >> 8 & 0xFF; }
uint32_t blueOf(uint32_t pixel) { return pixel & 0xFF; }

// What decides: the weights rounded to double, everything else in extended precision, truncated.
uint32_t shade(long double brightness, uint32_t sepia) {
  const double weight = sepia / 255.0;
  const auto value = static_cast<int32_t>(brightness * weight);
  return static_cast<uint32_t>(value < 255 ? value : 255);
}

uint32_t decided(uint32_t pixel, uint32_t gray, uint32_t sepia) {
  const double red = redOf(gray) / 255.0, green = greenOf(gray) / 255.0, blue = blueOf(gray) / 255.0;
  const long double brightness = static_cast<long double>(redOf(pixel)) * red +
                                 static_cast<long double>(greenOf(pixel)) * green +
                                 static_cast<long double>(blueOf(pixel)) * blue;
  return shade(brightness, redOf(sepia)) << 16 | shade(brightness, greenOf(sepia)) << 8 |
         shade(brightness, blueOf(sepia));
}

uint32_t remembered(Tint& tint, uint32_t pixel) {
  Tint::Known& known = tint.known[(pixel * 0x9E3779B1U) >> 24];
  if (known.pixel != pixel) known = {pixel, decided(pixel, tint.gray, tint.sepia)};
  return known.result;
}

// In whole numbers a new channel is n / (255 * 255). The rounded one can differ only where that is whole
// itself and not clamped away: everywhere else it lies 2^26 times further from a whole number than rounding
// errs.
uint32_t wholeShade(uint32_t n, uint32_t& doubt) {
  const uint32_t value = n / 65025;
  doubt |= static_cast<uint32_t>(value * 65025 == n) & static_cast<uint32_t>(value - 1 < 255);
  return value < 255 ? value : 255;
}

constexpr size_t kBlock = 128;

// Up to kBlock pixels. Those in doubt are noted in `doubtful`, others as 0 there; answers whether there are
// any.
bool tintBlock(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t gray, uint32_t sepia,
               uint32_t* doubtful) {
  uint32_t any = 0;
  for (size_t i = 0; i < count; ++i) {
    const uint32_t pixel = in[i] & 0xFFFFFF;
    const uint32_t brightness =
        redOf(pixel) * redOf(gray) + greenOf(pixel) * greenOf(gray) + blueOf(pixel) * blueOf(gray);
    uint32_t doubt = 0;
    const uint32_t red = wholeShade(brightness * redOf(sepia), doubt);
    const uint32_t green = wholeShade(brightness * greenOf(sepia), doubt);
    const uint32_t blue = wholeShade(brightness * blueOf(sepia), doubt);
    doubtful[i] = doubt ? pixel : 0;
    any |= doubt;
    out[i] = red << 16 | green << 8 | blue | top;
  }
  return any != 0;
}

}  // namespace

void tint(Pixel* out, const Pixel* in, size_t count, uint32_t top, Tint& tint) {
  uint32_t doubtful[kBlock];
  for (size_t first = 0; first < count; first += kBlock) {
    const size_t length = count - first < kBlock ? count - first : kBlock;
    if (!tintBlock(out + first, in + first, length, top, tint.gray, tint.sepia, doubtful)) continue;
    for (size_t i = 0; i < length; ++i) {
      if (doubtful[i]) out[first + i] = remembered(tint, doubtful[i]) | top;
    }
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
