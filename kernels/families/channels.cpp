// Two or three pictures into one, channel by channel.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// The larger of the same field of two words.
uint32_t larger(uint32_t a, uint32_t b, uint32_t field) {
  // Signed: the baseline compares no unsigned words, and no field reaches the sign.
  const auto x = static_cast<int32_t>(a & field), y = static_cast<int32_t>(b & field);
  return static_cast<uint32_t>(x > y ? x : y);
}

}  // namespace

void brighter(Pixel* out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t a = in1[i], b = in2[i];
    out[i] = larger(a, b, 0xFF0000) | larger(a, b, 0xFF00) | larger(a, b, 0xFF) | top;
  }
}

void combineChannels(Pixel* out, const Pixel* red, const Pixel* green, const Pixel* blue, size_t count,
                     uint32_t top) {
  for (size_t i = 0; i < count; ++i) {
    out[i] = (red[i] & 0xFF0000) | (green[i] & 0xFF00) | (blue[i] & 0xFF) | top;
  }
}

void replaceBits(Pixel* out, const Pixel* in, const Pixel* from, size_t count, uint32_t top, uint32_t bits) {
  const uint32_t kept = 0xFFFFFF & ~bits;
  for (size_t i = 0; i < count; ++i) out[i] = (in[i] & kept) | (from[i] & bits) | top;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
