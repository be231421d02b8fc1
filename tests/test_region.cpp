// Black, white and gray rectangles, and colourfulness.

#include <cmath>

#include "tests/plain_kernels.h"

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

struct Case {
  Rgb color;
  int32_t limit;
  bool passes;
};

const Case kGrays[] = {
    {rgb(100, 103, 98), 5, true},  {rgb(100, 103, 98), -5, true},       {rgb(100, 103, 98), 4, false},
    {rgb(98, 103, 100), 4, false}, {rgb(255, 0, 255), INT32_MIN, true}, {rgb(0, 255, 0), INT32_MAX, true},
};

TEST_F(Region, GrayWithinATolerance) {
  for (const Case& c : kGrays) {
    EXPECT_EQ(ask("isGrayZVR", makePicture({70, 2, c.color}), {int64_t{c.limit}}), c.passes)
        << std::hex << c.color << ' ' << c.limit;
  }
  EXPECT_TRUE(ask("isGrayZVR", makePicture({1, 1, rgb(9, 9, 9)}))) << "the default is 0";
  EXPECT_FALSE(ask("isGrayZVR", makePicture({1, 1, rgb(9, 9, 10)})));
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
        const auto c = seenInRectangle(source, std::max(left, 0), x, y);
        black = black && c.value_or(0) == 0;
        allWhite = allWhite && c.value_or(0xFFFFFF) == 0xFFFFFF;
        const Rgb color = c.value_or(0);
        gray = gray && plain::isAllGray(&color, 1, 3);
      }
    }
    const auto picture = makePicture(source);
    const Values rectangle = numbers({left, top, w, h});
    SCOPED_TRACE(::testing::Message()
                 << width << 'x' << height << " at " << left << ' ' << top << ' ' << w << ' ' << h);
    ASSERT_EQ(ask("isBlackZVR", picture, rectangle), black);
    ASSERT_EQ(ask("isWhiteZVR", picture, rectangle), allWhite);
    ASSERT_EQ(ask("isGrayZVR", picture, numbers({3, left, top, w, h})), gray);
  }
}

TEST_F(Region, WholePicturesAndExtremeRectangles) {
  const auto black = makePicture({5, 5, Rgb{0}}), white = makePicture({5, 5, Rgb{0xFFFFFF}});
  EXPECT_TRUE(ask("isBlackZVR", black));
  EXPECT_FALSE(ask("isBlackZVR", white));
  EXPECT_TRUE(ask("isWhiteZVR", white));
  EXPECT_FALSE(ask("isWhiteZVR", black));
  constexpr int32_t kMost = INT32_MAX, kLeast = INT32_MIN;
  EXPECT_TRUE(ask("isWhiteZVR", black, numbers({kMost, kMost, kMost, kMost}))) << "no pixel there";
  EXPECT_TRUE(ask("isWhiteZVR", black, numbers({kLeast, kLeast, kMost, kMost}))) << "no pixel there";
  EXPECT_FALSE(ask("isWhiteZVR", black, numbers({1, 1, kMost, kMost})));
}

const Case kColorful[] = {
    {rgb(20, 29, 0), 10, false},  {rgb(100, 110, 120), 10, false},     {rgb(100, 110, 121), 10, true},
    {rgb(30, 30, 30), -1, true},  {rgb(29, 29, 29), INT32_MIN, false}, {rgb(200, 0, 0), INT32_MIN, true},
    {rgb(0, 255, 0), 255, false}, {rgb(0, 255, 0), INT32_MAX, false},
};

TEST_F(Region, ColornessOfOneColour) {
  for (const Case& c : kColorful) {
    EXPECT_EQ(colorness(makePicture({33, 2, c.color}), {int64_t{c.limit}}), c.passes)
        << std::hex << c.color << std::dec << ' ' << c.limit;
  }
  EXPECT_EQ(colorness(makePicture({1, 1, rgb(100, 110, 120)})), 0) << "the default is 10";
  EXPECT_EQ(colorness(makePicture({1, 1, rgb(100, 111, 120)})), 1);
}

TEST_F(Region, ColornessCountsEveryPixel) {
  Random random(40);
  for (int round = 0; round < 100; ++round) {
    const Pixels source = random.pixels(random.side(), random.between(1, 5));
    const int threshold = random.between(-3, 260);
    const double colorful = plain::countColorful(source.colors.data(), source.colors.size(), threshold);
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
