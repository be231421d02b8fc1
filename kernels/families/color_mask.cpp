// Conversion between pixels and maps of one byte per pixel.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {

void markColored(uint8_t* cells, const Pixel* in, size_t count, uint8_t colored) {
  // Gray: blue equals green and green equals red.
  for (size_t i = 0; i < count; ++i) cells[i] = ((in[i] ^ in[i] >> 8) & 0xFFFF) != 0 ? colored : uint8_t{0};
}

void blackWhere(Pixel* out, const uint8_t* cells, size_t count, uint8_t black, uint32_t top) {
  for (size_t i = 0; i < count; ++i) out[i] = (cells[i] == black ? 0 : 0xFFFFFF) | top;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
