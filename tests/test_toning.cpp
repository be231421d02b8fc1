// The per-pixel methods on known colours: truncation, clamping and wrapping, odd numbers; and on large
// pictures, which may go another way than small ones.

#include <algorithm>
#include <limits>

#include "tests/pixel_models.h"

namespace {

using host::Color;
using Values = std::vector<host::Value>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr char kLinear[] = "ChangeBrightnessLinearZVR", kAbsolute[] = "ChangeBrightnessAbsoluteZVR",
               kContrast[] = "ChangeContrastZVR", kContrastLinear[] = "ChangeContrastBrightnessLinearZVR",
               kContrastAbsolute[] = "ChangeContrastBrightnessAbsoluteZVR", kCustom[] = "ChangeCustomZVR",
               kSaturation[] = "ChangeSaturationZVR", kTint[] = "TintPictureZVR",
               kReplace[] = "ReplaceColorZVR", kExtract[] = "ExtractColorZVR";

struct Case {
  const char* method;
  Values arguments;
  Rgb from, to;
};

const Case kCases[] = {
    // One value for all channels.
    {kLinear, {255.0}, 0x00807F, 0xFFFFFF},
    {kLinear, {-255.0}, 0xFF807F, 0x000000},
    {kLinear, {-51.0}, 0xFF0064, 0xCC0050},
    {kAbsolute, {100.0}, 0x05C89B, 0x69FFFF},
    {kContrast, {1.0}, 0x64C87F, 0x49FF7F},
    {kCustom, {0.5, 0.9}, 0x030004, 0x020002},   // 2.4 and 2.9: truncated
    {kCustom, {-1.0, 0.5}, 0x000102, 0x000000},  // -0.5 is 0 by truncation
    // Contrast comes first: brightness would move the values away from the pivot.
    {kContrastAbsolute, {1.0, 10.0}, 0x64C87F, 0x53FF89},
    {kContrastLinear, {1.0, -51.0}, 0x64C87F, 0x3ADA65},
    // 0.7 as a double, each step rounded: 127 + 100 * 1.7 is 297 and 127 - 100 * 1.7 is below 0.
    {kContrast, {0.7}, 0xE31B80, 0xFF0080},
    // A value for each channel, contrasts before brightnesses.
    {kLinear, {-51.0, 0.0, 128.0}, 0xFFFF00, 0xCCFF80},
    {kAbsolute, {1.0, 2.0, -3.0}, 0x101010, 0x11120D},
    {kContrast, {-1.0, 0.0, 1.0}, 0x646464, 0x7F6449},
    {kContrastLinear, {-1.0, 0.0, 1.0, -255.0, 0.0, 255.0}, 0x646464, 0x0064FF},
    {kContrastAbsolute, {-1.0, 0.0, 1.0, 1.0, 2.0, 3.0}, 0x646464, 0x80664C},
    // Out of range: only linear brightness wraps, with the low 8 bits.
    {kLinear, {300.0}, 0x000000, 0x2C2C2C},
    {kContrastLinear, {0.0, 300.0}, 0x000000, 0xFFFFFF},
    // Numbers that no 32-bit integer can hold become the most negative one: black, however large they were.
    {kLinear, {1e12}, 0x00FF10, 0x00FF00},  // 255 * f + o comes out as 255 exactly
    {kAbsolute, {2147483392.0}, 0x00FFFF, 0xFFFFFF},
    {kAbsolute, {2147483648.0}, 0x00FF10, 0x000000},
    {kContrast, {1e10}, 0x7F80FF, 0x7F0000},
    {kContrast, {kInfinity}, 0x7F80FF, 0x000000},  // 0 * infinity is not a number either
    {kContrast, {kNaN}, 0x7F80FF, 0x000000},
    {kAbsolute, {kNaN, 0.0, kInfinity}, 0x203040, 0x003000},
    // Saturation truncates toward zero, and its products wrap.
    {kSaturation, {int64_t{-255}}, rgb(200, 100, 0), rgb(100, 100, 100)},
    {kSaturation, {int64_t{255}}, rgb(200, 100, 0), rgb(255, 100, 0)},
    {kSaturation, {int64_t{-510}}, rgb(150, 100, 50), rgb(50, 100, 150)},
    // k = -2147483394: times 2 wraps to 508, and 508 / 255 is truncated to 1.
    {kSaturation, {int64_t{INT32_MAX}}, rgb(101, 100, 98), rgb(100, 0, 255)},
    // k = -2147483393: times 2 wraps to 510, times -2 to -510.
    {kSaturation, {int64_t{INT32_MIN}}, rgb(102, 100, 98), rgb(102, 100, 98)},
    // Tint is decided in extended precision.
    {kTint, {Color{0xFFFFFF}, Color{0xFFFFFF}}, rgb(50, 50, 50), rgb(150, 150, 150)},
    {kTint, {Color{0xFFFFFF}, Color{0xFFFFFF}}, rgb(100, 100, 100), rgb(255, 255, 255)},
    {kTint, {Color{0xAAFF0000}, Color{0x55FF8000}}, rgb(200, 10, 10), rgb(200, 100, 0)},
    // 85 / 255 is a little below a third: whole results are one less.
    {kTint, {Color{0x555555}, Color{0xFFFFFF}}, rgb(100, 100, 100), rgb(99, 99, 99)},
    {kTint, {Color{0x555555}, Color{0xFFFFFF}}, rgb(101, 100, 100), rgb(100, 100, 100)},
    // Colours match exactly or not at all, whatever the top bytes.
    {kReplace, {Color{0x5AFF0000}, Color{0x5A123456}}, 0xFF0000, 0x123456},
    {kReplace, {Color{0xFF0000}, Color{0x123456}}, 0xFF0001, 0xFF0001},
    {kExtract, {Color{0x5AFF0000}, Color{0x5A123456}, Color{0x5A654321}}, 0xFF0000, 0x123456},
    {kExtract, {Color{0xFF0000}, Color{0x123456}, Color{0x654321}}, 0xFE0000, 0x654321},
};

class Toning : public HostTest {
 protected:
  static const PixelModel& modelOf(const Case& c) {
    const auto& models = pixelModels();
    return *std::find_if(models.begin(), models.end(),
                         [&](const auto& m) { return m.method == std::string(c.method); });
  }
  Pixels result(const Case& c, const Pixels& source) {
    const host::PictureRef picture = makePicture(source);
    Values arguments = c.arguments;
    const bool isGlobal = modelOf(c).isGlobal;
    if (isGlobal) arguments.insert(arguments.begin(), picture);
    return colorsOf(callPicture(c.method, isGlobal ? host::PictureRef() : picture, arguments));
  }
};

TEST_F(Toning, KnownColours) {
  for (const Case& c : kCases)
    EXPECT_EQ(result(c, {1, 2, c.from}), asWritten({1, 2, c.to})) << c.method << ", case " << &c - kCases;
}

// White stays white and black black however far the other end is moved.
TEST_F(Toning, LinearBrightnessKeepsOneEnd) {
  for (int brightness = 0; brightness <= 255; ++brightness) {
    const Pixels white(1, 2, Rgb{0xFFFFFF}), black(1, 2, Rgb{0});
    EXPECT_EQ(result({kLinear, {double(brightness)}, 0, 0}, white), asWritten(white)) << brightness;
    EXPECT_EQ(result({kLinear, {-double(brightness)}, 0, 0}, black), asWritten(black)) << brightness;
  }
}

}  // namespace
