// Finding a picture in another, against trying every place in turn.

#include "tests/support.h"

namespace {

struct Place {
  bool found;
  int64_t x, y;
  bool operator==(const Place& o) const { return found == o.found && x == o.x && y == o.y; }
};
void PrintTo(const Place& place, std::ostream* out) {
  *out << (place.found ? "at " : "nowhere ") << place.x << ' ' << place.y;
}

bool liesAt(const Pixels& picture, const Pixels& needle, int left, int top) {
  for (int y = 0; y < needle.height; ++y) {
    for (int x = 0; x < needle.width; ++x) {
      if (picture.at(left + x, top + y) != needle.at(x, y)) return false;
    }
  }
  return true;
}

Place firstPlace(const Pixels& picture, const Pixels& needle) {
  for (int y = 0; y <= picture.height - needle.height; ++y) {
    for (int x = 0; x <= picture.width - needle.width; ++x) {
      if (liesAt(picture, needle, x, y)) return {true, x, y};
    }
  }
  return {false, 0, 0};
}

Pixels cut(const Pixels& picture, int left, int top, int width, int height) {
  Pixels part(width, height, Rgb{0});
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) part.at(x, y) = picture.at(left + x, top + y);
  }
  return part;
}

class Search : public HostTest {
 protected:
  Place find(const host::PictureRef& picture, const host::PictureRef& needle) {
    const host::Outcome outcome = call("FindPictureZVR", picture.get(), {needle, int64_t{7}, int64_t{7}});
    return {std::get<bool>(outcome.result), std::get<int64_t>(outcome.arguments[1]),
            std::get<int64_t>(outcome.arguments[2])};
  }
  Place find(const Pixels& picture, const Pixels& needle) {
    // Top bytes differ between the two, and so does the kind where there are two.
    return find(makePicture(picture), makePicture(needle, road() != host::Road::gdk));
  }
};

// Pictures of few colours hold many near misses and several matches; wide ones span more than a tile.
TEST_F(Search, FindsTheFirstPlaceOrNone) {
  Random random(312);
  int found = 0;
  for (int round = 0; round < 400; ++round) {
    const int width = random.chance(20) ? random.between(520, 1300) : random.between(1, 90);
    Pixels picture(width, random.between(1, 12), Rgb{0});
    const int colors = random.between(1, 4), rarity = random.between(2, 200);
    for (Rgb& c : picture.colors)
      c = random.between(1, rarity) > 1 ? 0 : 0x10203u * static_cast<Rgb>(random.between(1, colors));
    const int w = random.between(1, random.chance(50) ? width : std::min(width, 20));
    const int h = random.between(1, picture.height);
    Pixels needle = cut(picture, random.between(0, width - w), random.between(0, picture.height - h), w, h);
    if (random.chance(30)) needle.at(random.between(0, w - 1), random.between(0, h - 1)) ^= 0x10203;
    if (random.chance(30)) needle.at(w - 1, h - 1) ^= 0x40000;
    const Place expected = firstPlace(picture, needle);
    found += expected.found;
    ASSERT_EQ(find(picture, needle), expected)
        << width << 'x' << picture.height << " needle " << w << 'x' << h;
  }
  EXPECT_GT(found, 100);
  EXPECT_LT(found, 390);
}

TEST_F(Search, PicturesOfOneColour) {
  const Pixels white(600, 20, Rgb{0xFFFFFF}), small(5, 5, Rgb{0xFFFFFF});
  Pixels needle(30, 5, Rgb{0xFFFFFF});
  EXPECT_EQ(find(white, needle), (Place{true, 0, 0}));
  needle.at(29, 4) = 0xFFFFFE;
  EXPECT_EQ(find(white, needle), (Place{false, 0, 0}));
  EXPECT_EQ(find(small, {6, 1, Rgb{0xFFFFFF}}), (Place{false, 0, 0})) << "too wide";
  EXPECT_EQ(find(small, {1, 6, Rgb{0xFFFFFF}}), (Place{false, 0, 0})) << "too high";
}

// Wherever among the pixels that are looked at together it lies.
TEST_F(Search, EveryColumn) {
  for (int x = 0; x < 140; ++x) {
    Pixels picture(140, 2, Rgb{0x808080});
    for (int other = x; other < 140; ++other) picture.at(other, 1) = 0x0000FF;
    EXPECT_EQ(find(picture, {1, 1, Rgb{0x0000FF}}), (Place{true, x, 1}));
  }
}

// Only part of so large a needle is sampled for its rarest pixel.
TEST_F(Search, LargePictures) {
  if (road() == host::Road::gdk) return;  // the same code, and slow through the X server
  Pixels picture(1200, 700, Rgb{0xFFFFFF});
  picture.at(600, 401) = picture.at(900, 650) = 0;
  const Pixels needle = cut(picture, 300, 101, 700, 555);
  EXPECT_EQ(find(picture, needle), (Place{true, 300, 101}));
}

TEST_F(Search, NothingToFind) {
  const auto picture = makePicture(Random(5).pixels(6, 6));
  EXPECT_EQ(find(picture, picture), (Place{true, 0, 0}));
  EXPECT_EQ(find(picture, {}), (Place{false, 0, 0}));
  EXPECT_EQ(find({}, picture), (Place{false, 0, 0}));
  // A host may leave the places out.
  using Find = RBBoolean(REALpictureStruct*, REALpictureStruct*, int32_t*, int32_t*);
  auto* raw = reinterpret_cast<Find*>(host::findMethods("FindPictureZVR").at(0)->function);
  EXPECT_TRUE(raw(picture.get(), picture.get(), nullptr, nullptr));
  if (road() != host::Road::console) return;  // the others have no pictures without pixels
  const auto empty = makePicture({3, 3, Rgb{0}});
  host::oddities(empty.get()).describedHeight = 0;
  EXPECT_EQ(find(picture, empty), (Place{false, 0, 0}));
}

}  // namespace
