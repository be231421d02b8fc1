// Combines two or three pictures into one, channel by channel.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {

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
    return (v[0] & channelAt(place, 0)) | (v[1] & channelAt(place, 1)) | (v[2] & channelAt(place, 2));
  });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
