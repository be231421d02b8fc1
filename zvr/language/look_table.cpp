#include "zvr/language/look_table.h"

#include <cmath>

namespace zvr {
namespace {

constexpr int64_t kStep = 17;  // channel values from one entry to the next
constexpr double kFull = 255;

// Numbers in a file have few digits: 0.133333 of 255 means 34. The class truncates, so a hair less would
// become 33.
double tableValue(double value) {
  constexpr double kHair = 0.002;
  const double scaled = value * kFull, whole = std::round(scaled);
  return std::fabs(scaled - whole) < kHair ? whole : scaled;
}

}  // namespace

void fillTable(Filter& filter, const Cube* cube) {
  const host::Method& table = filter.method("Table");
  forEachEntry([&](int64_t r, int64_t g, int64_t b) {
    const auto value = [](int64_t index) { return static_cast<double>(index * kStep); };
    std::array<double, 3> color{value(r), value(g), value(b)};
    if (cube) {
      color = cube->at({value(r) / kFull, value(g) / kFull, value(b) / kFull});
      for (double& channel : color) channel = tableValue(channel);
    }
    for (int64_t x = 0; x < 3; ++x) filter.assign(table, {r, g, b, x}, color[static_cast<size_t>(x)]);
  });
}

}  // namespace zvr
