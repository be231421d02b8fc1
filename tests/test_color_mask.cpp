// The mask of rectangles over coloured areas, against a search that starts over after every rectangle.

#include "tests/plain_kernels.h"

namespace {

using Values = std::vector<host::Value>;

// Which pixels are coloured; those outside are not.
struct Map {
  explicit Map(const Pixels& picture) : cells(picture.width, picture.height, Rgb{0}) {}
  Rgb& at(int x, int y) { return cells.at(x, y); }
  bool any(int left, int top, int right, int bottom) {
    for (int y = std::max(top, 0); y <= std::min(bottom, cells.height - 1); ++y) {
      for (int x = std::max(left, 0); x <= std::min(right, cells.width - 1); ++x) {
        if (at(x, y)) return true;
      }
    }
    return false;
  }
  Pixels cells;
};

void growAndFill(Map& colored, Pixels& mask, int x, int y) {
  int left = x, right = x, top = y, bottom = y;
  for (bool moved = true; moved;) {
    moved = false;
    if (colored.any(left, top - 1, right, top - 1)) --top, moved = true;
    if (colored.any(left, bottom + 1, right, bottom + 1)) ++bottom, moved = true;
    if (colored.any(left - 1, top, left - 1, bottom)) --left, moved = true;
    if (colored.any(right + 1, top, right + 1, bottom)) ++right, moved = true;
  }
  for (int row = top; row <= bottom; ++row) {
    for (int column = left; column <= right; ++column) {
      colored.at(column, row) = 0;
      mask.at(column, row) = 0;
    }
  }
}

// `seen(column, row)`: the colour that a picture shows there.
template <typename Seen>
Pixels maskOf(const Pixels& source, int left, int top, int width, int height, const Seen& seen) {
  Map colored(source);
  const int right = std::min(left + (width < 0 ? source.width : width), source.width);
  const int bottom = std::min(top + (height < 0 ? source.height : height), source.height);
  for (int y = std::max(top, 0); y < bottom; ++y) {
    for (int x = std::max(left, 0); x < right; ++x) {
      const Rgb c = seen(x, y - std::max(top, 0));  // rows count from the picture's first
      colored.at(x, y) = !plain::isGray(c);
    }
  }
  Pixels mask(source.width, source.height, Rgb{0xFFFFFF});
  for (bool found = true; found;) {
    found = false;
    for (int y = 0; y < source.height && !found; ++y) {
      for (int x = 0; x < source.width && !found; ++x) {
        if (!colored.at(x, y)) continue;
        growAndFill(colored, mask, x, y);
        found = true;
      }
    }
  }
  return mask;
}

Pixels maskOf(const Pixels& source) {
  return maskOf(source, 0, 0, -1, -1, [&](int x, int y) { return source.at(x, y); });
}

// A picture drawn in characters: '.' is gray, anything else coloured.
Pixels drawn(const std::vector<std::string>& rows) {
  Pixels result(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), Rgb{0x777777});
  for (int y = 0; y < result.height; ++y) {
    for (int x = 0; x < result.width; ++x) {
      if (rows[static_cast<size_t>(y)][static_cast<size_t>(x)] != '.') result.at(x, y) = 0x777778;
    }
  }
  return result;
}

Pixels masked(const std::vector<std::string>& rows) {
  Pixels result = drawn(rows);
  for (Rgb& c : result.colors) c = c == 0x777777 ? 0xFFFFFF : 0;
  return asWritten(result);
}

class ColorMask : public HostTest {
 protected:
  Pixels mask(const Pixels& source, Values rectangle = {}) {
    return colorsOf(callPicture("ExtractColorRectangleMaskZVR", makePicture(source), std::move(rectangle)));
  }
};

const struct {
  std::vector<std::string> picture, mask;
} kShapes[] = {
    {{"......", "....#.", "......"}, {"......", "....#.", "......"}},
    // An angle takes in its whole box; areas apart stay apart.
    {{"#....#", "#....#", "###..."}, {"###..#", "###..#", "###..."}},
    // Corners don't count, in either direction.
    {{"......", ".#..#.", "..##..", "......"}, {"......", ".#..#.", "..##..", "......"}},
    // A side that moved has a longer line to look at in the same round.
    {{".....", "..##.", "#..##", "##..."}, {".....", "..###", "#####", "##..."}},
    // A box that grows back over an earlier one.
    {{"#....", "..#..", "..#..", "###.."}, {"#....", "###..", "###..", "###.."}},
};

TEST_F(ColorMask, Shapes) {
  for (const auto& c : kShapes) {
    const Pixels source = drawn(c.picture);
    EXPECT_EQ(mask(source), masked(c.mask)) << c.picture[1];
    EXPECT_EQ(asWritten(maskOf(source)), masked(c.mask)) << "the model itself";
  }
}

TEST_F(ColorMask, GrowsAsARestartingSearchDoes) {
  Random random(311);
  for (int round = 0; round < 300; ++round) {
    Pixels source(random.between(1, 45), random.between(1, 25), Rgb{0x808080});
    const int density = random.between(1, 30);
    for (Rgb& c : source.colors) {
      if (random.chance(density)) c = random.color();
    }
    ASSERT_EQ(mask(source), asWritten(maskOf(source)));
  }
  for (int length = 1; length < 40; ++length) {
    Pixels angles(45, 21, Rgb{0x808080});
    for (int y = 0; y < 9; ++y) angles.at(1, y) = angles.at(43, 11 + y) = 0xFF00;
    for (int x = 0; x < length; ++x) angles.at(1 + x, 8) = angles.at(43 - x, 19) = 0xFF00;
    ASSERT_EQ(mask(angles), asWritten(maskOf(angles))) << length;
  }
  // Nested in one another: each box covers all the ones before, the dearest shape there is.
  for (int side : {8, 9, 40}) {
    Pixels angles(side, side, Rgb{0x202020});
    for (int i = 0; i < side * side; ++i) {
      if (std::max(i % side, i / side) % 2 == 0) angles.at(i % side, i / side) = 0x0000FF;
    }
    EXPECT_EQ(mask(angles), asWritten(maskOf(angles)));
  }
}

// Rows are the picture's from row 0 on, wherever the rectangle lies; and on RGB24 rows the left column is
// counted in steps of 4 bytes. Rows without padding.
TEST_F(ColorMask, Rectangles) {
  Random random(312);
  for (int round = 0; round < 300; ++round) {
    Pixels source(4 * random.between(1, 10), random.between(1, 12), Rgb{0x808080});
    for (Rgb& c : source.colors) {
      if (random.chance(8)) c = random.color();
    }
    const int left = random.between(-4, source.width), top = random.between(-4, source.height);
    const int w = random.between(-1, source.width + 4), h = random.between(-1, source.height + 4);
    const auto seen = [&](int x, int y) {
      return seenInRectangle(source, std::max(left, 0), x, y).value_or(0);
    };
    ASSERT_EQ(mask(source, numbers({left, top, w, h})), asWritten(maskOf(source, left, top, w, h, seen)))
        << source.width << 'x' << source.height << " at " << left << ' ' << top << ' ' << w << ' ' << h;
  }
}

TEST_F(ColorMask, ResultIsOpaqueAndNilGivesNil) {
  EXPECT_FALSE(callPicture("ExtractColorRectangleMaskZVR", {}));
  const auto result = callPicture("ExtractColorRectangleMaskZVR", makePicture({2, 2, Rgb{1}}, true));
  EXPECT_FALSE(host::pictureHasAlpha(result.get()));
}

}  // namespace
