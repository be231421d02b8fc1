// Inverts all pixels, or only the gray ones.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {

void invert(Output out, const Pixel* in, size_t count, uint32_t top) {
  mapLightly(out, {in}, count, [=](const Pixels(&p)[1]) { return (~p[0] & 0xFFFFFF) | top; });
}

void invertRGB24(Output out, const Pixel* in, size_t count, uint32_t) {
  mapRGB24(out, {in}, count, [](const Vector(&v)[1], size_t) { return ~v[0]; });
}

void invertGray(Output out, const Pixel* in, size_t count, uint32_t top) {
  mapLightly(out, {in}, count, [=](const Pixels(&p)[1]) {
    // Gray: blue equals green and green equals red.
    const Pixels differing = (p[0] ^ p[0] >> 8) & 0xFFFF;
    return ((p[0] ^ reinterpret_cast<Pixels>(differing == 0)) & 0xFFFFFF) | top;
  });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
