// Brightness, contrast and the custom map: formulas, truncation, clamping and wrapping, odd numbers.

#include <cmath>
#include <limits>

#include "tests/support.h"

namespace {

class Brightness : public HostTest {
 protected:
  // What a method makes of a picture of one colour (its second row: the first may go nowhere).
  Rgb mapped(const char* method, const std::vector<double>& arguments, Rgb color) {
    std::vector<host::Value> values(arguments.begin(), arguments.end());
    return colorsOf(callPicture(method, makePicture({1, 2, color}), values)).at(0, 1);
  }
};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr char kLinear[] = "ChangeBrightnessLinearZVR", kAbsolute[] = "ChangeBrightnessAbsoluteZVR",
               kContrast[] = "ChangeContrastZVR", kContrastLinear[] = "ChangeContrastBrightnessLinearZVR",
               kContrastAbsolute[] = "ChangeContrastBrightnessAbsoluteZVR", kCustom[] = "ChangeCustomZVR";

struct Case {
  const char* method;
  std::vector<double> arguments;
  Rgb from, to;
};

const Case kCases[] = {
    // One value for all channels.
    {kLinear, {255}, 0x00807F, 0xFFFFFF},
    {kLinear, {-255}, 0xFF807F, 0x000000},
    {kLinear, {128}, 0x00FF80, 0x80FFBF},
    {kLinear, {-51}, 0xFF0064, 0xCC0050},
    {kAbsolute, {-10}, 0x05C80A, 0x00BE00},
    {kAbsolute, {100}, 0x05C89B, 0x69FFFF},
    {kContrast, {-1}, 0x00FF64, 0x7F7F7F},
    {kContrast, {1}, 0x64C87F, 0x49FF7F},
    {kCustom, {0.5, 0.9}, 0x030004, 0x020002},  // 2.4 and 2.9: truncated
    {kCustom, {-1, 0.5}, 0x000102, 0x000000},   // -0.5 is 0 by truncation
    {kCustom, {-1, 255}, 0x0001FF, 0xFFFE00},
    // Contrast comes first: brightness would move the values away from the pivot.
    {kContrastAbsolute, {1, 10}, 0x64C87F, 0x53FF89},
    {kContrastLinear, {1, -51}, 0x64C87F, 0x3ADA65},
    // 0.7 as a double, each step rounded: 127 + 100 * 1.7 is 297 and 127 - 100 * 1.7 is below 0.
    {kContrast, {0.7}, 0xE31B80, 0xFF0080},
    // A value for each channel, contrasts before brightnesses.
    {kLinear, {-51, 0, 128}, 0xFFFF00, 0xCCFF80},
    {kAbsolute, {1, 2, -3}, 0x101010, 0x11120D},
    {kContrast, {-1, 0, 1}, 0x646464, 0x7F6449},
    {kContrastLinear, {-1, 0, 1, -255, 0, 255}, 0x646464, 0x0064FF},
    {kContrastAbsolute, {-1, 0, 1, 1, 2, 3}, 0x646464, 0x80664C},
    // Out of range: linear brightness alone wraps, with the low 8 bits.
    {kLinear, {300}, 0x000000, 0x2C2C2C},
    {kLinear, {-300}, 0xFFFFFF, 0xD3D3D3},
    {kContrastLinear, {0, 300}, 0x000000, 0xFFFFFF},
    {kContrastLinear, {0, -300}, 0xFFFFFF, 0x000000},
    // What no 32-bit integer can hold becomes the most negative one: black, however large it was.
    {kLinear, {1e12}, 0x00FF10, 0x00FF00},  // 255 * f + o comes out as 255 exactly
    {kAbsolute, {2147483392}, 0x00FFFF, 0xFFFFFF},
    {kAbsolute, {2147483648.0}, 0x00FF10, 0x000000},
    {kAbsolute, {-1e300}, 0x00FF10, 0x000000},
    {kContrast, {1e10}, 0x7F80FF, 0x7F0000},
    {kContrast, {kInfinity}, 0x7F80FF, 0x000000},  // 0 * infinity is not a number either
    {kContrast, {kNaN}, 0x7F80FF, 0x000000},
    {kCustom, {kInfinity, 0}, 0x0001FF, 0x000000},
    {kCustom, {0, kNaN}, 0x0001FF, 0x000000},
    {kLinear, {kNaN}, 0x0001FF, 0x000000},
    {kLinear, {kInfinity}, 0x0001FF, 0x000000},
    {kContrastLinear, {0, kNaN}, 0x0001FF, 0x000000},
    {kContrastAbsolute, {0, kInfinity}, 0x0001FF, 0x000000},
    {kAbsolute, {kNaN, 0, kInfinity}, 0x203040, 0x003000},
};

TEST_F(Brightness, Formulas) {
  for (const Case& c : kCases) {
    EXPECT_EQ(mapped(c.method, c.arguments, c.from), c.to)
        << c.method << "(" << ::testing::PrintToString(c.arguments) << ") of " << std::hex << c.from;
  }
}

// Every value of every channel at once, on a picture whose size needs whole rows and their ends.
TEST_F(Brightness, NeutralArgumentsChangeNothing) {
  Pixels ramp(67, 8, Rgb{0});
  for (size_t i = 0; i < ramp.colors.size(); ++i) {
    const int v = static_cast<int>(i) & 255;
    ramp.colors[i] = rgb(v, 255 - v, v ^ 0x55);
  }
  const bool alpha = road() != host::Road::gdk;
  const auto picture = makePicture(ramp, alpha);
  const std::pair<const char*, std::vector<double>> calls[] = {
      {kLinear, {0}},
      {kLinear, {0, 0, 0}},
      {kAbsolute, {0}},
      {kAbsolute, {0, 0, 0}},
      {kContrast, {0}},
      {kContrast, {0, 0, 0}},
      {kContrastLinear, {0, 0}},
      {kContrastLinear, std::vector<double>(6, 0)},
      {kContrastAbsolute, {0, 0}},
      {kContrastAbsolute, std::vector<double>(6, 0)},
      {kCustom, {1, 0}},
  };
  for (const auto& [method, arguments] : calls) {
    const auto result = callPicture(method, picture, {arguments.begin(), arguments.end()});
    EXPECT_EQ(colorsOf(result), asWritten(ramp)) << method;
    EXPECT_EQ(host::pictureHasAlpha(result.get()), alpha);
    EXPECT_FALSE(callPicture(method, {}, {arguments.begin(), arguments.end()})) << "nil picture";
  }
}

// Large pictures go another way than small ones, unless the values wrap or the curve is odd.
TEST_F(Brightness, SizeMakesNoDifference) {
  Random random(1);
  const Pixels large = random.pixels(257, 70);
  const auto picture = makePicture(large);
  for (const Case& c : kCases) {
    const std::vector<host::Value> arguments(c.arguments.begin(), c.arguments.end());
    const Pixels result = colorsOf(callPicture(c.method, picture, arguments));
    for (int y = 1; y < large.height; y += 23) {
      Pixels row(large.width, 2, Rgb{0});
      for (int x = 0; x < large.width; ++x) row.at(x, 1) = large.at(x, y);
      const Pixels mappedRow = colorsOf(callPicture(c.method, makePicture(row), arguments));
      for (int x = 0; x < large.width; ++x) {
        ASSERT_EQ(result.at(x, y), mappedRow.at(x, 1))
            << c.method << "(" << ::testing::PrintToString(c.arguments) << ") of " << std::hex
            << row.at(x, 1);
      }
    }
  }
}

// White stays white and black black however far the other end is moved.
TEST_F(Brightness, LinearBrightnessKeepsOneEnd) {
  for (int brightness = 0; brightness <= 255; ++brightness) {
    EXPECT_EQ(mapped(kLinear, {double(brightness)}, 0xFFFFFF), 0xFFFFFFu) << brightness;
    EXPECT_EQ(mapped(kLinear, {-double(brightness)}, 0), 0u) << brightness;
  }
}

}  // namespace
