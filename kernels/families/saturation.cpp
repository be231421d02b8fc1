// Channels away from a pixel's own gray value, or towards it.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

uint32_t clamped(int32_t value) { return static_cast<uint32_t>(value < 0 ? 0 : value > 255 ? 255 : value); }

// How far a channel that is `distance` from gray moves to: distance * factor / 255, truncated toward zero,
// the product wrapping.
struct AnyFactor {
  int32_t factor;
  int32_t operator()(int32_t distance) const {
    return static_cast<int32_t>(static_cast<uint32_t>(distance) * static_cast<uint32_t>(factor)) / 255;
  }
};

// The same for factors below 2^15, whose products, below 2^23, are exact in a float. The float nearest to
// 1 / 255 is a little above it, so a whole quotient never comes out as less than itself; and other quotients
// lie too far below the next whole number to reach it, as long as clamping doesn't hide the result anyway.
struct ModerateFactor {
  float factor;
  int32_t operator()(int32_t distance) const {
    return static_cast<int32_t>(static_cast<float>(distance) * factor * (1 / 255.0F));
  }
};

template <typename Factor>
void saturateBy(const Factor factor, Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  for (size_t i = 0; i < count; ++i) {
    const auto r = static_cast<int32_t>(in[i] >> 16 & 0xFF);
    const auto g = static_cast<int32_t>(in[i] >> 8 & 0xFF);
    const auto b = static_cast<int32_t>(in[i] & 0xFF);
    const int32_t gray = (r + 2 * g + b) >> 2;
    out[i] = clamped(factor(r - gray) + gray) << 16 | clamped(factor(g - gray) + gray) << 8 |
             clamped(factor(b - gray) + gray) | top;
  }
}

}  // namespace

void saturate(Pixel* out, const Pixel* in, size_t count, uint32_t top, int32_t factor) {
  if (factor > -0x8000 && factor < 0x8000) {
    saturateBy(ModerateFactor{static_cast<float>(factor)}, out, in, count, top);
  } else {
    saturateBy(AnyFactor{factor}, out, in, count, top);
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
