// Conversion between masks and pictures.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

Pixels gray(Pixels value, uint32_t top) { return value << 16 | value << 8 | value | top; }

}  // namespace

void grayFromTop8(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  mapLightly(out, {in}, count, [=](const Pixels(&p)[1]) { return gray(p[0] >> 24, top); });
}

void grayFromTop7(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  mapLightly(out, {in}, count,
             [=](const Pixels(&p)[1]) { return gray((p[0] >> 23 & 0xFE) | (p[0] >> 24 & 1), top); });
}

void fill(Pixel* out, size_t count, uint32_t word) {
  for (size_t i = 0; i < count; ++i) out[i] = word;
}

void streamFill(Pixel* out, size_t count, uint32_t word) {
  const size_t misalignment = reinterpret_cast<uintptr_t>(out) % kCacheLine;
  size_t at = (kCacheLine - misalignment) % kCacheLine / sizeof *out;
  if (misalignment % sizeof *out != 0 || at > count) at = count;
  fill(out, at, word);
  for (const Vector words = allPixels(word); count - at >= kPixels; at += kPixels) stream(out + at, words);
  fill(out + at, count - at, word);
  _mm_sfence();  // orders the streaming stores for other threads
}

void redIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | (in[i] >> 16 & 0xFF);
}

void invertedRedIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | (~in[i] >> 16 & 0xFF);
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
