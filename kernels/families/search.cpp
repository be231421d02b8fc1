// Finds a colour, and compares spans by colour.

#include "kernels/families/reads.h"

namespace kernels::ZVR_INSTRUCTION_SET {

size_t findColor(const Pixel* in, size_t count, uint32_t color) {
  const Pixels wanted = allOf(color << 8);
  const auto fold = [=](Pixels found, Pixels p) {
    return found | reinterpret_cast<Pixels>(p << 8 == wanted);
  };
  const Part part = findPart(in, count, fold, [](Pixels found) { return found; });
  size_t at = part.from;
  while (part.end - at >= kPixels && !any(fold(Pixels{}, load(in + at)))) at += kPixels;
  while (at < part.end && ((in[at] ^ color) & 0xFFFFFF) != 0) ++at;
  return at;
}

bool areEqual(const Pixel* in1, const Pixel* in2, size_t count) {
  constexpr size_t kTogether = 64;
  for (; count >= kTogether; count -= kTogether, in1 += kTogether, in2 += kTogether) {
    uint32_t different = 0;
    for (size_t i = 0; i < kTogether; ++i) different |= (in1[i] ^ in2[i]) & 0xFFFFFF;
    if (different != 0) return false;
  }
  uint32_t different = 0;
  for (size_t i = 0; i < count; ++i) different |= (in1[i] ^ in2[i]) & 0xFFFFFF;
  return different == 0;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
