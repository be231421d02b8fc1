// Scrolling in place: moved and filled pixels, masks, and the answers for pictures that can't be scrolled.

#include "tests/support.h"

namespace {

using host::PictureRef;
using Words = std::vector<uint32_t>;

constexpr uint32_t kWhiteWord = 0xFFFFFFFF;

class Scroll : public HostTest {
 protected:
  bool horizontally(const PictureRef& picture, int64_t delta, bool wrap, bool mask = false) {
    return std::get<bool>(call("ScrollHorizontalZVR", picture.get(), {delta, wrap, mask}).result);
  }
  bool vertically(const PictureRef& picture, int64_t delta, bool wrap, bool mask = false) {
    return std::get<bool>(call("ScrollVerticalZVR", picture.get(), {delta, wrap, mask}).result);
  }
  bool both(const PictureRef& picture, int64_t x, int64_t y, bool wrap, bool mask = false) {
    return std::get<bool>(call("ScrollZVR", picture.get(), {x, y, wrap, mask}).result);
  }
};

// The place that comes to place `at` of `extent`, or -1 for white.
int64_t origin(int64_t at, int64_t delta, int64_t extent, bool wrap) {
  const int64_t from = at - delta;
  if (!wrap) return from >= 0 && from < extent ? from : -1;
  return (from % extent + extent) % extent;
}

Words scrolled(const Words& words, int width, int64_t deltaX, int64_t deltaY, bool wrap) {
  const int64_t height = static_cast<int64_t>(words.size()) / width;
  Words result;
  for (int64_t y = 0; y < height; ++y) {
    for (int64_t x = 0; x < width; ++x) {
      const int64_t fromX = origin(x, deltaX, width, wrap), fromY = origin(y, deltaY, height, wrap);
      result.push_back(fromX < 0 || fromY < 0 ? kWhiteWord
                                              : words[static_cast<size_t>(fromY * width + fromX)]);
    }
  }
  return result;
}

Words randomWords(int width, int height) {
  Random random(static_cast<uint32_t>(width * 100 + height));
  Words words(static_cast<size_t>(width * height));
  for (uint32_t& word : words) word = random.word();
  return words;
}

// Rows with padding, rows that lie apart, guard pages: whichever the road has.
TEST_F(Scroll, MovesWholeWordsByAnyDelta) {
  if (isGdk()) GTEST_SKIP() << "nothing is moved there: see PicturesThatCanNotBeScrolled";
  const std::pair<int, int> sizes[] = {{1, 1}, {2, 1}, {1, 2}, {3, 4}, {4, 3}, {5, 8}, {8, 5}, {67, 33}};
  for (auto [width, height] : sizes) {
    const Words words = randomWords(width, height);
    std::vector<int64_t> deltas = {0, INT32_MIN};
    for (int64_t delta : {1, 2, 3, 4, 5, 7, 8, 9, 16, 31, 33, 34, 35, 66, 67, 68, 1000, INT32_MAX})
      deltas.insert(deltas.end(), {delta, -delta});
    for (int64_t delta : deltas) {
      for (bool wrap : {false, true}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height << " by " << delta << ", wrap " << wrap);
        const auto sideways = makePictureFromWords(width, height, words, delta % 2 == 0);
        EXPECT_TRUE(horizontally(sideways, delta, wrap));
        EXPECT_EQ(wordsOf(sideways), scrolled(words, width, delta, 0, wrap));
        const auto upright = makePictureFromWords(width, height, words, delta % 2 == 0);
        EXPECT_TRUE(vertically(upright, delta, wrap));
        EXPECT_EQ(wordsOf(upright), scrolled(words, width, 0, delta, wrap));
      }
    }
  }
}

TEST_F(Scroll, MasksMoveWhenAskedTo) {
  if (isGdk()) GTEST_SKIP();
  const Words words = randomWords(6, 5), maskWords = randomWords(4, 9);
  for (bool withMask : {false, true}) {
    const auto picture = makePictureFromWords(6, 5, words, false);
    const auto mask = makePictureFromWords(4, 9, maskWords, false);
    host::setPictureMask(picture.get(), mask.get());
    EXPECT_TRUE(both(picture, 1, -2, withMask, withMask));
    EXPECT_EQ(wordsOf(picture), scrolled(words, 6, 1, -2, withMask));
    EXPECT_EQ(wordsOf(mask), withMask ? scrolled(maskWords, 4, 1, -2, true) : maskWords);
  }
  const auto bare = makePictureFromWords(6, 5, words, false);
  EXPECT_TRUE(both(bare, 1, -2, true, true)) << "no mask to move";
  EXPECT_EQ(host::pictureMask(bare.get()), nullptr) << "none was made";
  EXPECT_EQ(wordsOf(bare), scrolled(words, 6, 1, -2, true));
}

// A mask that can't be scrolled counts as done sideways, and ends the call up and down.
TEST_F(Scroll, MasksThatCanNotBeScrolled) {
  if (isGdk()) GTEST_SKIP();
  const Words words = randomWords(6, 5);
  const auto picture = makePictureFromWords(6, 5, words, false);
  const auto mask = makePicture({6, 5, Rgb{0}});
  host::oddities(mask.get()).refusesLock = true;
  host::setPictureMask(picture.get(), mask.get());
  EXPECT_FALSE(vertically(picture, 1, true, true));
  EXPECT_EQ(wordsOf(picture), words);
  EXPECT_TRUE(vertically(picture, 0, true, true)) << "the mask, too, need not be opened for 0";
  EXPECT_TRUE(horizontally(picture, 1, true, true));
  EXPECT_EQ(wordsOf(picture), scrolled(words, 6, 1, 0, true));
  EXPECT_FALSE(both(picture, 1, 1, true, true));
  EXPECT_EQ(wordsOf(picture), scrolled(words, 6, 2, 0, true)) << "only sideways";
}

TEST_F(Scroll, PicturesThatCanNotBeScrolledAreDoneSidewaysAndFailUpAndDown) {
  const Pixels pixels = Random(1).pixels(6, 5);
  const auto picture = makePicture(pixels);
  // A GDK drawable can't be changed in place at all.
  host::oddities(picture.get()).refusesLock = !isGdk();
  for (const PictureRef& unusable : {PictureRef(), picture}) {
    for (bool wrap : {false, true}) {
      for (bool withMask : {false, true}) {
        EXPECT_TRUE(horizontally(unusable, 1, wrap, withMask));
        EXPECT_FALSE(vertically(unusable, 1, wrap, withMask));
        EXPECT_FALSE(both(unusable, 1, 1, wrap, withMask));
        EXPECT_TRUE(vertically(unusable, 0, wrap, withMask)) << "a delta of 0 succeeds untried";
        EXPECT_TRUE(both(unusable, 5, 0, wrap, withMask));
      }
    }
  }
  host::oddities(picture.get()).refusesLock = false;
  EXPECT_EQ(colorsOf(picture), pixels);
}

TEST_F(Scroll, PicturesWithoutPixels) {
  if (road() != host::Road::console) GTEST_SKIP() << "no such surface or drawable";
  const auto picture = makePicture({3, 3, Rgb{0x123456}});
  for (auto [width, height] : {std::pair(0, 3), {3, 0}}) {
    host::oddities(picture.get()).describedWidth = width;
    host::oddities(picture.get()).describedHeight = height;
    EXPECT_TRUE(horizontally(picture, 1, true)) << width << " x " << height;
    EXPECT_FALSE(vertically(picture, 1, true)) << width << " x " << height;
  }
}

// The host draws a picture from its cache until it is told that the pixels changed.
TEST_F(Scroll, TellsTheHostThatPixelsChanged) {
  if (isGdk()) GTEST_SKIP();
  const auto picture = makePicture({3, 3, Rgb{0x123456}});
  host::clearFaults();
  horizontally(picture, 0, false);
  EXPECT_EQ(host::uses("REALPictureClearCache"), 0);
  horizontally(picture, 1, false);
  EXPECT_EQ(host::uses("REALPictureClearCache"), 1);
}

}  // namespace
