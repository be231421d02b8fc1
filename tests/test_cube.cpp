// Film looks: the reader of .cube files, interpolation in them, and `zvr lut` and `zvr run` on files.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include "host/zvr/cube.h"
#include "host/zvr/images.h"
#include "host/zvr/program.h"

namespace {

namespace fs = std::filesystem;
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

void expectGood(const zvr::Cube& cube) {
  EXPECT_EQ(cube.size, 2);
  EXPECT_EQ(cube.low, (Color{0, -1, 0.25}));
  EXPECT_EQ(cube.high, (Color{1, 2, 0.75}));
  EXPECT_EQ(cube.entries, (std::vector<Color>{{0, 0, 0},
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
  expectGood(zvr::parseCube(text));
  expectGood(zvr::parseCube(joined(kGoodLines, "\r\n")));
  expectGood(zvr::parseCube("\xEF\xBB\xBF" + text));
  expectGood(zvr::parseCube(text.substr(0, text.size() - 1)));
  expectGood(zvr::parseCube(text + "\n# the end\n\n"));
}

// The good file with one line changed ("" for the line left out), and what is said about it.
struct Broken {
  size_t line;
  const char* replacement;
  const char* message;
};
const Broken kBroken[] = {
    {4, "LUT_3D_SIZE 1", "line 4: LUT_3D_SIZE: '1' is not a whole number from 2 to 256"},
    {4, "LUT_3D_SIZE 257", "line 4: LUT_3D_SIZE: '257'"},
    {4, "LUT_3D_SIZE 2.0", "line 4: LUT_3D_SIZE: '2.0'"},
    {4, "LUT_3D_SIZE -2", "line 4: LUT_3D_SIZE: '-2'"},
    {4, "LUT_3D_SIZE 99999999999", "line 4: LUT_3D_SIZE: '99999999999'"},
    {4, "LUT_3D_SIZE", "line 4: LUT_3D_SIZE: ''"},
    {4, "LUT_3D_SIZE 2 2", "line 4: more than is expected here: '2'"},
    {4, "LUT_1D_SIZE 2", "line 4: LUT_1D_SIZE: a one-dimensional table"},
    {4, "", "line 7: an entry stands before LUT_3D_SIZE"},
    {4, "LUT_3D_SIZE 3", "line 15: the file ends after 8 of the 27 entries of a 3 x 3 x 3 table"},
    {1, "LUT_3D_SIZE 2", "line 4: LUT_3D_SIZE stands here a second time"},
    {2, "TITEL x", "line 2: unknown keyword 'TITEL'"},
    {2, "\x01\xFFPNG-and-much-more-that-is-long", "line 2: unknown keyword '??PNG-and-much-more-that...'"},
    {5, "DOMAIN_MIN 0 0", "line 5: DOMAIN_MIN has too few numbers"},
    {5, "DOMAIN_MIN 0 x 0", "line 5: 'x' is not a number"},
    {6, "DOMAIN_MAX 1 -1 1", "line 6: the domain's lower end is not below its upper end"},
    {6, "LUT_3D_INPUT_RANGE 1 0", "line 6: the domain's lower end is not below its upper end"},
    {8, "1 0", "line 8: an entry has too few numbers"},
    {8, "1 0 0 0", "line 8: more than is expected here: '0'"},
    {8, "1 0 0,5", "line 8: '0,5' is not a number"},
    {8, "1 0 +-5", "line 8: '+-5' is not a number"},
    {8, "1 nan 0", "line 8: 'nan' is no value of a colour"},
    {8, "1 -inf 0", "line 8: '-inf' is no value of a colour"},
    {8, "1 1e400 0", "line 8: '1e400' is no value of a colour (at most 65536 either way)"},
    {8, "1 -65537 0", "line 8: '-65537' is no value of a colour"},
    {8, "one 0 0", "line 8: expected an entry of three numbers, found 'one'"},
    {9, "DOMAIN_MIN 0 0 0", "line 9: expected an entry of three numbers, found 'DOMAIN_MIN'"},
    {9, "", "line 15: the file ends after 7 of the 8 entries of a 2 x 2 x 2 table"},
    {10, "0 0 0", "line 15: more than the 8 entries of a 2 x 2 x 2 table"},
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
  cube.size = size;
  const auto ofLast = [&](int i) { return i / (size - 1.0); };
  for (int b = 0; b < size; ++b) {
    for (int g = 0; g < size; ++g) {
      for (int r = 0; r < size; ++r) cube.entries.push_back(look({ofLast(r), ofLast(g), ofLast(b)}));
    }
  }
  return cube;
}

// The six cases one by one.
double tetrahedral(const zvr::Cube& cube, const Color& input, size_t x) {
  std::array<int, 3> low{}, high{};
  Color f{};
  for (size_t i = 0; i < 3; ++i) {
    const double position = input[i] * (cube.size - 1);
    low[i] = static_cast<int>(position);
    high[i] = std::min(low[i] + 1, cube.size - 1);
    f[i] = position - low[i];
  }
  const auto corner = [&](bool r, bool g, bool b) {
    const int place =
        ((b ? high : low)[2] * cube.size + (g ? high : low)[1]) * cube.size + (r ? high : low)[0];
    return cube.entries[static_cast<size_t>(place)][x];
  };
  const double c000 = corner(false, false, false), c111 = corner(true, true, true);
  const double c100 = corner(true, false, false), c010 = corner(false, true, false);
  const double c001 = corner(false, false, true), c110 = corner(true, true, false);
  const double c101 = corner(true, false, true), c011 = corner(false, true, true);
  const double r = f[0], g = f[1], b = f[2];
  if (r > g && g > b) return (1 - r) * c000 + (r - g) * c100 + (g - b) * c110 + b * c111;
  if (r > g && r > b) return (1 - r) * c000 + (r - b) * c100 + (b - g) * c101 + g * c111;
  if (r > g) return (1 - b) * c000 + (b - r) * c001 + (r - g) * c101 + g * c111;
  if (b > g) return (1 - b) * c000 + (b - g) * c001 + (g - r) * c011 + r * c111;
  if (b > r) return (1 - g) * c000 + (g - b) * c010 + (b - r) * c011 + r * c111;
  return (1 - g) * c000 + (g - r) * c010 + (r - b) * c110 + b * c111;
}

TEST(Cube, InterpolatesInTetrahedra) {
  std::mt19937 engine(1);
  const auto random = [&] { return std::uniform_real_distribution<double>(0, 1)(engine); };
  for (int size : {2, 3, 5, 17}) {
    const zvr::Cube cube = makeCube(size, [&](const Color&) { return Color{random(), random(), random()}; });
    for (int round = 0; round < 3000; ++round) {
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
  cube.low = {0, -1, 0.25};
  cube.high = {2, 1, 0.75};
  const auto expectNear = [&](const Color& input, const Color& expected) {
    const Color color = cube.at(input);
    for (size_t x = 0; x < 3; ++x) EXPECT_NEAR(color[x], expected[x], 1e-12) << input[0];
  };
  expectNear({0.5, 0.5, 0.5}, {0.25, 0.75, 0.5});
  expectNear({0, 0, 0}, {0, 0.5, 0});
  expectNear({1, 1, 1}, {0.5, 1, 1});
}

// ---- zvr lut and zvr run ----

// What a linear look makes of a colour: tetrahedra keep it exactly, whatever the size of the table.
Color warm(const Color& c) {
  return {0.9 * c[0] + 0.05 * c[1] + 0.03, 0.85 * c[1] + 0.1 * c[2], 0.7 * c[2] + 0.1 * c[0] + 0.05};
}

class Program : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "zvr-cube-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    std::mt19937 engine(2);
    photo_.allocate(200, 150);
    for (size_t i = 0; i < photo_.byteCount(); ++i) {
      photo_.pixels[i] = i % 4 == 3 ? 255 : static_cast<uint8_t>(engine());
    }
    zvr::saveImage(photo_, folder_ / "photo.png", 92);
  }
  void TearDown() override { fs::remove_all(folder_); }

  // The exit status; what is printed is kept in `printed_`.
  int run(const std::string& words) {
    const std::string log = folder_ / "log";
    const std::string line =
        "cd '" + folder_.string() + "' && '" ZVR_PROGRAM "' " + words + " >" + log + " 2>&1";
    const int status = std::system(line.c_str());
    std::stringstream text;
    text << std::ifstream(log).rdbuf();
    printed_ = text.str();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  zvr::Image result() const { return zvr::loadImage(folder_ / "out.png"); }

  void writeCube(const std::string& name, const zvr::Cube& cube) const {
    std::ofstream file(folder_ / name);
    file << "TITLE \"test\"\nLUT_3D_SIZE " << cube.size << '\n' << std::fixed;  // six decimals
    for (const Color& entry : cube.entries) file << entry[0] << ' ' << entry[1] << ' ' << entry[2] << '\n';
  }

  fs::path folder_;
  zvr::Image photo_;
  std::string printed_;
};

TEST_F(Program, IdentitiesGiveThePhotographBack) {
  ASSERT_EQ(run("lut photo.png --identity -o out.png --ledger"), 0) << printed_;
  EXPECT_TRUE(result() == photo_);
  EXPECT_NE(printed_.find("held: 0 objects, 0 strings, 0 locks, 0 string data; 0 errors"), std::string::npos);
  for (int size : {2, 16, 33}) {
    writeCube("same.cube", makeCube(size, [](const Color& c) { return c; }));
    ASSERT_EQ(run("lut photo.png same.cube -o out.png"), 0) << printed_;
    EXPECT_TRUE(result() == photo_) << "few decimals made a difference, size " << size;
  }
}

TEST_F(Program, ALinearLookIsWhatItSays) {
  for (int size : {2, 17, 25}) {
    writeCube("warm.cube", makeCube(size, warm));
    ASSERT_EQ(run("lut photo.png warm.cube -o out.png"), 0) << printed_;
    const zvr::Image out = result();
    for (size_t i = 0; i < photo_.byteCount(); i += 4) {
      const Color expected =
          warm({photo_.pixels[i] / 255.0, photo_.pixels[i + 1] / 255.0, photo_.pixels[i + 2] / 255.0});
      for (size_t x = 0; x < 3; ++x) {
        const double exact = expected[x] * 255, given = out.pixels[i + x];  // truncated
        ASSERT_TRUE(given > exact - 1.005 && given < exact + 0.005) << exact << " became " << given;
      }
    }
  }
}

TEST_F(Program, DumpsTheTable) {
  writeCube("warm.cube", makeCube(9, warm));
  ASSERT_EQ(run("lut warm.cube --dump"), 0) << printed_;
  std::stringstream lines(printed_);
  std::string heading;
  std::getline(lines, heading);
  int count = 0;
  for (int r = 0, g = 0, b = 0; lines >> r >> g >> b; ++count) {
    EXPECT_EQ(count, (r * 16 + g) * 16 + b);
    const Color expected = warm({r / 15.0, g / 15.0, b / 15.0});
    for (double channel : expected) {
      double given = -1;
      lines >> given;
      ASSERT_NEAR(given, channel * 255, 0.002) << r << ' ' << g << ' ' << b;
    }
  }
  EXPECT_EQ(count, 4096);
}

TEST_F(Program, SetsPropertiesByName) {
  ASSERT_EQ(run("run picturesepiazvr photo.png SepiaRed=40 sepiagreen=-20 FactorBlue=0 -o out.png"), 0)
      << printed_;
  const zvr::Image out = result();
  for (size_t i = 0; i < photo_.byteCount(); i += 4) {
    const int brightness = (photo_.pixels[i] * 306 + photo_.pixels[i + 2] * 116) / 1024;
    ASSERT_EQ(out.pixels[i], std::min(255, brightness + 40));
    ASSERT_EQ(out.pixels[i + 1], std::max(0, brightness - 20));
    ASSERT_EQ(out.pixels[i + 2], brightness);
  }
}

TEST_F(Program, SaysWhatIsWrong) {
  std::ofstream(folder_ / "bad.cube") << "LUT_3D_SIZE 2\n0 0 0\n0 0 x\n";
  const struct {
    const char* words;
    int status;
    const char* message;
  } cases[] = {
      {"lut photo.png bad.cube -o out.png", 1, "bad.cube: line 3: 'x' is not a number"},
      {"lut photo.png none.cube -o out.png", 1, "none.cube: No such file"},
      {"lut photo.png", 2, "expected a picture and a .cube file, found only photo.png"},
      {"lut", 2, "expected a .cube file, or --identity"},
      {"lut photo.png more.png bad.cube", 2, "'more.png' is more than is expected"},
      {"run PictureSepia photo.png", 2,
       "no class 'PictureSepia'; there are PictureSepiaZVR, PictureLut3DZVR"},
      {"run PictureSepiaZVR photo.png Sepia=1", 2,
       "PictureSepiaZVR has no property 'Sepia'; it has SourcePicture"},
      {"run PictureSepiaZVR photo.png SepiaRed=1.5", 2, "SepiaRed: '1.5' is not"},
      {"run PictureSepiaZVR photo.png SepiaRed", 2, "'SepiaRed' is not of the form PROPERTY=VALUE"},
      {"run PictureSepiaZVR none.png", 1, "none.png: No such file"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(run(c.words), c.status) << c.words;
    EXPECT_NE(printed_.find(c.message), std::string::npos) << c.words << ": " << printed_;
  }
  EXPECT_FALSE(fs::exists(folder_ / "out.png"));
}

}  // namespace
