#include "tests/plain_kernels.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace plain {
namespace {

int clamped(int value) { return std::clamp(value, 0, 255); }
bool sameColor(uint32_t a, uint32_t b) {
  return red(a) == red(b) && green(a) == green(b) && blue(a) == blue(b);
}
Rgb gray(uint32_t value) { return rgb(int(value), int(value), int(value)); }

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

Rgb inverted(uint32_t p) { return rgb(255 - red(p), 255 - green(p), 255 - blue(p)); }
int32_t wrapped(uint32_t bits) { return static_cast<int32_t>(bits); }

// Of a table whose entry(corner, channel) is asked for. From the lower corner the way leads along the axis of
// the largest share first. Of equal shares the smallest step in the table goes first, beginning with those
// that are none; that shows only where entries are infinite or no numbers.
using Corner = std::array<size_t, 3>;
template <typename Entry>
Rgb tetrahedral(uint32_t pixel, const Entry& entry) {
  const int values[] = {red(pixel), green(pixel), blue(pixel)};
  const auto share = [&](size_t axis) { return values[axis] % 17; };
  const auto step = [&](size_t axis) { return values[axis] == 255 ? 0 : 3 - axis; };
  std::array<size_t, 3> axes = {0, 1, 2};
  std::sort(axes.begin(), axes.end(), [&](size_t a, size_t b) {
    return share(a) != share(b) ? share(a) > share(b) : step(a) < step(b);
  });
  Corner corner;
  for (const size_t axis : axes) corner[axis] = static_cast<size_t>(values[axis] / 17);
  double sums[3] = {};
  for (size_t i = 0; i < 4; ++i) {
    if (i > 0) corner[axes[i - 1]] = std::min<size_t>(corner[axes[i - 1]] + 1, 15);
    const double weight = (i > 0 ? share(axes[i - 1]) : 17) - (i < 3 ? share(axes[i]) : 0);
    for (size_t x = 0; x < 3; ++x) sums[x] += weight * entry(corner, x);
  }
  const auto limited = [](double sum) {
    return sum >= 17 * 255 ? 255 : sum > 0 ? static_cast<int>(sum / 17) : 0;
  };
  return rgb(limited(sums[0]), limited(sums[1]), limited(sums[2]));
}
size_t cubeIndex(const Corner& corner, size_t side) {
  return (corner[0] * side + corner[1]) * side + corner[2];
}

}  // namespace

void unpackRGB24(Pixel* out, const uint8_t* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return rgb(in[3 * i], in[3 * i + 1], in[3 * i + 2]); });
}
void packRGB24(uint8_t* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    out[3 * i] = static_cast<uint8_t>(red(in[i]));
    out[3 * i + 1] = static_cast<uint8_t>(green(in[i]));
    out[3 * i + 2] = static_cast<uint8_t>(blue(in[i]));
  }
}

void invert(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return inverted(in[i]); });
}
void invertGray(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return isGray(in[i]) ? inverted(in[i]) : in[i] & 0xFFFFFF; });
}

void grayFromTop8(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) { return gray(in[i] >> 24); });
}
void grayFromTop7(Pixel* out, const Pixel* in, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) {
    const uint32_t a = in[i] >> 24 & 127;
    return gray(a * 2 + a % 2);
  });
}
void fill(Pixel* out, size_t count, uint32_t word) {
  for (size_t i = 0; i < count; ++i) out[i] = word;
}
void redIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | static_cast<uint32_t>(red(in[i]));
}
void invertedRedIntoBlue(Pixel* out, const Pixel* in, size_t count) {
  for (size_t i = 0; i < count; ++i) out[i] = (out[i] & 0xFFFFFF00) | static_cast<uint32_t>(255 - red(in[i]));
}

void max(Pixel* out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top) {
  write(out, count, top, [=](size_t i) {
    const uint32_t a = in1[i], b = in2[i];
    return rgb(std::max(red(a), red(b)), std::max(green(a), green(b)), std::max(blue(a), blue(b)));
  });
}
void combineChannels(Pixel* out, const Pixel* reds, const Pixel* greens, const Pixel* blues, size_t count,
                     uint32_t top) {
  write(out, count, top, [=](size_t i) { return rgb(red(reds[i]), green(greens[i]), blue(blues[i])); });
}
void replaceBits(Pixel* out, const Pixel* in, const Pixel* from, size_t count, uint32_t top, uint32_t bits) {
  write(out, count, top, [=](size_t i) { return (in[i] & ~bits & 0xFFFFFF) | (from[i] & bits); });
}
void mapThroughTables(Pixel* out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables) {
  write(out, count, top, [&](size_t i) {
    return rgb(tables.red[red(in[i])], tables.green[green(in[i])], tables.blue[blue(in[i])]);
  });
}
void mapPiecewiseLinear(Pixel* out, const Pixel* in, size_t count, uint32_t top, const LinearMaps& lines) {
  const auto value = [&](const LinearMap& line, int v) {
    const uint32_t from = static_cast<uint32_t>(line.isFalling ? 255 - v : v) * 256 + line.before;
    const int height = static_cast<int>(from * line.slope >> 16) + line.offset;
    return std::min(std::clamp(height, 0, 65535) >> lines.shift, 255);
  };
  write(out, count, top, [&](size_t i) {
    return rgb(value(lines.red, red(in[i])), value(lines.green, green(in[i])),
               value(lines.blue, blue(in[i])));
  });
}

uint32_t countColor(const Pixel* in, size_t count, uint32_t color) {
  return countOf(count, [=](size_t i) { return sameColor(in[i], color); });
}
void histogram(const Pixel* in, size_t count, ChannelCounts& counts) {
  for (size_t i = 0; i < count; ++i) {
    ++counts.red[0][red(in[i])];
    ++counts.green[0][green(in[i])];
    ++counts.blue[0][blue(in[i])];
  }
}
bool isAllColor(const Pixel* in, size_t count, uint32_t color) {
  return countColor(in, count, color) == count;
}
bool isAllGray(const Pixel* in, size_t count, int32_t tolerance) {
  return count == countOf(count, [=](size_t i) {
           const auto [low, high] = std::minmax({red(in[i]), green(in[i]), blue(in[i])});
           return high - low <= tolerance;
         });
}
uint32_t countColorful(const Pixel* in, size_t count, int32_t threshold) {
  return countOf(count, [=](size_t i) {
    const int r = red(in[i]), g = green(in[i]), b = blue(in[i]);
    return std::max({r, g, b}) >= 30 && (std::abs(g - b) > threshold || std::abs(g - r) > threshold);
  });
}
size_t findColor(const Pixel* in, size_t count, uint32_t color) {
  size_t i = 0;
  while (i < count && !sameColor(in[i], color)) ++i;
  return i;
}
bool areEqual(const Pixel* in1, const Pixel* in2, size_t count) {
  return count == countOf(count, [=](size_t i) { return sameColor(in1[i], in2[i]); });
}

void markColored(uint8_t* cells, const Pixel* in, size_t count, uint8_t colored) {
  for (size_t i = 0; i < count; ++i) cells[i] = isGray(in[i]) ? uint8_t{0} : colored;
}
void blackWhere(Pixel* out, const uint8_t* cells, size_t count, uint8_t black, uint32_t top) {
  write(out, count, top, [=](size_t i) { return gray(cells[i] == black ? 0 : 255); });
}
void replaceColor(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                  uint32_t replacement) {
  write(out, count, top,
        [=](size_t i) { return (sameColor(in[i], searched) ? replacement : in[i]) & 0xFFFFFF; });
}
void extractColor(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                  uint32_t replacement, uint32_t background) {
  write(out, count, top,
        [=](size_t i) { return (sameColor(in[i], searched) ? replacement : background) & 0xFFFFFF; });
}

void saturate(Pixel* out, const Pixel* in, size_t count, uint32_t top, int32_t factor) {
  write(out, count, top, [=](size_t i) {
    const int r = red(in[i]), g = green(in[i]), b = blue(in[i]), middle = (r + 2 * g + b) / 4;
    const auto moved = [=](int v) {
      return clamped(wrapped(uint32_t(v - middle) * uint32_t(factor)) / 255 + middle);
    };
    return rgb(moved(r), moved(g), moved(b));
  });
}

// Without the memo of results that kernels keep in Tint.
void tint(Pixel* out, const Pixel* in, size_t count, uint32_t top, Tint& tint) {
  const double gr = red(tint.gray) / 255.0, gg = green(tint.gray) / 255.0, gb = blue(tint.gray) / 255.0;
  const double sr = red(tint.sepia) / 255.0, sg = green(tint.sepia) / 255.0, sb = blue(tint.sepia) / 255.0;
  write(out, count, top, [=](size_t i) {
    const long double r = red(in[i]), g = green(in[i]), b = blue(in[i]);
    const long double brightness = r * gr + g * gg + b * gb;
    const auto share = [=](double weight) { return std::min(static_cast<int>(brightness * weight), 255); };
    return rgb(share(sr), share(sg), share(sb));
  });
}

void mapThroughCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const double* cube) {
  write(out, count, top, [=](size_t i) {
    return tetrahedral(in[i], [=](const Corner& corner, size_t channel) {
      double value;  // at any address
      const size_t at = cubeIndex(corner, kCubeSide) * 3 + channel;
      std::memcpy(&value, reinterpret_cast<const char*>(cube) + at * sizeof value, sizeof value);
      return value;
    });
  });
}
void mapThroughWholeCube(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Pixel* cube) {
  write(out, count, top, [=](size_t i) {
    return tetrahedral(in[i], [=](const Corner& corner, size_t channel) {
      return cube[cubeIndex(corner, kWholeCubeSide)] >> (16 - 8 * channel) & 255;
    });
  });
}
void sepia(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Sepia& t) {
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
Excursions sum(const uint8_t* samples, size_t count) {
  constexpr int kMiddle = std::is_signed_v<Sample> ? 0 : 1 << (8 * sizeof(Sample) - 1);
  Excursions sums{};
  for (size_t i = 0; i < count; ++i) {
    Sample sample;
    std::memcpy(&sample, samples + i * sizeof sample, sizeof sample);
    const int value = sample - kMiddle;
    (value < 0 ? sums.negative : sums.positive) += static_cast<uint32_t>(value);
  }
  return sums;
}
Excursions sumInt8(const uint8_t* samples, size_t count) { return sum<int8_t>(samples, count); }
Excursions sumUInt8(const uint8_t* samples, size_t count) { return sum<uint8_t>(samples, count); }
Excursions sumInt16(const uint8_t* samples, size_t count) { return sum<int16_t>(samples, count); }
Excursions sumUInt16(const uint8_t* samples, size_t count) { return sum<uint16_t>(samples, count); }
void bars(Pixel* out, const int32_t* first, const int32_t* last, size_t count, int32_t row, uint32_t inside,
          uint32_t outside) {
  for (size_t i = 0; i < count; ++i) out[i] = first[i] <= row && row <= last[i] ? inside : outside;
}

const Table kTable = {"plain", ZVR_KERNELS(ZVR_ADDRESS)};

}  // namespace plain
