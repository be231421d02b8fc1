// Film looks: colour tables of one and of three dimensions from .cube files.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zvr {

constexpr int kSmallestTable = 2, kLargestCurves = 65536, kLargestCube = 256;

struct Cube {
  using Color = std::array<double, 3>;  // 1 is full red, green or blue
  struct Table {
    int size = 0;  // entries along each axis; 0: the file has no such table
    // The inputs, by channel, of the first and the last entry of an axis; 0 and 1 in most files.
    Color low{0, 0, 0}, high{1, 1, 1};
    std::vector<Color> entries;
  };
  Table curves;  // one dimension, before the other table: size entries, each channel by itself
  Table space;   // three dimensions: size^3 entries, red changing fastest
  std::map<std::string, size_t> ignored;  // unknown keywords, quoted, and the lines where they come first

  // The colour for an input (itself without tables), between the entries by linear (curves) and tetrahedral
  // interpolation, beyond the ends of an axis as at the end.
  Color at(const Color& input) const;
};

// Reads the text of a .cube file. Throws Failure with "line 7: what is wrong".
Cube parseCube(std::string_view text);
// The same for a file; the message begins with its path. Standard error tells of what is ignored.
Cube loadCube(const std::string& path);

}  // namespace zvr
