// Between masks and pictures.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {

void grayFromTop8(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t v = in[i] >> 24;
    out[i] = v << 16 | v << 8 | v | top;
  }
}

void grayFromTop7(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t a = in[i] >> 24 & 0x7F;
    const uint32_t v = a << 1 | (a & 1);
    out[i] = v << 16 | v << 8 | v | top;
  }
}

void fill(Pixel* out, size_t count, uint32_t word) {
  for (size_t i = 0; i < count; ++i) out[i] = word;
}

void redIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | (in[i] >> 16 & 0xFF);
}

void invertedRedIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | (~in[i] >> 16 & 0xFF);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
