// Inverting all pixels, or the gray ones alone.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {

void invert(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  for (size_t i = 0; i < count; ++i) out[i] = (~in[i] & 0xFFFFFF) | top;
}

void invertGray(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t pixel = in[i] & 0xFFFFFF;
    // Gray when each channel equals the one above it.
    const uint32_t differing = (pixel ^ pixel >> 8) & 0xFFFF;
    out[i] = (differing == 0 ? pixel ^ 0xFFFFFF : pixel) | top;
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
