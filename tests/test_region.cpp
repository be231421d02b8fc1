// Black, white and gray rectangles, and colourfulness.

#include <cmath>
#include <cstdlib>
#include <optional>

#include "tests/support.h"

namespace {

using Values = std::vector<host::Value>;

class Region : public HostTest {
 protected:
  bool ask(const std::string& method, const host::PictureRef& picture, Values arguments = {}) {
    return std::get<bool>(call(method, picture.get(), std::move(arguments)).result);
  }
  double colorness(const host::PictureRef& picture, Values arguments = {}) {
    return std::get<double>(call("ColornessZVR", picture.get(), std::move(arguments)).result);
  }
};

bool isGray(Rgb c, int64_t tolerance) {
  const int64_t t = std::llabs(tolerance);
  return std::abs(red(c) - green(c)) <= t && std::abs(red(c) - blue(c)) <= t &&
         std::abs(green(c) - blue(c)) <= t;
}

bool isColorful(Rgb c, int64_t threshold) {
  if (red(c) < 30 && green(c) < 30 && blue(c) < 30) return false;
  const auto outside = [=](int d) { return d > threshold || d < -threshold; };
  return outside(green(c) - blue(c)) || outside(green(c) - red(c));
}

struct GrayCase {
  Rgb color;
  int32_t tolerance;
  bool gray;
};

const GrayCase kGrays[] = {
    {rgb(100, 103, 98), 5, true},   {rgb(100, 103, 98), -5, true},     {rgb(100, 103, 98), 4, false},
    {rgb(98, 103, 100), 4, false},  {rgb(7, 7, 7), 0, true},           {rgb(7, 7, 8), 0, false},
    {rgb(0, 128, 255), 254, false}, {rgb(0, 128, 255), 255, true},     {rgb(255, 0, 255), INT32_MIN, true},
    {rgb(255, 0, 0), 65536, true},  {rgb(0, 255, 0), INT32_MAX, true}, {rgb(10, 12, 14), 2, false},
};

TEST_F(Region, GrayWithinATolerance) {
  for (const GrayCase& c : kGrays) {
    const auto picture = makePicture({70, 2, c.color});
    EXPECT_EQ(ask("isGrayZVR", picture, {int64_t{c.tolerance}}), c.gray)
        << std::hex << c.color << ' ' << c.tolerance;
  }
  EXPECT_TRUE(ask("isGrayZVR", makePicture({1, 1, rgb(9, 9, 9)})));
  EXPECT_FALSE(ask("isGrayZVR", makePicture({1, 1, rgb(9, 9, 10)})));
}

// What a rectangle's column shows: on 3-byte rows the left column is counted in steps of 4 bytes, and nothing
// lies past the last row's end. Rows without padding.
std::optional<Rgb> seen(const Pixels& source, int left, int x, int y) {
  if (road() != host::Road::gdk) return source.at(x, y);
  const auto byte = [&](size_t at) { return source.colors[at / 3] >> (16 - 8 * (at % 3)) & 0xFF; };
  const auto at = static_cast<size_t>(y * source.width * 3 + left * 4 + (x - left) * 3);
  if (at + 3 > source.colors.size() * 3) return {};
  return byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
}

// Pictures of one colour with a single other pixel, and rectangles that hold it or not.
TEST_F(Region, RectanglesSeeTheirPixelsAndNoOthers) {
  Random random(39);
  for (int round = 0; round < 600; ++round) {
    const int width = 4 * random.between(1, 40), height = random.between(1, 6);
    const bool white = random.chance(50);
    Pixels source(width, height, white ? 0xFFFFFF : 0);
    if (random.chance(80))
      source.at(random.between(0, width - 1), random.between(0, height - 1)) ^= 1u << random.between(0, 23);
    const int left = random.between(-9, width + 2), top = random.between(-3, height + 1);
    const int w = random.between(-1, width + 10), h = random.between(-1, height + 4);
    bool black = true, allWhite = true, gray = true;
    for (int y = std::max(top, 0); y < std::min(top + (h < 0 ? height : h), height); ++y) {
      for (int x = std::max(left, 0); x < std::min(left + (w < 0 ? width : w), width); ++x) {
        const auto c = seen(source, std::max(left, 0), x, y);
        black = black && c.value_or(0) == 0;
        allWhite = allWhite && c.value_or(0xFFFFFF) == 0xFFFFFF;
        gray = gray && isGray(c.value_or(0), 3);
      }
    }
    const auto picture = makePicture(source);
    const Values rectangle = {int64_t{left}, int64_t{top}, int64_t{w}, int64_t{h}};
    Values withTolerance = rectangle;
    withTolerance.insert(withTolerance.begin(), int64_t{3});
    SCOPED_TRACE(::testing::Message()
                 << width << 'x' << height << " at " << left << ' ' << top << ' ' << w << ' ' << h);
    ASSERT_EQ(ask("isBlackZVR", picture, rectangle), black);
    ASSERT_EQ(ask("isWhiteZVR", picture, rectangle), allWhite);
    ASSERT_EQ(ask("isGrayZVR", picture, withTolerance), gray);
  }
}

TEST_F(Region, WholePicturesAndExtremeRectangles) {
  const auto black = makePicture({5, 5, Rgb{0}}), white = makePicture({5, 5, Rgb{0xFFFFFF}});
  EXPECT_TRUE(ask("isBlackZVR", black));
  EXPECT_FALSE(ask("isBlackZVR", white));
  EXPECT_TRUE(ask("isWhiteZVR", white));
  EXPECT_FALSE(ask("isWhiteZVR", black));
  const int64_t most = INT32_MAX, least = INT32_MIN;
  EXPECT_TRUE(ask("isWhiteZVR", black, {most, most, most, most})) << "no pixel there";
  EXPECT_TRUE(ask("isWhiteZVR", black, {least, least, most, most})) << "no pixel there";
  EXPECT_FALSE(ask("isWhiteZVR", black, {int64_t{1}, int64_t{1}, most, most}));
}

struct ColornessCase {
  Rgb color;
  int32_t threshold;
  double share;
};

const ColornessCase kColorness[] = {
    {rgb(20, 29, 0), 10, 0},         {rgb(255, 0, 0), 10, 1},        {rgb(100, 110, 120), 10, 0},
    {rgb(100, 110, 121), 10, 1},     {rgb(99, 110, 100), 10, 1},     {rgb(30, 30, 30), -1, 1},
    {rgb(29, 29, 29), INT32_MIN, 0}, {rgb(200, 0, 0), INT32_MIN, 1}, {rgb(0, 255, 0), 254, 1},
    {rgb(0, 255, 0), 255, 0},        {rgb(0, 255, 0), INT32_MAX, 0}, {rgb(40, 40, 40), 0, 0},
};

TEST_F(Region, ColornessOfOneColour) {
  for (const ColornessCase& c : kColorness) {
    EXPECT_EQ(colorness(makePicture({33, 2, c.color}), {int64_t{c.threshold}}), c.share)
        << std::hex << c.color << std::dec << ' ' << c.threshold;
  }
  EXPECT_EQ(colorness(makePicture({1, 1, rgb(100, 110, 120)})), 0) << "the default is 10";
  EXPECT_EQ(colorness(makePicture({1, 1, rgb(100, 111, 120)})), 1);
}

TEST_F(Region, ColornessCountsEveryPixel) {
  Random random(40);
  for (int round = 0; round < 100; ++round) {
    const Pixels source = random.pixels(random.side(), random.between(1, 5));
    const int threshold = random.between(-3, 260);
    int colorful = 0;
    for (Rgb c : source.colors) colorful += isColorful(c, threshold);
    ASSERT_EQ(colorness(makePicture(source), {int64_t{threshold}}),
              colorful / static_cast<double>(source.colors.size()));
  }
}

TEST_F(Region, NilIsNothingAndNoPixelsAreNoNumber) {
  for (const char* method : {"isBlackZVR", "isWhiteZVR", "isGrayZVR"})
    EXPECT_FALSE(ask(method, {})) << method;
  EXPECT_EQ(colorness({}), 0);
  if (road() != host::Road::console) return;  // the others have no such pictures
  const auto empty = makePicture({3, 3, Rgb{0xFFFFFF}});
  host::oddities(empty.get()).describedWidth = 0;
  EXPECT_TRUE(std::isnan(colorness(empty)));
  EXPECT_TRUE(ask("isBlackZVR", empty));
}

}  // namespace
