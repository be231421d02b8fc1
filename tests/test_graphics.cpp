// Properties and drawing methods of the host's own graphics objects, reached by name.

#include "frame/graphics.h"

#include <algorithm>
#include <cmath>

#include "tests/linked.h"

namespace {

class HostGraphics : public LinkedTest {
 protected:
  // A white picture's graphics object that draws in black, used and let go.
  template <typename Use>
  Pixels drawn(Use use) {
    const auto picture = makePicture({12, 8, Rgb{0xFFFFFF}});
    {
      const auto graphics = host::Ref<REALgraphicsStruct>::adopt(REALGetPictureGraphics(picture.get()));
      EXPECT_TRUE(graphics);
      SetGraphicsForeColor(graphics.get(), 0x000000);
      use(graphics.get());
    }
    return colorsOf(picture);
  }
};

TEST_F(HostGraphics, SizesOfPictures) {
  const auto picture = host::newPicture(12, 8);
  for (bool hidden : {false, true}) {
    host::oddities(picture.get()).hidesSize = hidden;
    EXPECT_EQ(GetPictureWidth(picture.get()), hidden ? 0 : 12);
    EXPECT_EQ(GetPictureHeight(picture.get()), hidden ? 0 : 8);
  }
}

TEST_F(HostGraphics, PropertiesByName) {
  drawn([](REALgraphicsStruct* graphics) {
    const auto whole = [&](const char* name) {
      int32_t value = -1;
      EXPECT_TRUE(REALGetPropValueInt32(graphics, name, &value)) << name;
      return value;
    };
    const auto flag = [&](const char* name) {
      uint8_t value = 9;
      EXPECT_TRUE(REALGetPropValueUInt8(graphics, name, &value)) << name;
      return value != 0;
    };
    const auto font = [&] {
      REALstringStruct* value = nullptr;
      EXPECT_TRUE(REALGetPropValueString(graphics, "TextFont", &value));
      return host::stringBytes(host::StringRef::adopt(value).get());
    };
    SetGraphicsTextSize(graphics, 17);
    SetGraphicsPenWidth(graphics, 3);
    SetGraphicsPenHeight(graphics, 4);
    EXPECT_EQ(whole("TextSize"), 17);
    EXPECT_EQ(whole("PenWidth"), 3);
    EXPECT_EQ(whole("PenHeight"), 4);
    SetGraphicsBold(graphics, true);
    EXPECT_TRUE(flag("Bold") && !flag("Italic") && !flag("Underline"));
    SetGraphicsItalic(graphics, true);
    SetGraphicsBold(graphics, false);
    EXPECT_TRUE(!flag("Bold") && flag("Italic") && !flag("Underline"));
    SetGraphicsUnderline(graphics, true);
    EXPECT_TRUE(flag("Underline"));
    SetGraphicsTextFont(graphics, "Serif");
    EXPECT_EQ(font(), "Serif");
    SetGraphicsTextFont(graphics, host::newString("Sans").get());
    EXPECT_EQ(font(), "Sans");
    SetGraphicsTextFont(graphics, static_cast<const char*>(nullptr));
    EXPECT_EQ(font(), "");
    SetGraphicsForeColor(graphics, 0x123456);
    EXPECT_EQ(GetGraphicsForeColor(graphics), 0x123456u);
    EXPECT_EQ(GetGraphicsForeColor(nullptr), 0u);
  });
}

struct DrawCase {
  std::string declaration;
  void (*draw)(REALgraphicsStruct*);
};

// As the host knows them, byte for byte.
const std::string kRect = "( x as Integer, y as Integer, width as Integer, height as Integer";
const DrawCase kDrawCases[] = {
    {"DrawRoundRect" + kRect + ", ArcWidth as integer, ArcHeight as integer )",
     [](REALgraphicsStruct* g) { GraphicsDrawRoundRect(g, 1, 2, 9, 5, 4, 3); }},
    {"FillRoundRect" + kRect + ", ArcWidth as integer, ArcHeight as integer )",
     [](REALgraphicsStruct* g) { GraphicsFillRoundRect(g, 1, 2, 9, 5, 4, 3); }},
    {"DrawOval" + kRect + " )", [](REALgraphicsStruct* g) { GraphicsDrawOval(g, 1, 2, 9, 5); }},
    {"FillOval" + kRect + " )", [](REALgraphicsStruct* g) { GraphicsFillOval(g, 1, 2, 9, 5); }},
    {"DrawRect" + kRect + " )", [](REALgraphicsStruct* g) { GraphicsDrawRect(g, 1, 2, 9, 5); }},
    {"FillRect" + kRect + " )", [](REALgraphicsStruct* g) { GraphicsFillRect(g, 1, 2, 9, 5); }},
    {"ClearRect" + kRect + " )", [](REALgraphicsStruct* g) { GraphicsClearRect(g, 1, 2, 9, 5); }},
};

TEST_F(HostGraphics, ShapesAreDrawnByTheHostsOwnMethods) {
  const Pixels blank(12, 8, Rgb{0xFFFFFF});
  std::vector<Pixels> pictures;
  for (const DrawCase& c : kDrawCases) {
    SCOPED_TRACE(c.declaration);
    host::clearFaults();
    pictures.push_back(drawn([&](REALgraphicsStruct* graphics) {
      c.draw(graphics);
      EXPECT_EQ(host::uses(c.declaration), 1);
      c.draw(nullptr);
      host::removeEntryPoint(c.declaration);
      c.draw(graphics);  // looked up again, and gone
      EXPECT_EQ(host::uses(c.declaration), 1);
    }));
  }
  Pixels frame = blank, filled = blank;
  for (int y = 2; y < 7; ++y) {
    for (int x = 1; x < 10; ++x) {
      filled.at(x, y) = 0;
      if (y == 2 || y == 6 || x == 1 || x == 9) frame.at(x, y) = 0;
    }
  }
  EXPECT_EQ(pictures[4], frame);
  EXPECT_EQ(pictures[5], filled);
  EXPECT_EQ(pictures[6], blank);
  for (size_t i = 0; i < 4; ++i) EXPECT_FALSE(pictures[i] == blank) << kDrawCases[i].declaration;
  EXPECT_FALSE(pictures[0] == pictures[2]) << "arcs are handed on";
}

// A line as it is defined: the pen's rectangle at each point, however far away. Points are counted from the
// left end, those of a steep line from the upper one.
Pixels stamped(int x1, int y1, int x2, int y2, int penWidth, int penHeight) {
  const bool isSteep = std::abs(y2 - y1) > std::abs(x2 - x1);
  if (isSteep ? y2 < y1 : x2 < x1) return stamped(x2, y2, x1, y1, penWidth, penHeight);
  Pixels result(12, 8, Rgb{0xFFFFFF});
  const int steps = std::max({std::abs(x2 - x1), std::abs(y2 - y1), 1});
  for (int i = 0; i <= steps; ++i) {
    const long left = x1 + std::lround(double{1} * (x2 - x1) * i / steps);
    const long top = y1 + std::lround(double{1} * (y2 - y1) * i / steps);
    for (long y = std::max(top, 0L); y < std::min(top + penHeight, 8L); ++y) {
      for (long x = std::max(left, 0L); x < std::min(left + penWidth, 12L); ++x) {
        result.at(static_cast<int>(x), static_cast<int>(y)) = 0;
      }
    }
  }
  return result;
}

TEST_F(HostGraphics, WidePensFromFarAway) {
  const auto line = [this](int x1, int y1, int x2, int y2, int penWidth, int penHeight) {
    return drawn([&](REALgraphicsStruct* graphics) {
      SetGraphicsPenWidth(graphics, penWidth);
      SetGraphicsPenHeight(graphics, penHeight);
      GraphicsDrawLine(graphics, x1, y1, x2, y2);
    });
  };
  EXPECT_EQ(line(2, 3, 6, 3, 1, 1), stamped(2, 3, 6, 3, 1, 1));
  Random random(1);
  for (int i = 0; i < 300; ++i) {
    const int x1 = random.between(-60, 60), y1 = random.between(-60, 60);
    const int x2 = random.between(-60, 60), y2 = random.between(-60, 60);
    const int width = random.between(1, 60), height = random.between(1, 60);
    EXPECT_EQ(line(x1, y1, x2, y2, width, height), stamped(x1, y1, x2, y2, width, height))
        << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2 << ' ' << width << ' ' << height;
  }
  // Point by point these would take hours.
  const Pixels all(12, 8, Rgb{0}), none(12, 8, Rgb{0xFFFFFF});
  EXPECT_EQ(line(5, INT32_MIN, 5, 0, INT32_MAX, INT32_MAX), stamped(5, -9, 5, 0, 90, 90));
  EXPECT_EQ(line(-5, INT32_MIN, -5, INT32_MAX, INT32_MAX, INT32_MAX), all);
  EXPECT_EQ(line(12, INT32_MIN, 12, INT32_MAX, INT32_MAX, INT32_MAX), none);
}

}  // namespace
