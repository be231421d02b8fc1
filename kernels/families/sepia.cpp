// Toned monochrome.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

inline uint32_t limited(uint32_t bits) {
  const int32_t value = static_cast<int32_t>(bits);
  const int32_t atLeast0 = value < 0 ? 0 : value;
  return static_cast<uint32_t>(atLeast0 > 255 ? 255 : atLeast0);
}

}  // namespace

// Sums and products of extreme weights and tones wrap, as 32-bit integers do.
void tone(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Toning& toning) {
  const Toning t = toning;
  for (size_t i = 0; i < count; ++i) {
    const uint32_t pixel = in[i];
    const int32_t sum =
        static_cast<int32_t>((pixel >> 16 & 0xFF) * t.redWeight + (pixel >> 8 & 0xFF) * t.greenWeight +
                             (pixel & 0xFF) * t.blueWeight);
    // Negative brightness is truncated toward zero too.
    const uint32_t brightness = static_cast<uint32_t>(sum / 1024);
    out[i] = limited(t.red + brightness) << 16 | limited(t.green + brightness) << 8 |
             limited(t.blue + brightness) | top;
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
