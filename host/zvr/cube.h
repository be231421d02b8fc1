// Film looks: three-dimensional colour tables from .cube files.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace zvr {

constexpr int kSmallestCube = 2, kLargestCube = 256;

struct Cube {
  int size = 0;  // entries along each axis, kSmallestCube to kLargestCube
  // The inputs, by channel, of the first and the last entry of an axis; 0 and 1 in most files.
  std::array<double, 3> low{0, 0, 0}, high{1, 1, 1};
  std::vector<std::array<double, 3>> entries;  // size^3, red changing fastest; 1 is full red, green or blue

  // The colour for an input, between the entries by tetrahedral interpolation, beyond the ends of an axis as
  // at the end.
  std::array<double, 3> at(const std::array<double, 3>& input) const;
};

// Reads the text of a .cube file. Throws Failure with "line 7: what is wrong".
Cube parseCube(std::string_view text);
// The same for a file; the message begins with its path.
Cube loadCube(const std::string& path);

}  // namespace zvr
