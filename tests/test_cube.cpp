// Film looks: the reader of .cube files, interpolation in them, and `zvr lut` and `zvr run` on files.

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include "tests/zvr_program.h"
#include "zvr/files/cube.h"
#include "zvr/terminal/failures.h"

namespace {

using zvr_test::contains;
using zvr_test::Finished;
using Color = std::array<double, 3>;

// ---- Reading ----

// A 2 x 2 x 2 table with everything that a file may have.
const std::vector<std::string> kGoodLines = {
    "# a comment",                 // 1
    "TITLE \"0 # not an entry\"",  // 2
    "",                            // 3
    "LUT_3D_SIZE 2",               // 4
    "DOMAIN_MIN 0 -1 0.25",        // 5
    "DOMAIN_MAX\t1.0 2 .75",       // 6
    "0 0 0",                       // 7
    "1 0 0.5",                     // 8
    "  0\t1   -0.125  ",           // 9
    "# between entries",           // 10
    "1 1 1e-2",                    // 11
    "0 0 +1",                      // 12
    "1 0 1.5E0",                   // 13
    "0 1 1e-400",                  // 14: less than a number can say
    "1 1 65536",                   // 15
};

std::string joined(const std::vector<std::string>& lines, const std::string& end = "\n") {
  std::string text;
  for (const std::string& line : lines) text += line + end;
  return text;
}

void expectGood(const std::string& text) {
  const zvr::Cube cube = zvr::parseCube(text);
  EXPECT_EQ(cube.curves.size, 0);
  EXPECT_EQ(cube.space.size, 2);
  EXPECT_EQ(cube.space.low, (Color{0, -1, 0.25}));
  EXPECT_EQ(cube.space.high, (Color{1, 2, 0.75}));
  EXPECT_EQ(cube.space.entries, (std::vector<Color>{{0, 0, 0},
                                                    {1, 0, 0.5},
                                                    {0, 1, -0.125},
                                                    {1, 1, 0.01},
                                                    {0, 0, 1},
                                                    {1, 0, 1.5},
                                                    {0, 1, 0},
                                                    {1, 1, 65536}}));
}

TEST(Cube, IsReadWhateverItsLineEnds) {
  const std::string text = joined(kGoodLines);
  for (const std::string& good : {text, joined(kGoodLines, "\r\n"), "\xEF\xBB\xBF" + text,
                                  text.substr(0, text.size() - 1), text + "\n# the end\n\n"}) {
    expectGood(good);
  }
}

struct Tables {
  const char* header;
  int curves, space;  // sizes; entry n is n of red, green and blue, counted through both tables
  double curvesLow, curvesHigh, spaceLow, spaceHigh;
  std::map<std::string, size_t> ignored;
};
const Tables kTables[] = {
    {"LUT_1D_SIZE 3\n", 3, 0, 0, 1, 0, 1, {}},
    {"LUT_1D_SIZE 2\nLUT_1D_INPUT_RANGE -1 2\n", 2, 0, -1, 2, 0, 1, {}},
    {"DOMAIN_MAX 2 2 2\nLUT_1D_SIZE 2\n", 2, 0, 0, 2, 0, 1, {}},
    {"LUT_3D_SIZE 2\nLUT_1D_SIZE 4\nLUT_1D_INPUT_RANGE 1 2\nLUT_3D_INPUT_RANGE 0 3\n", 4, 2, 1, 2, 0, 3, {}},
    {"LUT_IN_VIDEO_RANGE 1\nLUT_3D_SIZE 2\nDOMAIN_MIN -1 -1 -1\nVersion2\nLUT_1D_SIZE 5\n"
     "LUT_IN_VIDEO_RANGE\n",
     5,
     2,
     -1,
     1,
     0,
     1,
     {{"'LUT_IN_VIDEO_RANGE'", 1}, {"'Version2'", 4}}},
};

TEST(Cube, HasCurvesATableOrBoth) {
  for (const Tables& expected : kTables) {
    SCOPED_TRACE(expected.header);
    const int count = expected.curves + expected.space * expected.space * expected.space;
    std::string text = expected.header;
    std::vector<Color> entries;
    for (int i = 0; i < count; ++i) {
      const std::string number = std::to_string(i) + " ";
      text += number + number + number + "\n";
      entries.push_back({i + 0.0, i + 0.0, i + 0.0});
    }
    const zvr::Cube cube = zvr::parseCube(text);
    const auto middle = entries.begin() + expected.curves;
    EXPECT_EQ(cube.curves.size, expected.curves);
    EXPECT_EQ(cube.space.size, expected.space);
    EXPECT_EQ(cube.curves.entries, std::vector<Color>(entries.begin(), middle));
    EXPECT_EQ(cube.space.entries, std::vector<Color>(middle, entries.end()));
    for (size_t x = 0; x < 3; ++x) {
      EXPECT_EQ(cube.curves.low[x], expected.curvesLow);
      EXPECT_EQ(cube.curves.high[x], expected.curvesHigh);
      EXPECT_EQ(cube.space.low[x], expected.spaceLow);
      EXPECT_EQ(cube.space.high[x], expected.spaceHigh);
    }
    EXPECT_EQ(cube.ignored, expected.ignored);
  }
}

// The good file with one line changed ("" for the line left out), and the message about it.
struct Broken {
  size_t line;
  const char* replacement;
  const char* message;
};
const Broken kBroken[] = {
    {4, "LUT_3D_SIZE 1", "line 4: LUT_3D_SIZE: '1' is not a whole number from 2 to 256"},
    {4, "LUT_3D_SIZE 257", "line 4: LUT_3D_SIZE: '257'"},
    {4, "LUT_3D_SIZE 2.0", "line 4: LUT_3D_SIZE: '2.0'"},
    {4, "LUT_3D_SIZE", "line 4: LUT_3D_SIZE: ''"},
    {4, "LUT_3D_SIZE 2 2", "line 4: more than is expected here: '2'"},
    {4, "LUT_1D_SIZE 1", "line 4: LUT_1D_SIZE: '1' is not a whole number from 2 to 65536"},
    {4, "LUT_1D_SIZE 65537", "line 4: LUT_1D_SIZE: '65537'"},
    {4, "LUT_1D_SIZE 7", "line 15: more than 7 entries"},
    {4, "", "line 7: an entry comes before LUT_1D_SIZE or LUT_3D_SIZE"},
    {4, "LUT_3D_SIZE 3", "line 15: the file ends after 8 of 27 entries"},
    {2, "LUT_1D_SIZE 2", "line 15: the file ends after 8 of 10 entries"},
    {1, "LUT_3D_SIZE 2", "line 4: LUT_3D_SIZE is given a second time"},
    {2, "\x01\xFFPNG-and-much-more-that-is-long",
     "line 2: expected a keyword or an entry, found '??PNG-and-much-more-that...'"},
    {5, "DOMAIN_MIN 0 0", "line 5: DOMAIN_MIN has too few numbers"},
    {6, "DOMAIN_MAX 1 -1 1", "line 6: the domain's lower end is not below its upper end"},
    {3, "LUT_3D_INPUT_RANGE 1 0", "line 3: the domain's lower end is not below its upper end"},
    {6, "LUT_1D_INPUT_RANGE 1 1", "line 6: the domain's lower end is not below its upper end"},
    {8, "1 0", "line 8: an entry has too few numbers"},
    {8, "1 0 0,5", "line 8: '0,5' is not a number"},
    {8, "1 0 +-5", "line 8: '+-5' is not a number"},
    {8, "1 nan 0", "line 8: 'nan' is not the value of a colour"},
    {8, "1 1e400 0", "line 8: '1e400' is not the value of a colour (at most 65536 either way)"},
    {8, "1 -65537 0", "line 8: '-65537' is not the value of a colour"},
    {8, "one 0 0", "line 8: expected an entry of three numbers, found 'one'"},
    {9, "DOMAIN_MIN 0 0 0", "line 9: expected an entry of three numbers, found 'DOMAIN_MIN'"},
    {9, "", "line 15: the file ends after 7 of 8 entries"},
    {10, "0 0 0", "line 15: more than 8 entries"},
};

TEST(Cube, SaysWhichLineIsWrong) {
  for (const Broken& broken : kBroken) {
    std::vector<std::string> lines = kGoodLines;
    lines[broken.line - 1] = broken.replacement;
    try {
      zvr::parseCube(joined(lines));
      ADD_FAILURE() << broken.message;
    } catch (const zvr::Failure& failure) {
      EXPECT_EQ(std::string(failure.what()).substr(0, std::string(broken.message).size()), broken.message);
    }
  }
  for (const char* nothing : {"", "\n\n", "# only\n"}) EXPECT_THROW(zvr::parseCube(nothing), zvr::Failure);
}

// ---- Interpolation ----

zvr::Cube makeCube(int size, const std::function<Color(const Color&)>& look) {
  zvr::Cube cube;
  cube.space.size = size;
  const auto ofLast = [&](int i) { return i / (size - 1.0); };
  for (int b = 0; b < size; ++b) {
    for (int g = 0; g < size; ++g) {
      for (int r = 0; r < size; ++r) cube.space.entries.push_back(look({ofLast(r), ofLast(g), ofLast(b)}));
    }
  }
  return cube;
}

// From the lowest corner of a cell along its axes, those of the larger fractions first.
double tetrahedral(const zvr::Cube& cube, const Color& input, size_t x) {
  const zvr::Cube::Table& table = cube.space;
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
    const zvr::Cube cube = makeCube(size, [&](const Color&) { return Color{random(), random(), random()}; });
    for (int round = 0; round < 1000; ++round) {
      Color input{random(), random(), random()};
      if (round % 3 == 0) input[engine() % 3] = input[engine() % 3];
      if (round % 5 == 0) input[engine() % 3] = engine() % 2;
      const Color color = cube.at(input);
      for (size_t x = 0; x < 3; ++x) ASSERT_NEAR(color[x], tetrahedral(cube, input, x), 1e-12) << size;
    }
  }
}

TEST(Cube, InputsAreTakenFromTheDomain) {
  zvr::Cube cube = makeCube(5, [](const Color& c) { return c; });
  cube.space.low = {0, -1, 0.25};
  cube.space.high = {2, 1, 0.75};
  for (double gray : {0.0, 0.5, 1.0}) {
    const Color expected = {gray / 2, (gray + 1) / 2, std::clamp(gray * 2 - 0.5, 0.0, 1.0)};
    for (size_t x = 0; x < 3; ++x) EXPECT_NEAR(cube.at({gray, gray, gray})[x], expected[x], 1e-12) << gray;
  }
}

TEST(Cube, CurvesComeBeforeTheTable) {
  zvr::Cube cube = makeCube(3, [](const Color& c) { return Color{1 - c[0], c[2], c[1] * 0.5}; });
  cube.curves = {3, {0, 0, -1}, {1, 0.5, 1}, {{0.25, 0, 0}, {0.25, 0.5, 1}, {0.75, 1, 0.5}}};
  const std::pair<Color, Color> cases[] = {
      {{0, 0, -2}, {0.75, 0, 0}},
      {{0.75, 0.125, 0}, {0.5, 1, 0.125}},
      {{1, 0.4, 0.5}, {0.25, 0.75, 0.4}},
  };
  for (const auto& [input, expected] : cases) {
    for (size_t x = 0; x < 3; ++x) EXPECT_NEAR(cube.at(input)[x], expected[x], 1e-12) << input[0];
  }
}

// ---- zvr lut and zvr run ----

// A linear look: interpolation in tetrahedra keeps it exactly, whatever the size of the table.
Color warm(const Color& c) {
  return {0.9 * c[0] + 0.05 * c[1] + 0.03, 0.85 * c[1] + 0.1 * c[2], 0.7 * c[2] + 0.1 * c[0] + 0.05};
}

class Looks : public zvr_test::Zvr {
 protected:
  void SetUp() override {
    Zvr::SetUp();
    photo_ = zvr_test::pattern(200, 150, false);
    std::mt19937 engine(2);
    for (size_t i = 0; i < photo_.bytes.size(); ++i) {
      if (i % 4 < 3) photo_.bytes[i] = static_cast<uint8_t>(engine());
    }
    writePng(folder_ / "photo.png", photo_, PNG_FORMAT_RGB);
  }

  // The photograph as zvr changed it.
  zvr_test::Pixels result(const std::string& words) {
    const Finished done = runLine(words + " -o out.png");
    EXPECT_EQ(done.status, 0) << done.errors;
    return zvr_test::readPng(folder_ / "out.png");
  }
  void writeCube(const zvr::Cube& cube) const {
    std::ofstream file(folder_ / "look.cube");
    file << "TITLE \"test\"\n" << std::fixed;  // six decimals
    if (cube.curves.size > 0) file << "LUT_1D_SIZE " << cube.curves.size << '\n';
    if (cube.space.size > 0) file << "LUT_3D_SIZE " << cube.space.size << '\n';
    for (const auto* table : {&cube.curves, &cube.space}) {
      for (const Color& entry : table->entries)
        file << entry[0] << ' ' << entry[1] << ' ' << entry[2] << '\n';
    }
  }

  zvr_test::Pixels photo_;
};

TEST_F(Looks, IdentitiesGiveThePhotographBack) {
  EXPECT_TRUE(result("lut photo.png --identity") == photo_);
  EXPECT_TRUE(
      contains(runLine("lut photo.png --identity -o out.png --ledger").errors, "held: 0 objects, 0 s"));
  for (int size : {2, 16, 33}) {
    writeCube(makeCube(size, [](const Color& c) { return c; }));
    EXPECT_TRUE(result("lut photo.png look.cube") == photo_)
        << "few decimals made a difference, size " << size;
  }
}

struct Look {
  zvr::Cube cube;
  std::function<Color(const Color&)> says;
  double most, mean;  // differences from that; a table of another size than the class's is resampled
};

TEST_F(Looks, AreWhatTheySayAndRounded) {
  const auto curve = [](const Color& c) { return Color{std::sqrt(c[0]), c[1] * c[1], 1 - c[2]}; };
  const auto mixed = [](const Color& c) {
    return Color{std::pow(c[0], 0.8) * 0.9 + 0.1 * c[1] * c[2], c[1] * (0.7 + 0.3 * c[0]),
                 std::sqrt(c[2] * 0.8 + 0.05)};
  };
  const auto through = [](const zvr::Cube& cube) {
    return [&cube](const Color& c) {
      return Color{tetrahedral(cube, c, 0), tetrahedral(cube, c, 1), tetrahedral(cube, c, 2)};
    };
  };
  std::vector<Look> looks;
  for (int size : {2, 17, 25}) looks.push_back({makeCube(size, warm), warm, 0.005, 0.02});
  const zvr::Cube own = makeCube(16, mixed), other = makeCube(33, mixed);
  looks.push_back({own, through(own), 0.005, 0.02});
  looks.push_back({other, through(other), 3, 0.1});
  zvr::Cube curves, shaped = makeCube(9, warm);
  for (int i = 0; i < 256; ++i) curves.curves.entries.push_back(curve({i / 255.0, i / 255.0, i / 255.0}));
  curves.curves.size = 256;
  looks.push_back({curves, curve, 0.005, 0.02});
  shaped.curves = {2, {0, 0, 0}, {1, 1, 1}, {{1, 0.25, 0}, {0, 0.75, 1}}};
  looks.push_back({shaped,
                   [](const Color& c) {
                     return warm({1 - c[0], 0.25 + c[1] / 2, c[2]});
                   },
                   0.005, 0.02});
  for (const Look& look : looks) {
    writeCube(look.cube);
    const std::string host = look.cube.space.size % 2 == 0 ? "console" : "cairo";
    const zvr_test::Bytes out = result("lut photo.png look.cube --host " + host).bytes, &in = photo_.bytes;
    double sum = 0;
    for (size_t i = 0; i < in.size(); i += 4) {
      const Color expected = look.says({in[i] / 255.0, in[i + 1] / 255.0, in[i + 2] / 255.0});
      for (size_t x = 0; x < 3; ++x) {
        const double exact = expected[x] * 255, given = out[i + x];
        ASSERT_NEAR(given, exact, 0.5 + look.most);
        sum += given - std::round(exact);
      }
    }
    EXPECT_NEAR(sum / (static_cast<double>(in.size()) * 0.75), 0, look.mean) << look.cube.space.size;
  }
}

TEST_F(Looks, MayHaveUnknownKeywords) {
  std::ofstream(folder_ / "look.cube")
      << "LUT_1D_SIZE 2\nLUT_IN_VIDEO_RANGE\nLUT_IN_VIDEO_RANGE\n0 0 0\n1 1 1\n";
  const Finished done = runLine("lut photo.png look.cube -o out.png");
  EXPECT_EQ(done.errors,
            "zvr: look.cube: line 2: warning: the unknown keyword 'LUT_IN_VIDEO_RANGE' is ignored\n");
  EXPECT_TRUE(zvr_test::readPng(folder_ / "out.png") == photo_);
  EXPECT_TRUE(contains(runLine("lut look.cube --dump").output, "\n254  254 254 254\n255  255 255 255\n"));
}

TEST_F(Looks, DumpsTheTable) {
  writeCube(makeCube(9, warm));
  std::stringstream lines(runLine("lut look.cube --dump").output);
  std::string heading;
  std::getline(lines, heading);
  int count = 0;
  for (int r = 0, g = 0, b = 0; lines >> r >> g >> b; ++count) {
    EXPECT_EQ(count, (r * 16 + g) * 16 + b);
    for (double channel : warm({r / 15.0, g / 15.0, b / 15.0})) {
      double given = -1;
      lines >> given;
      ASSERT_NEAR(given, channel * 255 + 0.5, 0.002) << r << ' ' << g << ' ' << b;
    }
  }
  EXPECT_EQ(count, 4096);
}

TEST_F(Looks, SetsPropertiesByName) {
  const zvr_test::Bytes out =
      result("run picturesepiazvr photo.png SepiaRed=40 sepiagreen=-20 FactorBlue=0").bytes;
  for (size_t i = 0; i < out.size(); i += 4) {
    const int brightness = (photo_.bytes[i] * 306 + photo_.bytes[i + 2] * 116) / 1024;
    ASSERT_EQ(out[i], std::min(255, brightness + 40));
    ASSERT_EQ(out[i + 1], std::max(0, brightness - 20));
    ASSERT_EQ(out[i + 2], brightness);
  }
}

TEST_F(Looks, SaysWhatIsWrong) {
  std::ofstream(folder_ / "bad.cube") << "LUT_3D_SIZE 2\n0 0 0\n0 0 x\n";
  for (const char* name : {"film.3DL", "film.lut", "film.icm"}) std::ofstream(folder_ / name) << "0 1 2\n";
  std::ofstream(folder_ / "film") << "CSPLUTV100\n3D\n";
  std::ofstream(folder_ / "profile") << std::string(36, '\x01') << "acsp";
  const struct {
    const char* words;
    int status;
    const char* message;
  } cases[] = {
      {"lut photo.png bad.cube -o out.png", 1, "bad.cube: line 3: 'x' is not a number"},
      {"lut photo.png none.cube -o out.png", 1, "none.cube: No such file"},
      {"lut photo.png film.3DL", 1, "film.3DL: a 3DL look; zvr reads .cube files"},
      {"lut photo.png film.lut", 1, "film.lut: a LUT file of an unknown kind"},
      {"lut photo.png film.icm", 1, "film.icm: an ICC profile"},
      {"lut photo.png film", 1, "film: a cineSpace look"},
      {"lut photo.png profile", 1, "profile: an ICC profile"},
      {"lut bad.cube photo.png -o out.png", 1, "photo.png: a picture, perhaps a Hald look"},
      {"run picturelut3dzvr photo.png -o out.png", 1, "PictureLut3DZVR.Table is empty; `zvr lut` fills it"},
      {"lut photo.png", 2, "expected a picture and a .cube file, found only photo.png"},
      {"lut", 2, "expected a .cube file, or --identity"},
      {"lut photo.png more.png bad.cube", 2, "unexpected word 'more.png'"},
      {"run PictureSepia photo.png", 2,
       "no class 'PictureSepia'; there are PictureSepiaZVR, PictureLut3DZVR"},
      {"run PictureSepiaZVR photo.png Sepia=1", 2,
       "PictureSepiaZVR has no property 'Sepia'; it has SourcePicture"},
      {"run PictureSepiaZVR photo.png SepiaRed=1.5", 2, "SepiaRed: '1.5' is not"},
      {"run PictureSepiaZVR photo.png SepiaRed", 2, "'SepiaRed' is not of the form PROPERTY=VALUE"},
      {"run PictureSepiaZVR none.png", 1, "none.png: No such file"},
  };
  for (const auto& c : cases) {
    const Finished done = runLine(c.words);
    EXPECT_EQ(done.status, c.status) << c.words;
    EXPECT_TRUE(contains(done.errors, c.message)) << c.words << ": " << done.errors;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
}

}  // namespace
