// Finding a colour, and comparing spans by colour.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Pixels that are looked at together.
constexpr size_t kBlock = 64;

// What two pixels differ in, the top byte left out.
uint32_t difference(uint32_t a, uint32_t b) { return (a ^ b) & 0xFFFFFF; }

bool blockHas(const Pixel* in, uint32_t color) {
  uint32_t equal = 0;
  for (size_t i = 0; i < kBlock; ++i) equal |= difference(in[i], color) == 0 ? 1U : 0U;
  return equal != 0;
}

}  // namespace

size_t findColor(const Pixel* in, size_t count, uint32_t color) {
  size_t at = 0;
  while (count - at >= kBlock && !blockHas(in + at, color)) at += kBlock;
  while (at < count && difference(in[at], color) != 0) ++at;
  return at;
}

bool areEqual(const Pixel* in1, const Pixel* in2, size_t count) {
  for (; count >= kBlock; count -= kBlock, in1 += kBlock, in2 += kBlock) {
    uint32_t different = 0;
    for (size_t i = 0; i < kBlock; ++i) different |= difference(in1[i], in2[i]);
    if (different != 0) return false;
  }
  uint32_t different = 0;
  for (size_t i = 0; i < count; ++i) different |= difference(in1[i], in2[i]);
  return different == 0;
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
