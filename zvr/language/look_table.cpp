#include "zvr/language/look_table.h"

namespace zvr {
namespace {

constexpr double kLast = kTableSide - 1, kFull = 255;
constexpr double kHalf = 0.5;  // the class truncates: with it, results are rounded

}  // namespace

void fillTable(Filter& filter, const Cube& cube) {
  const host::Method& table = filter.method("Table");
  forEachEntry([&](int64_t r, int64_t g, int64_t b) {
    const auto input = [](int64_t index) { return static_cast<double>(index) / kLast; };
    const Cube::Color color = cube.at({input(r), input(g), input(b)});
    for (int64_t x = 0; x < 3; ++x) {
      filter.assign(table, {r, g, b, x}, color[static_cast<size_t>(x)] * kFull + kHalf);
    }
  });
}

}  // namespace zvr
