// Maps each channel through a piecewise linear function: a line, clamped at both ends.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// The parameters of half a vector's values, each as a word.
struct Lines {
  Words start, slope, up, down;
};

// `place` arranges the words of red, green and blue.
template <typename Place>
Lines linesOf(const LinearMaps& maps, const Place& place) {
  const auto each = [&](const auto& parameter) {
    const auto word = [&](const LinearMap& map) { return static_cast<int16_t>(parameter(map)); };
    return place(word(maps.red), word(maps.green), word(maps.blue));
  };
  // A falling line inverts the value, which is in the upper byte.
  return {each([](const LinearMap& map) { return map.isFalling * 0xFF00 | map.before; }),
          each([](const LinearMap& map) { return map.slope; }),
          each([](const LinearMap& map) { return map.offset > 0 ? map.offset : 0; }),
          each([](const LinearMap& map) { return map.offset < 0 ? -map.offset : 0; })};
}

Vector mapped(Vector values, const Lines& lower, const Lines& upper, uint32_t shift) {
  const auto height = [=](Words from, const Lines& lines) __attribute__((always_inline)) {
    const auto product = reinterpret_cast<Vector>(multiplyHigh(from ^ lines.start, lines.slope));
    const auto raised = ZVR_VECTOR(adds_epu16)(product, reinterpret_cast<Vector>(lines.up));
    const auto sum = ZVR_VECTOR(subs_epu16)(raised, reinterpret_cast<Vector>(lines.down));
    return reinterpret_cast<Words>(sum) >> static_cast<uint16_t>(shift);
  };
  return packed(height(lowerWords(Vector{}, values), lower), height(upperWords(Vector{}, values), upper));
}

}  // namespace

void mapPiecewiseLinear(Output out, const Pixel* in, size_t count, uint32_t top, const LinearMaps& maps) {
  // Two pixels in each 128-bit lane.
  const Lines lines = linesOf(maps, [](int16_t r, int16_t g, int16_t b) {
    return reinterpret_cast<Words>(allLanes(_mm_setr_epi16(b, g, r, 0, b, g, r, 0)));
  });
  const Vector tops = allPixels(top);
  mapVectors(
      out, in, count, [&, shift = maps.shift ](Vector pixels) __attribute__((always_inline)) {
        return mapped(pixels, lines, lines, shift) | tops;
      });
}

void mapPiecewiseLinearRGB24(Output out, const Pixel* in, size_t count, uint32_t, const LinearMaps& maps) {
  Lines lines[3];  // for the lower half of the vector at each place
  for (size_t place = 0; place < 3; ++place) {
    lines[place] = linesOf(maps, [=](int16_t r, int16_t g, int16_t b) {
      const int16_t words[] = {r, g, b};
      Vector all{};
      for (size_t channel = 0; channel < 3; ++channel) {
        const Vector bits = channelAt(place, channel);
        all |= reinterpret_cast<Vector>(lowerWords(bits, bits)) & ZVR_VECTOR(set1_epi16)(words[channel]);
      }
      return reinterpret_cast<Words>(all);
    });
  }
  mapRGB24(
      out, {in}, count,
      [&, shift = maps.shift ](const Vector(&v)[1], size_t place) __attribute__((always_inline)) {
        // 8 bytes on, channels are as in the lower half of another vector: its size is 1 or -1 modulo 3.
        return mapped(v[0], lines[place], lines[(place + 8 * sizeof(Vector)) % 3], shift);
      });
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
