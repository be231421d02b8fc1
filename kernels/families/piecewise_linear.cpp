// Maps each channel through a piecewise linear function: a line, clamped at both ends.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Words for two pixels in each 128-bit lane: red, green, blue, and 0 for the top byte.
Words wordsOf(uint32_t r, uint32_t g, uint32_t b) {
  const auto word = [](uint32_t value) { return static_cast<int16_t>(value); };
  return reinterpret_cast<Words>(
      allLanes(_mm_setr_epi16(word(b), word(g), word(r), 0, word(b), word(g), word(r), 0)));
}

uint32_t rise(int32_t offset) { return static_cast<uint32_t>(offset > 0 ? offset : 0); }

}  // namespace

void mapPiecewiseLinear(Output out, const Pixel* in, size_t count, uint32_t top, const LinearMaps& lines) {
  const LinearMap &r = lines.red, &g = lines.green, &b = lines.blue;
  const auto bytes = [](uint32_t red, uint32_t green, uint32_t blue) {
    return allPixels(red << 16 | green << 8 | blue);
  };
  const Vector tops = allPixels(top), before = bytes(r.before, g.before, b.before);
  const Vector falling = bytes(r.isFalling * 255U, g.isFalling * 255U, b.isFalling * 255U);
  const Words slope = wordsOf(r.slope, g.slope, b.slope);
  const Words up = wordsOf(rise(r.offset), rise(g.offset), rise(b.offset));
  const Words down = wordsOf(rise(-r.offset), rise(-g.offset), rise(-b.offset));
  const auto shift = static_cast<uint16_t>(lines.shift);
  const auto height = [&](Words from) __attribute__((always_inline)) {
    const auto product = reinterpret_cast<Vector>(multiplyHigh(from, slope));
    const Vector sum = ZVR_VECTOR(subs_epu16)(ZVR_VECTOR(adds_epu16)(product, reinterpret_cast<Vector>(up)),
                                              reinterpret_cast<Vector>(down));
    return reinterpret_cast<Words>(sum) >> shift;
  };
  mapVectors(
      out, in, count, [&](Vector pixels) __attribute__((always_inline)) {
        const Vector values = pixels ^ falling;
        return packed(height(lowerWords(before, values)), height(upperWords(before, values))) | tops;
      });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
