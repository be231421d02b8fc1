// Combines two or three pictures into one, channel by channel.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {

void max(Output out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top) {
  mapLightly(out, {in1, in2}, count, [=](const Pixels(&p)[2]) { return (max(p[0], p[1]) & 0xFFFFFF) | top; });
}

void combineChannels(Output out, const Pixel* red, const Pixel* green, const Pixel* blue, size_t count,
                     uint32_t top) {
  mapLightly(out, {red, green, blue}, count,
             [=](const Pixels(&p)[3]) { return (p[0] & 0xFF0000) | (p[1] & 0xFF00) | (p[2] & 0xFF) | top; });
}

void replaceBits(Output out, const Pixel* in, const Pixel* from, size_t count, uint32_t top, uint32_t bits) {
  const uint32_t kept = 0xFFFFFF & ~bits;
  mapLightly(out, {in, from}, count,
             [=](const Pixels(&p)[2]) { return (p[0] & kept) | (p[1] & bits) | top; });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
