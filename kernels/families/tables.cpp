// Each channel through a lookup table.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {

void mapThroughTables(Pixel* out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t pixel = in[i];
    const uint32_t r = tables.red[pixel >> 16 & 0xFF], g = tables.green[pixel >> 8 & 0xFF];
    out[i] = r << 16 | g << 8 | tables.blue[pixel & 0xFF] | top;
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
