// 3-byte pixels to words and back, four pixels (three words of memory) at a time.

#include "kernels/families/families.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

uint32_t load(const uint8_t* from) {
  uint32_t word;
  __builtin_memcpy(&word, from, 4);
  return word;
}

void store(uint8_t* to, uint32_t word) { __builtin_memcpy(to, &word, 4); }

// Memory order red, green, blue to red in bits 16-23; the byte behind blue falls out.
uint32_t swapped(uint32_t rgbx) { return __builtin_bswap32(rgbx) >> 8; }

}  // namespace

void unpackRGB24(Pixel* out, const uint8_t* in, size_t count, uint32_t top) {
  for (; count >= 4; count -= 4, in += 12, out += 4) {
    const uint32_t a = load(in), b = load(in + 4), c = load(in + 8);
    out[0] = swapped(a) | top;
    out[1] = swapped(a >> 24 | b << 8) | top;
    out[2] = swapped(b >> 16 | c << 16) | top;
    out[3] = swapped(c >> 8) | top;
  }
  for (; count > 0; --count, in += 3) {
    *out++ = static_cast<uint32_t>(in[0]) << 16 | static_cast<uint32_t>(in[1]) << 8 | in[2] | top;
  }
}

void packRGB24(uint8_t* out, const Pixel* in, size_t count) {
  for (; count >= 4; count -= 4, in += 4, out += 12) {
    const uint32_t p = __builtin_bswap32(in[0]) >> 8, q = __builtin_bswap32(in[1]) >> 8;
    const uint32_t r = __builtin_bswap32(in[2]) >> 8, s = __builtin_bswap32(in[3]) >> 8;
    store(out, p | q << 24);
    store(out + 4, q >> 8 | r << 16);
    store(out + 8, r >> 16 | s << 8);
  }
  for (; count > 0; --count, out += 3) {
    const uint32_t word = *in++;
    out[0] = static_cast<uint8_t>(word >> 16);
    out[1] = static_cast<uint8_t>(word >> 8);
    out[2] = static_cast<uint8_t>(word);
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
