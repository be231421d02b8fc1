// The filter classes' plain definitions, and tables to try them with.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "tests/support.h"

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

constexpr size_t kSide = 18, kUsed = 16;

inline size_t place(size_t r, size_t g, size_t b, size_t x) { return ((r * kSide + g) * kSide + b) * 3 + x; }

// A table of 64ths, which sums keep exactly; what may not be read would make the result 0 or 255.
template <typename Entry>
inline std::vector<double> makeCube(Entry entry) {
  std::vector<double> cube(kSide * kSide * kSide * 3, kNaN);
  for (size_t r = 0; r < kUsed; ++r) {
    for (size_t g = 0; g < kUsed; ++g) {
      for (size_t b = 0; b < kUsed; ++b) {
        for (size_t x = 0; x < 3; ++x) cube[place(r, g, b, x)] = entry(std::array<size_t, 3>{r, g, b}, x);
      }
    }
  }
  return cube;
}

inline std::vector<double> identityCube() {
  return makeCube([](const auto& node, size_t x) { return 17.0 * static_cast<double>(node[x]); });
}
inline std::vector<double> wholeCube(Random& random) {
  return makeCube([&](const auto&, size_t) { return random.between(0, 255); });
}
// Out of the range of colours by up to `excess` on both sides.
inline std::vector<double> fractionalCube(Random& random, int excess) {
  return makeCube(
      [&](const auto&, size_t) { return random.between(-64 * excess, 64 * (255 + excess)) / 64.0; });
}

// In whole numbers: the sum of four entries in 17ths of 64ths.
inline Rgb tetrahedral(const std::vector<double>& cube, Rgb color) {
  const std::array<int, 3> channels{red(color), green(color), blue(color)};
  std::array<size_t, 3> node{}, order{0, 1, 2};
  std::array<int, 3> share{};
  for (size_t i = 0; i < 3; ++i) {
    node[i] = static_cast<size_t>(channels[i] / 17);
    share[i] = channels[i] % 17;
  }
  std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return share[a] > share[b]; });
  std::array<int, 3> result{};
  for (size_t x = 0; x < 3; ++x) {
    std::array<size_t, 3> corner = node;
    int64_t sum = 0;
    int before = 17;
    const auto add = [&](int weight) {
      if (weight > 0)
        sum += weight * static_cast<int64_t>(cube[place(corner[0], corner[1], corner[2], x)] * 64);
    };
    for (size_t axis : order) {
      add(before - share[axis]);
      before = share[axis];
      ++corner[axis];
    }
    add(before);
    result[x] = static_cast<int>(std::clamp<int64_t>(sum / (17 * 64), 0, 255));
  }
  return rgb(result[0], result[1], result[2]);
}

struct Weights {
  double red = 0.299, green = 0.587, blue = 0.114;
};

inline int32_t wrapped(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

inline int64_t fixedPoint(double weight) {
  const double scaled = 1024 * weight;
  return std::fabs(scaled) < 2147483648.0 ? static_cast<int64_t>(scaled) : INT32_MIN;
}

inline Rgb toned(Rgb color, const Weights& weights, const std::array<int32_t, 3>& tone) {
  const int32_t sum = wrapped(wrapped(red(color) * fixedPoint(weights.red)) +
                              int64_t{wrapped(green(color) * fixedPoint(weights.green))} +
                              wrapped(blue(color) * fixedPoint(weights.blue)));
  std::array<int, 3> result{};
  for (size_t x = 0; x < 3; ++x) result[x] = std::clamp(wrapped(int64_t{tone[x]} + sum / 1024), 0, 255);
  return rgb(result[0], result[1], result[2]);
}
