// Every kernel as it is defined: one pixel at a time, in the most literal arithmetic.
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace plain {

using kernels::Pixel;

inline int clamped(int value) { return std::clamp(value, 0, 255); }
inline bool sameColor(uint32_t a, uint32_t b) {
  return red(a) == red(b) && green(a) == green(b) && blue(a) == blue(b);
}
inline Rgb gray(uint32_t value) { return rgb(int(value), int(value), int(value)); }
inline bool isGray(uint32_t p) { return red(p) == green(p) && green(p) == blue(p); }

// out[i] = color(i), with the top byte.
template <typename Color>
void write(Pixel* out, size_t count, uint32_t top, const Color& color) {
  for (size_t i = 0; i < count; ++i) out[i] = color(i) | top;
}
// How many indices pass.
template <typename Passes>
size_t countOf(size_t count, const Passes& passes) {
  size_t passed = 0;
  for (size_t i = 0; i < count; ++i) passed += passes(i) ? 1U : 0U;
  return passed;
}

inline void unpackRGB24(Pixel* out, const uint8_t* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return rgb(in[3 * i], in[3 * i + 1], in[3 * i + 2]); });
}
inline void packRGB24(uint8_t* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    out[3 * i] = static_cast<uint8_t>(red(in[i]));
    out[3 * i + 1] = static_cast<uint8_t>(green(in[i]));
    out[3 * i + 2] = static_cast<uint8_t>(blue(in[i]));
  }
}

inline Rgb inverted(uint32_t p) { return rgb(255 - red(p), 255 - green(p), 255 - blue(p)); }
inline void invert(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return inverted(in[i]); });
}
inline void invertGray(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return isGray(in[i]) ? inverted(in[i]) : in[i] & 0xFFFFFF; });
}

inline void grayFromTop8(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return gray(in[i] >> 24); });
}
inline void grayFromTop7(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) {
    const uint32_t a = in[i] >> 24 & 127;
    return gray(a * 2 + a % 2);
  });
}
inline void fill(Pixel* out, size_t count, uint32_t word) {
  for (size_t i = 0; i < count; ++i) out[i] = word;
}
inline void redIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | static_cast<uint32_t>(red(in[i]));
}
inline void invertedRedIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | static_cast<uint32_t>(255 - red(in[i]));
}

inline void max(Pixel* out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) {
    const uint32_t a = in1[i], b = in2[i];
    return rgb(std::max(red(a), red(b)), std::max(green(a), green(b)), std::max(blue(a), blue(b)));
  });
}
inline void combineChannels(Pixel* out, const Pixel* reds, const Pixel* greens, const Pixel* blues,
                            size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return rgb(red(reds[i]), green(greens[i]), blue(blues[i])); });
}
inline void replaceBits(Pixel* out, const Pixel* in, const Pixel* from, size_t count, uint32_t top,
                        uint32_t bits) {
  write(out, count, top, [=](size_t i) { return (in[i] & ~bits & 0xFFFFFF) | (from[i] & bits); });
}
inline void mapThroughTables(Pixel* out, const Pixel* in, size_t count, uint32_t top,
                             const kernels::ChannelTables& tables) {
  write(out, count, top, [&](size_t i) {
    return rgb(tables.red[red(in[i])], tables.green[green(in[i])], tables.blue[blue(in[i])]);
  });
}
inline void mapPiecewiseLinear(Pixel* out, const Pixel* in, size_t count, uint32_t top,
                               const kernels::LinearMaps& lines) {
  const auto value = [&](const kernels::LinearMap& line, int v) {
    const uint32_t from = static_cast<uint32_t>(line.isFalling ? 255 - v : v) * 256 + line.before;
    const int height = static_cast<int>(from * line.slope >> 16) + line.offset;
    return std::min(std::clamp(height, 0, 65535) >> lines.shift, 255);
  };
  write(out, count, top, [&](size_t i) {
    return rgb(value(lines.red, red(in[i])), value(lines.green, green(in[i])),
               value(lines.blue, blue(in[i])));
  });
}

inline uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  return countOf(count, [=](size_t i) { return sameColor(in[i], color); });
}
inline void histogram(const Pixel* in, size_t count, kernels::ChannelCounts& counts) {
  for (size_t i = 0; i < count; ++i) {
    ++counts.red[0][red(in[i])];
    ++counts.green[0][green(in[i])];
    ++counts.blue[0][blue(in[i])];
  }
}
inline bool isAllColor(const Pixel* in, size_t count, uint32_t color) {
  return countColor(in, count, color) == count;
}
inline bool isAllGray(const Pixel* in, size_t count, int32_t tolerance) {
  return count == countOf(count, [=](size_t i) {
           const auto [low, high] = std::minmax({red(in[i]), green(in[i]), blue(in[i])});
           return high - low <= tolerance;
         });
}
inline uint32_t countColorful(const Pixel* in, size_t count, int32_t threshold) {
  return countOf(count, [=](size_t i) {
    const int r = red(in[i]), g = green(in[i]), b = blue(in[i]);
    return std::max({r, g, b}) >= 30 && (std::abs(g - b) > threshold || std::abs(g - r) > threshold);
  });
}
inline size_t findColor(const Pixel* in, size_t count, uint32_t color) {
  size_t i = 0;
  while (i < count && !sameColor(in[i], color)) ++i;
  return i;
}
inline bool areEqual(const Pixel* in1, const Pixel* in2, size_t count) {
  return count == countOf(count, [=](size_t i) { return sameColor(in1[i], in2[i]); });
}

inline void markColored(uint8_t* cells, const Pixel* in, size_t count, uint8_t colored) {
  for (size_t i = 0; i < count; ++i) cells[i] = isGray(in[i]) ? uint8_t{0} : colored;
}
inline void blackWhere(Pixel* out, const uint8_t* cells, size_t count, uint8_t black, uint32_t top) {
  write(out, count, top, [=](size_t i) { return gray(cells[i] == black ? 0 : 255); });
}
inline void replaceColor(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                         uint32_t replacement) {
  write(out, count, top,
        [=](size_t i) { return (sameColor(in[i], searched) ? replacement : in[i]) & 0xFFFFFF; });
}
inline void extractColor(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                         uint32_t replacement, uint32_t background) {
  write(out, count, top,
        [=](size_t i) { return (sameColor(in[i], searched) ? replacement : background) & 0xFFFFFF; });
}

inline int32_t wrapped(uint32_t bits) { return static_cast<int32_t>(bits); }
inline void saturate(Pixel* out, const Pixel* in, size_t count, uint32_t top, int32_t factor) {
  write(out, count, top, [=](size_t i) {
    const int r = red(in[i]), g = green(in[i]), b = blue(in[i]), middle = (r + 2 * g + b) / 4;
    const auto moved = [=](int v) {
      return clamped(wrapped(uint32_t(v - middle) * uint32_t(factor)) / 255 + middle);
    };
    return rgb(moved(r), moved(g), moved(b));
  });
}

// Without the memo of results that kernels keep in Tint.
inline void tint(Pixel* out, const Pixel* in, size_t count, uint32_t top, kernels::Tint& tint) {
  const double gr = red(tint.gray) / 255.0, gg = green(tint.gray) / 255.0, gb = blue(tint.gray) / 255.0;
  const double sr = red(tint.sepia) / 255.0, sg = green(tint.sepia) / 255.0, sb = blue(tint.sepia) / 255.0;
  write(out, count, top, [=](size_t i) {
    const long double r = red(in[i]), g = green(in[i]), b = blue(in[i]);
    const long double brightness = r * gr + g * gg + b * gb;
    const auto share = [=](double weight) { return std::min(static_cast<int>(brightness * weight), 255); };
    return rgb(share(sr), share(sg), share(sb));
  });
}

// Of a table that entry(r, g, b, channel) reads. From the lower corner the way leads along the axis of the
// largest share first. Of equal shares the smallest step in the table goes first, beginning with those that
// are none; that shows only where entries are infinite or no numbers.
template <typename Entry>
Rgb tetrahedral(uint32_t pixel, const Entry& entry) {
  const int values[3] = {red(pixel), green(pixel), blue(pixel)};
  int corner[3], share[3], step[3], axes[3] = {0, 1, 2};
  for (int a = 0; a < 3; ++a) {
    corner[a] = values[a] / 17;
    share[a] = values[a] % 17;
    step[a] = corner[a] == 15 ? 0 : 3 - a;
  }
  const auto isBefore = [&](int a, int b) {
    return share[a] != share[b] ? share[a] > share[b] : step[a] < step[b];
  };
  for (const int left : {0, 1, 0}) {
    if (isBefore(axes[left + 1], axes[left])) std::swap(axes[left], axes[left + 1]);
  }
  double sums[3];
  const double first = 17 - share[axes[0]];
  for (int x = 0; x < 3; ++x) sums[x] = first * entry(corner[0], corner[1], corner[2], x);
  for (int i = 0; i < 3; ++i) {
    corner[axes[i]] = std::min(corner[axes[i]] + 1, 15);
    const double weight = share[axes[i]] - (i < 2 ? share[axes[i + 1]] : 0);
    for (int x = 0; x < 3; ++x) sums[x] += weight * entry(corner[0], corner[1], corner[2], x);
  }
  const auto limited = [](double v) { return v >= 255 ? 255 : v > 0 ? static_cast<int>(v) : 0; };
  return rgb(limited(sums[0] / 17), limited(sums[1] / 17), limited(sums[2] / 17));
}
inline size_t cubeIndex(int r, int g, int b, size_t side) {
  return (static_cast<size_t>(r) * side + static_cast<size_t>(g)) * side + static_cast<size_t>(b);
}
inline void mapThroughCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const double* cube) {
  write(out, count, top, [=](size_t i) {
    return tetrahedral(in[i], [=](int r, int g, int b, int x) {
      double value;  // at any address
      const size_t at = cubeIndex(r, g, b, kernels::kCubeSide) * 3 + static_cast<size_t>(x);
      std::memcpy(&value, reinterpret_cast<const char*>(cube) + at * sizeof value, sizeof value);
      return value;
    });
  });
}
inline void mapThroughWholeCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Pixel* cube) {
  write(out, count, top, [=](size_t i) {
    return tetrahedral(in[i], [=](int r, int g, int b, int x) {
      const uint32_t word = cube[cubeIndex(r, g, b, kernels::kWholeCubeSide)];
      return static_cast<double>(word >> (16 - 8 * x) & 255);
    });
  });
}
inline void sepia(Pixel* out, const Pixel* in, size_t count, uint32_t top, const kernels::Sepia& t) {
  write(out, count, top, [&](size_t i) {
    const auto brightness = static_cast<uint32_t>(wrapped(uint32_t(red(in[i])) * t.redWeight +
                                                          uint32_t(green(in[i])) * t.greenWeight +
                                                          uint32_t(blue(in[i])) * t.blueWeight) /
                                                  1024);
    return rgb(clamped(wrapped(t.red + brightness)), clamped(wrapped(t.green + brightness)),
               clamped(wrapped(t.blue + brightness)));
  });
}

template <typename Sample>
kernels::Excursions sum(const uint8_t* samples, size_t count) {
  constexpr int kMiddle = std::is_signed_v<Sample> ? 0 : 1 << (8 * sizeof(Sample) - 1);
  kernels::Excursions sums{};
  for (size_t i = 0; i < count; ++i) {
    Sample sample;
    std::memcpy(&sample, samples + i * sizeof sample, sizeof sample);
    const int value = sample - kMiddle;
    (value < 0 ? sums.negative : sums.positive) += static_cast<uint32_t>(value);
  }
  return sums;
}
constexpr kernels::SampleSums *sumInt8 = sum<int8_t>, *sumUInt8 = sum<uint8_t>, *sumInt16 = sum<int16_t>,
                              *sumUInt16 = sum<uint16_t>;
inline void bars(Pixel* out, const int32_t* first, const int32_t* last, size_t count, int32_t row,
                 uint32_t inside, uint32_t outside) {
  for (size_t i = 0; i < count; ++i) out[i] = first[i] <= row && row <= last[i] ? inside : outside;
}

// A kernel without a definition does not compile.
constexpr kernels::Table kTable = {"plain", ZVR_KERNELS(ZVR_ADDRESS)};

}  // namespace plain
