// Inverting: rectangles, which are cut at the picture.

#include "tests/support.h"

namespace {

using Invert = HostTest;

// A rectangle of a 9 x 7 picture and the part of it that is worked on.
struct RectangleCase {
  int left, top, width, height;
  int x0, y0, x1, y1;
};

const RectangleCase kRectangles[] = {
    {0, 0, 9, 7, 0, 0, 9, 7},
    {2, 1, 3, 4, 2, 1, 5, 5},
    {-5, 0, 10, 7, 0, 0, 5, 7},
    {0, -2, 9, 4, 0, 0, 9, 2},
    {6, 5, 100, 100, 6, 5, 9, 7},
    {9, 0, 1, 1, 0, 0, 0, 0},
    {0, 7, 1, 1, 0, 0, 0, 0},
    {-3, 0, 3, 7, 0, 0, 0, 0},
    {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, 0, 0, 0, 0},
    {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 0, 0, 0, 0},
    {1, 1, INT32_MAX, INT32_MAX, 1, 1, 9, 7},
};

TEST_F(Invert, RectanglesAreCutAtThePicture) {
  if (road() == host::Road::gdk) GTEST_SKIP() << "RGB24 rows start elsewhere: see below";
  const Pixels source = Random(1).pixels(9, 7);
  const auto picture = makePicture(source);
  for (const RectangleCase& c : kRectangles) {
    Pixels expected(9, 7, unwrittenColor());
    for (int y = c.y0; y < c.y1; ++y) {
      for (int x = c.x0; x < c.x1; ++x) expected.at(x, y) = source.at(x, y) ^ 0xFFFFFF;
    }
    EXPECT_EQ(colorsOf(callPicture("InvertZVR", picture, numbers({c.left, c.top, c.width, c.height}))),
              expected)
        << c.left << ' ' << c.top << ' ' << c.width << ' ' << c.height;
  }
}

// Zero or less means the whole picture in one method, only less than zero in the other.
TEST_F(Invert, WhatStandsForTheWholePicture) {
  const Pixels gray(4, 3, Rgb{0x404040});
  const auto picture = makePicture(gray);
  const Pixels inverted = asWritten({4, 3, Rgb{0xBFBFBF}});
  const Pixels untouched(4, 3, unwrittenColor());
  EXPECT_EQ(colorsOf(callPicture("InvertZVR", picture, numbers({0, 0, 0, 0}))), inverted);
  EXPECT_EQ(colorsOf(callPicture("InvertZVR", picture, numbers({0, 0, -1, -1}))), inverted);
  EXPECT_EQ(colorsOf(callPicture("InvertGrayZVR", picture, numbers({0, 0, 0, 0}))), untouched);
  EXPECT_EQ(colorsOf(callPicture("InvertGrayZVR", picture, numbers({0, 0, -1, -1}))), inverted);
}

// On RGB24 rows the left column is counted in steps of 4 bytes, so a rectangle lies further right and may
// spill into the next row. The model works on bytes, as the rows lie in memory.
TEST_F(Invert, ThreeByteRowsStartFourBytesAColumn) {
  if (road() != host::Road::gdk) GTEST_SKIP() << "only the GDK road has RGB24 rows";
  const int width = 8, height = 4;  // rows of 24 bytes: no padding in a GDK copy
  const Pixels source = Random(2).pixels(width, height);
  const auto picture = makePicture(source);
  for (int left = 0; left < width; ++left) {
    const int columns = 3;
    std::vector<int> from, to(static_cast<size_t>((height + 1) * width * 3), 0);
    for (Rgb c : source.colors) from.insert(from.end(), {red(c), green(c), blue(c)});
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < std::min(columns, width - left); ++x) {
        const size_t at = static_cast<size_t>(y * width * 3 + left * 4 + x * 3);
        for (size_t i = at; i < at + 3; ++i) {
          const int value = i < from.size() ? from[i] : 0;  // bytes past the last row are 0
          if (y > 0) to[i] = 255 - value;                   // row 0 goes nowhere
        }
      }
    }
    Pixels expected(width, height, Rgb{0});
    for (size_t i = 0; i < expected.colors.size(); ++i)
      expected.colors[i] = rgb(to[3 * i], to[3 * i + 1], to[3 * i + 2]);
    EXPECT_EQ(colorsOf(callPicture("InvertZVR", picture, numbers({left, 0, columns, -1}))), expected)
        << "left " << left;
  }
}

}  // namespace
