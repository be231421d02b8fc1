// Replaces or extracts one exact colour.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr uint32_t kColor = 0xFFFFFF;

}  // namespace

void replaceColor(Output out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                  uint32_t replacement) {
  // The shift drops the top byte from the comparison; results get `top`.
  const Pixels found = allOf(searched << 8), written = allOf((replacement & kColor) | top);
  mapLightly(out, {in}, count,
             [=](const Pixels(&p)[1]) { return p[0] << 8 == found ? written : (p[0] & kColor) | top; });
}

void extractColor(Output out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                  uint32_t replacement, uint32_t background) {
  const Pixels found = allOf(searched << 8), written = allOf((replacement & kColor) | top),
               other = allOf((background & kColor) | top);
  mapLightly(out, {in}, count, [=](const Pixels(&p)[1]) { return p[0] << 8 == found ? written : other; });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
