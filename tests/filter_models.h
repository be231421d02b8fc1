// Tables of colours to try.
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

inline std::vector<double> wholeCube(Random& random) {
  return makeCube([&](const auto&, size_t) { return random.between(0, 255); });
}
