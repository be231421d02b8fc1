// The mask of rectangles over coloured areas, against a search that starts over after every rectangle.

#include "tests/support.h"

namespace {

using Values = std::vector<host::Value>;

// A map with a gray ring around it; pixel (x, y) lies at (x + 1, y + 1).
class Map {
 public:
  Map(int width, int height) : width_(width + 2), cells_(static_cast<size_t>(width_ * (height + 2))) {}
  char& at(int x, int y) { return cells_[static_cast<size_t>((y + 1) * width_ + x + 1)]; }
  bool any(int left, int top, int right, int bottom) {
    for (int y = top; y <= bottom; ++y) {
      for (int x = left; x <= right; ++x) {
        if (at(x, y)) return true;
      }
    }
    return false;
  }

 private:
  int width_;
  std::vector<char> cells_;
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
  Map colored(source.width, source.height);
  const int right = std::min(left + (width < 0 ? source.width : width), source.width);
  const int bottom = std::min(top + (height < 0 ? source.height : height), source.height);
  for (int y = std::max(top, 0); y < bottom; ++y) {
    for (int x = std::max(left, 0); x < right; ++x) {
      const Rgb c = seen(x, y - std::max(top, 0));  // rows count from the picture's first
      colored.at(x, y) = red(c) != green(c) || blue(c) != red(c);
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

Pixels maskOf(const Pixels& source, int left = 0, int top = 0, int width = -1, int height = -1) {
  return maskOf(source, left, top, width, height, [&](int x, int y) { return source.at(x, y); });
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

// Angles nested in one another: each box covers all the ones before, the dearest shape there is.
Pixels nestedAngles(int side) {
  Pixels result(side, side, Rgb{0x202020});
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      if (std::max(x, y) % 2 == 0) result.at(x, y) = 0x0000FF;
    }
  }
  return result;
}

class ColorMask : public HostTest {
 protected:
  Pixels mask(const Pixels& source, Values rectangle = {}) {
    return colorsOf(callPicture("ExtractColorRectangleMaskZVR", makePicture(source), std::move(rectangle)));
  }
};

struct ShapeCase {
  std::vector<std::string> picture, mask;
};

const ShapeCase kShapes[] = {
    {{"......", "......", "......"}, {"......", "......", "......"}},
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
  for (const ShapeCase& c : kShapes) {
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
  for (int side : {8, 9, 40}) EXPECT_EQ(mask(nestedAngles(side)), asWritten(maskOf(nestedAngles(side))));
}

// Rows are the picture's from row 0 on, wherever the rectangle lies; and on 3-byte rows the left column is
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
    const auto seen = [&](int x, int y) -> Rgb {
      if (road() != host::Road::gdk) return source.at(x, y);
      const auto byte = [&](size_t i) { return source.colors[i / 3] >> (16 - 8 * (i % 3)) & 0xFF; };
      const auto at = static_cast<size_t>(y * source.width * 3 + std::max(left, 0) + x * 3);
      if (at + 3 > source.colors.size() * 3) return 0;  // past the last row: not coloured
      return byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
    };
    ASSERT_EQ(mask(source, {int64_t{left}, int64_t{top}, int64_t{w}, int64_t{h}}),
              asWritten(maskOf(source, left, top, w, h, seen)))
        << source.width << 'x' << source.height << " at " << left << ' ' << top << ' ' << w << ' ' << h;
  }
}

TEST_F(ColorMask, ResultIsOpaqueAndNilGivesNil) {
  EXPECT_FALSE(callPicture("ExtractColorRectangleMaskZVR", {}));
  const auto result = callPicture("ExtractColorRectangleMaskZVR", makePicture(drawn({"#..", "#.."}), true));
  ASSERT_TRUE(result);
  EXPECT_FALSE(host::pictureHasAlpha(result.get()));
}

}  // namespace
