// Parts of zvr by themselves: the reader of film looks, interpolation in them, and scaling for the gallery.

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>

#include "tests/support.h"
#include "zvr/files/cube.h"
#include "zvr/gallery/scaling.h"
#include "zvr/terminal/failures.h"

namespace {

using zvr::Cube;
using Color = Cube::Color;

// ---- The reader of .cube files ----

std::ostream& operator<<(std::ostream& out, const Color& c) {
  return out << c[0] << ' ' << c[1] << ' ' << c[2];
}

// The file's tables in words, or the message about it.
std::string madeOf(const std::string& text) try {
  const Cube cube = zvr::parseCube(text);
  std::ostringstream words;
  for (const Cube::Table* table : {&cube.curves, &cube.space}) {
    if (table->size == 0) continue;
    words << (table == &cube.curves ? "curves " : "space ") << table->size;
    words << " from " << table->low << " to " << table->high << ":";
    for (const Color& entry : table->entries) words << ' ' << entry << ',';
    words << ' ';
  }
  for (const auto& [keyword, line] : cube.ignored) words << keyword << " in line " << line << ' ';
  return words.str();
} catch (const zvr::Failure& failure) {
  return failure.what();
}

struct File {
  const char *text, *made;
};
const File kFiles[] = {
    {"\xEF\xBB\xBFLUT_1D_SIZE 2\r\n\r\n0 0 0\r\n1 1 1\r\n# the end\r\n\r\n",
     "curves 2 from 0 0 0 to 1 1 1: 0 0 0, 1 1 1, "},
    {"# a comment\nTITLE \"0 # no entry\"\n\nLUT_3D_SIZE 2\nDOMAIN_MIN 0 -1 0.25\nDOMAIN_MAX\t1.0 2 .75\n"
     "0 0 0\n1 0 .5\n  0\t1   -0.125  \n# here too\n1 1 1e-2\n0 0 +1\n1 0 1.5E0\n0 1 1e-400\n1 1 65536\n",
     "space 2 from 0 -1 0.25 to 1 2 0.75: 0 0 0, 1 0 0.5, 0 1 -0.125, 1 1 0.01, 0 0 1, 1 0 1.5, 0 1 0, "
     "1 1 65536, "},
    {"LUT_1D_SIZE 2\nLUT_1D_INPUT_RANGE -1 2\n0 0 0\n1 1 1",
     "curves 2 from -1 -1 -1 to 2 2 2: 0 0 0, 1 1 1, "},
    {"VIDEO_RANGE 1\nLUT_3D_SIZE 2\nDOMAIN_MAX 2 2 2\nLUT_1D_SIZE 2\nLUT_3D_INPUT_RANGE -1 3\nVIDEO_RANGE\n"
     "0 0 0\n1 1 1\n2 2 2\n3 3 3\n4 4 4\n5 5 5\n6 6 6\n7 7 7\n8 8 8\n9 9 9",
     "curves 2 from 0 0 0 to 2 2 2: 0 0 0, 1 1 1, space 2 from -1 -1 -1 to 3 3 3: 2 2 2, 3 3 3, 4 4 4, 5 5 "
     "5, "
     "6 6 6, 7 7 7, 8 8 8, 9 9 9, 'VIDEO_RANGE' in line 1 "},
    {"", "line 0: the file ends without LUT_1D_SIZE or LUT_3D_SIZE"},
    {"LUT_3D_SIZE 1", "line 1: LUT_3D_SIZE: '1' is not a whole number from 2 to 256"},
    {"LUT_3D_SIZE 257", "line 1: LUT_3D_SIZE: '257' is not a whole number from 2 to 256"},
    {"LUT_3D_SIZE 2.0", "line 1: LUT_3D_SIZE: '2.0' is not a whole number from 2 to 256"},
    {"LUT_3D_SIZE 2 2", "line 1: more than is expected here: '2'"},
    {"LUT_3D_SIZE 2\nLUT_3D_SIZE 2", "line 2: LUT_3D_SIZE is given a second time"},
    {"LUT_1D_SIZE", "line 1: LUT_1D_SIZE: '' is not a whole number from 2 to 65536"},
    {"LUT_1D_SIZE 65537", "line 1: LUT_1D_SIZE: '65537' is not a whole number from 2 to 65536"},
    {"\n0 0 0", "line 2: an entry comes before LUT_1D_SIZE or LUT_3D_SIZE"},
    {"LUT_1D_SIZE 2\n0 0 0\n0 0 0\n0 0 0", "line 4: more than 2 entries"},
    {"LUT_3D_SIZE 256\nLUT_1D_SIZE 65536\n0 0 0", "line 3: the file ends after 1 of 16842752 entries"},
    {"\x01\xFFPNG-and-much-more-that-is-long",
     "line 1: expected a keyword or an entry, found '??PNG-and-much-more-that...'"},
    {"DOMAIN_MIN 0 0", "line 1: DOMAIN_MIN has too few numbers"},
    {"LUT_1D_SIZE 2\nDOMAIN_MAX 1 0 1\n\n0 0 0",
     "line 2: the domain's lower end is not below its upper end in each of red, green and blue"},
    {"LUT_3D_INPUT_RANGE 1 0",
     "line 1: the domain's lower end is not below its upper end in each of red, green and blue"},
    {"LUT_1D_SIZE 2\n1 0", "line 2: an entry has too few numbers"},
    {"LUT_1D_SIZE 2\n1 0 0,5", "line 2: '0,5' is not a number"},
    {"LUT_1D_SIZE 2\n1 0 +-5", "line 2: '+-5' is not a number"},
    {"LUT_1D_SIZE 2\n1 nan 0", "line 2: 'nan' is not the value of a colour (at most 65536 either way)"},
    {"LUT_1D_SIZE 2\n1 1e400 0", "line 2: '1e400' is not the value of a colour (at most 65536 either way)"},
    {"LUT_1D_SIZE 2\n1 -65537 0", "line 2: '-65537' is not the value of a colour (at most 65536 either way)"},
    {"LUT_1D_SIZE 2\n1 0 0\none 0 0", "line 3: expected an entry of three numbers, found 'one'"},
};

TEST(Cube, IsMadeOfText) {
  for (const auto& [text, made] : kFiles) EXPECT_EQ(madeOf(text), made) << text;
}

// ---- Interpolation ----

// From the lowest corner of a cell along its axes, those of the larger fractions first.
double tetrahedral(const Cube::Table& table, const Color& input, size_t x) {
  const auto side = static_cast<size_t>(table.size);
  const size_t strides[] = {1, side, side * side};
  size_t place = 0;
  std::vector<std::pair<double, size_t>> steps;
  for (size_t i = 0; i < 3; ++i) {
    const double position = input[i] * (table.size - 1), low = std::floor(position);
    place += static_cast<size_t>(low) * strides[i];
    if (position > low) steps.emplace_back(position - low, strides[i]);
  }
  std::sort(steps.rbegin(), steps.rend());
  double value = table.entries[place][x];
  for (const auto& [fraction, stride] : steps) {
    const double before = table.entries[place][x];
    value += fraction * (table.entries[place += stride][x] - before);
  }
  return value;
}

TEST(Cube, InterpolatesInTetrahedra) {
  std::mt19937 engine(1);
  const auto random = [&] { return std::uniform_real_distribution<double>(0, 1)(engine); };
  for (int size : {2, 3, 5, 17}) {
    Cube cube;
    cube.space.size = size;
    for (int i = 0; i < size * size * size; ++i) cube.space.entries.push_back({random(), random(), random()});
    for (int round = 0; round < 1000; ++round) {
      Color input{random(), random(), random()};
      if (round % 3 == 0) input[engine() % 3] = input[engine() % 3];
      if (round % 5 == 0) input[engine() % 3] = engine() % 2;
      const Color color = cube.at(input);
      for (size_t x = 0; x < 3; ++x) ASSERT_NEAR(color[x], tetrahedral(cube.space, input, x), 1e-12) << size;
    }
  }
}

// Curves come before the table; beyond the ends of a domain all is as at its ends.
TEST(Cube, TakesInputsFromDomains) {
  Cube cube;
  cube.curves = {3, {0, 0, -1}, {1, 0.5, 1}, {{0.25, 0, 0.5}, {0.25, 0.5, 1}, {0.75, 1, 0.5}}};
  // Red up to 0.5 counts; green and blue change places.
  cube.space = {2, {0, 0, 0}, {0.5, 1, 2}, {}};
  for (int i = 0; i < 8; ++i) cube.space.entries.push_back({i % 2 * 1.0, i / 4 * 1.0, i / 2 % 2 * 1.0});
  const std::pair<Color, Color> cases[] = {
      {{0, 0, -2}, {0.5, 0.25, 0}},
      {{0.75, 0.125, 0}, {1, 0.5, 0.25}},
      {{1, 0.4, 0.5}, {1, 0.375, 0.8}},
  };
  for (const auto& [input, expected] : cases) {
    for (size_t x = 0; x < 3; ++x) EXPECT_NEAR(cube.at(input)[x], expected[x], 1e-12) << input[0];
  }
}

// ---- Scaling ----

// Boxes of a row of five: two pixels and three. Transparent pixels have no say in the colour.
TEST(ScaledDown, TakesMeansOfBoxes) {
  zvr::Image image;
  image.allocate(5, 1);
  const uint8_t pixels[] = {10, 20,  30,  255, 20,  40, 60, 255, 90, 90,
                            90, 255, 200, 200, 200, 0,  30, 30,  30, 255};
  std::copy(std::begin(pixels), std::end(pixels), image.pixels.get());
  const zvr::Image scaled = zvr::scaledDown(image, 2);
  ASSERT_EQ(std::make_pair(scaled.width, scaled.height), std::make_pair(2, 1));
  const std::vector<int> expected = {15, 30, 45, 255, 60, 60, 60, 170};
  EXPECT_EQ(std::vector<int>(scaled.pixels.get(), scaled.pixels.get() + 8), expected);
  EXPECT_TRUE(zvr::scaledDown(image, 5) == image);
}

}  // namespace
