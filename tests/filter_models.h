// The filter classes' plain definitions, and tables to try them with.
#pragma once

#include <array>
#include <cmath>
#include <limits>

#include "tests/plain_kernels.h"

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

constexpr size_t kSide = kernels::kCubeSide, kUsed = 16;

// A table of entries; those that may not be read are NaN.
template <typename Entry>
std::vector<double> makeCube(const Entry& entry) {
  std::vector<double> cube;
  for (size_t i = 0; i < kSide * kSide * kSide * 3; ++i) {
    const std::array<size_t, 3> node{i / 3 / kSide / kSide, i / 3 / kSide % kSide, i / 3 % kSide};
    const bool isUsed = std::max({node[0], node[1], node[2]}) < kUsed;
    cube.push_back(isUsed ? entry(node, i % 3) : kNaN);
  }
  return cube;
}

inline std::vector<double> identityCube() {
  return makeCube([](const auto& node, size_t x) { return 17.0 * static_cast<double>(node[x]); });
}
inline std::vector<double> wholeCube(Random& random) {
  return makeCube([&](const auto&, size_t) { return random.between(0, 255); });
}
// In 64ths, of which sums are exact; out of the range of colours by up to `excess` on both sides.
inline std::vector<double> fractionalCube(Random& random, int excess) {
  return makeCube(
      [&](const auto&, size_t) { return random.between(-64 * excess, 64 * (255 + excess)) / 64.0; });
}

inline Rgb tetrahedral(const std::vector<double>& cube, Rgb color) {
  Rgb result;
  plain::mapThroughCube(&result, &color, 1, 0, cube.data());
  return result;
}

struct Weights {
  double red = 0.299, green = 0.587, blue = 0.114;
};

inline Rgb toned(Rgb color, const Weights& weights, const std::array<int32_t, 3>& tone) {
  const auto fixedPoint = [](double weight) {
    const double scaled = 1024 * weight;
    return static_cast<uint32_t>(std::fabs(scaled) < 2147483648.0 ? static_cast<int64_t>(scaled) : INT32_MIN);
  };
  const auto word = [&](size_t i) { return static_cast<uint32_t>(tone[i]); };
  Rgb result;
  plain::sepia(&result, &color, 1, 0,
               {fixedPoint(weights.red), fixedPoint(weights.green), fixedPoint(weights.blue), word(0),
                word(1), word(2)});
  return result;
}
