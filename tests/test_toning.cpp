// Saturation, tint, replacing and extracting a colour: every colour there is, and what surprises.

#include "tests/pixel_models.h"
#include "tests/support.h"

namespace {

using host::Color;
using host::PictureRef;
using host::Value;

class Toning : public HostTest {
 protected:
  Pixels saturated(const Pixels& pixels, int64_t amount) {
    return colorsOf(callPicture("ChangeSaturationZVR", makePicture(pixels), {amount}));
  }
  Pixels tinted(const Pixels& pixels, RBColor gray, RBColor sepia) {
    return colorsOf(callPicture("TintPictureZVR", {}, {makePicture(pixels), Color{gray}, Color{sepia}}));
  }
};

// Two rows: the first stays black on the GDK road.
Pixels twice(std::vector<Rgb> row) {
  const int width = static_cast<int>(row.size());
  row.insert(row.end(), row.begin(), row.end());
  return {width, 2, row};
}

TEST_F(Toning, SaturationTruncatesTowardZeroAndWraps) {
  const struct {
    int64_t amount;
    Rgb from, to;
  } cases[] = {
      {0, rgb(200, 100, 0), rgb(200, 100, 0)},
      {-255, rgb(200, 100, 0), rgb(100, 100, 100)},
      {255, rgb(200, 100, 0), rgb(255, 100, 0)},
      {-128, rgb(201, 100, 0), rgb(150, 100, 51)},
      {-510, rgb(150, 100, 50), rgb(50, 100, 150)},
      {INT32_MAX, rgb(77, 77, 77), rgb(77, 77, 77)},
      // k = -2147483394: times 2 wraps to 508, and 508 / 255 is truncated to 1.
      {INT32_MAX, rgb(101, 100, 98), rgb(100, 0, 255)},
      // k = -2147483393: times 2 wraps to 510, times -2 to -510.
      {INT32_MIN, rgb(102, 100, 98), rgb(102, 100, 98)},
  };
  for (const auto& c : cases)
    EXPECT_EQ(saturated(twice({c.from}), c.amount), asWritten(twice({c.to}))) << c.amount;
}

TEST_F(Toning, TintIsDecidedInExtendedPrecision) {
  const struct {
    RBColor gray, sepia;
    Rgb from, to;
  } cases[] = {
      {0xFFFFFF, 0xFFFFFF, rgb(50, 50, 50), rgb(150, 150, 150)},
      {0xFFFFFF, 0xFFFFFF, rgb(100, 100, 100), rgb(255, 255, 255)},
      {0x000000, 0xFFFFFF, rgb(255, 255, 255), rgb(0, 0, 0)},
      {0xFF0000, 0xFF8000, rgb(200, 10, 10), rgb(200, 100, 0)},
      {0xAAFF0000, 0x55FF8000, rgb(200, 10, 10), rgb(200, 100, 0)},
      // 85 / 255 is a little below a third: what would be whole is one less.
      {0x555555, 0xFFFFFF, rgb(100, 100, 100), rgb(99, 99, 99)},
      {0x555555, 0xFFFFFF, rgb(101, 100, 100), rgb(100, 100, 100)},
      {0x555555, 0xFFFFFF, rgb(255, 255, 255), rgb(254, 254, 254)},
  };
  for (const auto& c : cases)
    EXPECT_EQ(tinted(twice({c.from}), c.gray, c.sepia), asWritten(twice({c.to}))) << std::hex << c.gray;
}

TEST_F(Toning, ColoursMatchExactlyOrNotAtAll) {
  const Pixels pixels = twice({0xFF0000, 0xFE0000, 0xFF0100, 0xFF0001, 0x00FF00});
  const auto picture = makePicture(pixels, road() != host::Road::gdk);
  for (RBColor top : {0x00000000U, 0x5A000000U}) {
    const Color searched = {0xFF0000 | top}, replacement = {0x123456 | top}, background = {0x654321 | top};
    EXPECT_EQ(colorsOf(callPicture("ReplaceColorZVR", picture, {searched, replacement})),
              asWritten(twice({0x123456, 0xFE0000, 0xFF0100, 0xFF0001, 0x00FF00})));
    const auto mask = callPicture("ExtractColorZVR", picture, {searched, replacement, background});
    EXPECT_EQ(colorsOf(mask), asWritten(twice({0x123456, 0x654321, 0x654321, 0x654321, 0x654321})));
    EXPECT_FALSE(host::pictureHasAlpha(mask.get()));
  }
}

TEST_F(Toning, NilGivesNil) {
  EXPECT_FALSE(callPicture("ChangeSaturationZVR", {}, {int64_t{10}}));
  EXPECT_FALSE(callPicture("TintPictureZVR", {}, {PictureRef(), Color{}, Color{}}));
  EXPECT_FALSE(callPicture("ReplaceColorZVR", {}, {Color{}, Color{}}));
  EXPECT_FALSE(callPicture("ExtractColorZVR", {}, {Color{}, Color{}, Color{}}));
}

const PixelModel& modelOf(const std::string& method) {
  for (const PixelModel& model : pixelModels()) {
    if (method == model.method) return model;
  }
  throw std::logic_error("no model of " + method);
}

// One row of colours after the other, each of the 16.7 million once.
constexpr int kSide = 4096;

Rgb colorAt(int x, int y) { return static_cast<Rgb>(y * kSide + x); }

// Where a result differs from the model first; empty for nowhere.
std::string firstDifference(const PictureRef& result, const PixelModel& model,
                            const std::vector<Value>& arguments) {
  for (int y = 0; y < kSide; ++y) {
    const uint32_t* row = host::pictureRow(result.get(), y);
    for (int x = 0; x < kSide; ++x) {
      const Rgb color = colorAt(x, y), expected = model.pixel(&color, arguments);
      if ((row[x] & 0xFFFFFF) != expected) {
        return (testing::Message() << std::hex << color << " gave " << row[x] << " instead of " << expected)
            .GetString();
      }
    }
  }
  return {};
}

TEST_F(Toning, EveryColourThereIs) {
  if (road() != host::Road::cairo) GTEST_SKIP() << "the arithmetic is the same on each road";
  const PictureRef picture = host::newPicture(kSide, kSide);
  for (int y = 0; y < kSide; ++y) {
    uint32_t* row = host::pictureRow(picture.get(), y);
    for (int x = 0; x < kSide; ++x) row[x] = colorAt(x, y);
  }
  const struct {
    const char* method;
    std::vector<Value> arguments;
  } cases[] = {
      {"ChangeSaturationZVR", {int64_t{60}}},
      {"ChangeSaturationZVR", {int64_t{-128}}},
      {"ChangeSaturationZVR", {int64_t{-33022}}},
      {"ChangeSaturationZVR", {int64_t{12345678}}},
      {"TintPictureZVR", {Color{0x555555}, Color{0xFFFFFF}}},
      {"TintPictureZVR", {Color{0x555555}, Color{0x704214}}},
      {"TintPictureZVR", {Color{0x336699}, Color{0xFFCC55}}},
      {"TintPictureZVR", {Color{0x4C961D}, Color{0xFFF0D1}}},
  };
  for (const auto& c : cases) {
    const PixelModel& model = modelOf(c.method);
    std::vector<Value> all;
    if (model.isGlobal) all.emplace_back(picture);
    all.insert(all.end(), c.arguments.begin(), c.arguments.end());
    const PictureRef result = callPicture(c.method, model.isGlobal ? PictureRef() : picture, all);
    ASSERT_TRUE(result);
    EXPECT_EQ(firstDifference(result, model, c.arguments), "") << c.method << " case " << &c - cases;
  }
}

}  // namespace
