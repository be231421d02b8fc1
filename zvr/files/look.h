// Film looks from .cube files, through OpenColorIO.
#pragma once

#include <array>
#include <functional>
#include <string>

namespace zvr {

struct Look {
  using Color = std::array<double, 3>;  // red, green and blue; 1 is full

  bool isCurves;  // no table of three dimensions: each channel depends on itself alone
  std::function<Color(const Color&)> map;  // the colour for an input
};

// Reads a look. Standard error tells of keywords that are ignored. Throws Failure with "PATH: what is wrong".
Look loadLook(const std::string& path);

}  // namespace zvr
