// Fuzzes zvr's parser of .cube files: any text gives a table whose colours lie within its entries, or an
// error message.

#include "zvr/files/cube.h"

#include <algorithm>

#include "fuzz/played_host.h"
#include "zvr/terminal/failures.h"

namespace {

void expectWithinEntries(const zvr::Cube& cube, const zvr::Cube::Color& input) {
  constexpr double kRounding = 1e-6;
  const zvr::Cube::Color color = cube.at(input);
  for (size_t i = 0; i < 3; ++i) {
    const std::vector<zvr::Cube::Color>& entries = (cube.space.size != 0 ? cube.space : cube.curves).entries;
    const auto less = [i](const auto& a, const auto& b) { return a[i] < b[i]; };
    const auto [lowest, highest] = std::minmax_element(entries.begin(), entries.end(), less);
    if (!(color[i] >= (*lowest)[i] - kRounding && color[i] <= (*highest)[i] + kRounding))
      fuzz::fail("a colour outside the table's entries");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  try {
    const zvr::Cube cube = zvr::parseCube({reinterpret_cast<const char*>(bytes), size});
    for (const double value : {-1.0, 0.0, 0.3, 1.0, 7e4}) expectWithinEntries(cube, {value, value, 0.5});
  } catch (const zvr::Failure& problem) {
    if (std::string_view(problem.what()).substr(0, 5) != "line ") fuzz::fail("an error that names no line");
  }
  return 0;
}
