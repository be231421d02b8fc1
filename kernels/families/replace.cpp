// One exact colour against all others.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr uint32_t kColor = 0xFFFFFF;

}  // namespace

void replaceColor(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                  uint32_t replacement) {
  for (size_t i = 0; i < count; ++i) {
    const bool found = ((in[i] ^ searched) & kColor) == 0;
    out[i] = ((found ? replacement : in[i]) & kColor) | top;
  }
}

void extractColor(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                  uint32_t replacement, uint32_t background) {
  for (size_t i = 0; i < count; ++i) {
    const bool found = ((in[i] ^ searched) & kColor) == 0;
    out[i] = ((found ? replacement : background) & kColor) | top;
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
