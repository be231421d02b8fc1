// Masks: whether there is one, the one embedded in the pixels read and written.

#include "tests/support.h"

namespace {

class Masks : public HostTest {
 protected:
  Pixels embedded(const host::PictureRef& picture, bool swap) {
    return colorsOf(callPicture("EmbeddedMaskZVR", picture, {swap}));
  }
  void assign(const host::PictureRef& picture, bool swap, const host::PictureRef& mask) {
    host::assign(*host::findMethods("EmbeddedMaskZVR").at(0), picture.get(), {swap}, mask);
  }
  bool hasMask(const host::PictureRef& picture) {
    return std::get<bool>(call("HasMaskZVR", picture.get()).result);
  }
};

TEST_F(Masks, APictureHasTheMaskThatItWasGiven) {
  const auto picture = makePicture({3, 2, Rgb{0}});
  EXPECT_FALSE(hasMask(picture));
  EXPECT_FALSE(hasMask(picture)) << "asking makes none";
  host::setPictureMask(picture.get(), makePicture({3, 2, Rgb{0}}).get());
  EXPECT_TRUE(hasMask(picture));
  EXPECT_FALSE(hasMask({}));
}

// The top byte as gray: all of it on the cairo road, its lower 7 bits as a * 2 + (a & 1) on the console road.
TEST_F(Masks, EmbeddedMaskIsTheAlphaAsGray) {
  const std::vector<uint32_t> words = {0x00FFFFFF, 0x7F123456, 0x80000000,
                                       0xFF0000FF, 0x01020304, 0x40000000};
  const auto picture = makePictureFromWords(3, 2, words, true);
  for (bool swap : {false, true}) {
    Pixels expected(3, 2, Rgb{0xFFFFFF});
    for (size_t i = 0; i < words.size() && !isGdk(); ++i) {
      const uint32_t top = words[i] >> 24, a = top & 0x7F;
      expected.colors[i] = (road() == host::Road::cairo ? top : a * 2 + (a & 1)) * 0x10101;
    }
    for (Rgb& color : expected.colors) color ^= swap ? 0xFFFFFF : 0;
    EXPECT_EQ(embedded(picture, swap), asWritten(expected)) << swap;
  }
  EXPECT_FALSE(callPicture("EmbeddedMaskZVR", {}, {false}));
}

TEST_F(Masks, PicturesWithoutAlphaAreOpaque) {
  if (road() == host::Road::console) GTEST_SKIP() << "there the top byte is read in every picture";
  const auto picture = makePictureFromWords(2, 2, {0, 0x12345678, 0x80FFFFFF, 0xFF000000}, false);
  EXPECT_EQ(embedded(picture, false), asWritten({2, 2, Rgb{0xFFFFFF}}));
  EXPECT_EQ(embedded(picture, true), asWritten({2, 2, Rgb{0}}));
}

// The setter writes the first byte of each word, the blue one: not what the getter reads, on purpose.
TEST_F(Masks, SettingWritesTheRedOfTheMaskIntoTheBlue) {
  const Pixels source = Random(3).pixels(5, 4), maskPixels = Random(4).pixels(5, 4);
  for (bool swap : {false, true}) {
    const auto picture = makePicture(source), mask = makePicture(maskPixels);
    const std::vector<uint32_t> before = wordsOf(picture);
    host::clearFaults();
    assign(picture, swap, mask);
    EXPECT_EQ(host::uses("REALPictureClearCache"), 0) << "opened for reading";
    const std::vector<uint32_t> after = wordsOf(picture);
    for (size_t i = 0; i < before.size(); ++i) {
      const uint32_t value = static_cast<uint32_t>(red(maskPixels.colors[i])) ^ (swap ? 0xFFu : 0u);
      EXPECT_EQ(after[i], isGdk() ? before[i] : (before[i] & 0xFFFFFF00) | value) << "word " << i;
    }
    EXPECT_EQ(colorsOf(mask), maskPixels);
  }
}

// A smaller mask is walked at the picture's size: it starts over at its row 0, and past its last byte counts
// as black.
TEST_F(Masks, SmallerMasksAreNotRefused) {
  if (isGdk()) GTEST_SKIP() << "nothing can be written in place there";
  host::Settings settings = settingsForRoad();
  settings.rowPadding = 0;
  begin(settings);
  const auto picture = makePicture({3, 3, Rgb{0x111111}});
  const auto mask = makePicture({2, 2, {0x010000, 0x020000, 0x030000, 0x040000}});
  assign(picture, false, mask);
  // On the cairo road the next row lies behind a row; on the console road each row is a block of its own.
  const bool rowsFollow = road() == host::Road::cairo;
  const Rgb third = rowsFollow ? 0x111103 : 0x111100;
  EXPECT_EQ(colorsOf(picture), Pixels(3, 3,
                                      {0x111101, 0x111102, third,     //
                                       0x111103, 0x111104, 0x111100,  //
                                       0x111101, 0x111102, third}));
}

TEST_F(Masks, NothingHappensWithoutAPictureOrMask) {
  const Pixels source(2, 2, Rgb{0x445566});
  const auto picture = makePicture(source);
  assign(picture, false, {});
  assign({}, false, picture);
  EXPECT_EQ(colorsOf(picture), source);
}

}  // namespace
