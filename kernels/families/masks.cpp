// Conversion between masks and pictures.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

Pixels gray(Pixels value, uint32_t top) { return value << 16 | value << 8 | value | top; }

}  // namespace

void grayFromTop8(Output out, const Pixel* in, size_t count, uint32_t top) {
  mapLightly(out, {in}, count, [=](const Pixels(&p)[1]) { return gray(p[0] >> 24, top); });
}

void grayFromTop7(Output out, const Pixel* in, size_t count, uint32_t top) {
  mapLightly(out, {in}, count,
             [=](const Pixels(&p)[1]) { return gray((p[0] >> 23 & 0xFE) | (p[0] >> 24 & 1), top); });
}

void fill(Output out, size_t count, uint32_t word) {
  size_t at = 0;
  if (out.streams && reinterpret_cast<uintptr_t>(out.pixels) % sizeof(Pixel) == 0) {
    for (const size_t head = headOf(out, count); at < head; ++at) out[at] = word;
    for (const Vector words = allPixels(word); count - at >= kPixels; at += kPixels) stream(out + at, words);
  }
  for (Pixel* const to = out; at < count; ++at) to[at] = word;
}

void redIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | (in[i] >> 16 & 0xFF);
}

void invertedRedIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | (~in[i] >> 16 & 0xFF);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
