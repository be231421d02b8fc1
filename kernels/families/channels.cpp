// Combines two or three pictures into one, channel by channel.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Every third byte, from the third on.
struct Thirds {
  uint8_t at[2 + 3 * sizeof(Vector)];
  constexpr Thirds() : at() {
    for (size_t i = 2; i < sizeof at; i += 3) at[i] = 255;
  }
};
constexpr Thirds kThirds;

// The bytes of a channel, 0 to 2, in the vector at a place.
Vector bytesFrom(size_t channel, size_t place) {
  Vector bytes;
  __builtin_memcpy(&bytes, kThirds.at + 2 - channel + place * sizeof bytes, sizeof bytes);
  return bytes;
}

}  // namespace

void max(Output out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top) {
  mapLightly(out, {in1, in2}, count, [=](const Pixels(&p)[2]) { return (max(p[0], p[1]) & 0xFFFFFF) | top; });
}

void maxRGB24(Output out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t) {
  mapRGB24(out, {in1, in2}, count,
           [](const Vector(&v)[2], size_t) { return ZVR_VECTOR(max_epu8)(v[0], v[1]); });
}

void combineChannels(Output out, const Pixel* red, const Pixel* green, const Pixel* blue, size_t count,
                     uint32_t top) {
  mapLightly(out, {red, green, blue}, count,
             [=](const Pixels(&p)[3]) { return (p[0] & 0xFF0000) | (p[1] & 0xFF00) | (p[2] & 0xFF) | top; });
}

void combineRGB24(Output out, const Pixel* red, const Pixel* green, const Pixel* blue, size_t count,
                  uint32_t) {
  mapRGB24(out, {red, green, blue}, count, [](const Vector(&v)[3], size_t place) {
    return (v[0] & bytesFrom(0, place)) | (v[1] & bytesFrom(1, place)) | (v[2] & bytesFrom(2, place));
  });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
