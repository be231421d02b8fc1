// Regions of pixels, and the making and copying of pictures, as far as registered methods do not reach them.

#include <sys/mman.h>

#include <cmath>

#include "operations/outline.h"
#include "picture/editor.h"
#include "picture/pictures.h"
#include "picture/rows.h"
#include "tests/linked.h"

namespace {

using Pictures = LinkedTest;

host::PictureRef own(REALpictureStruct* picture) { return host::PictureRef::adopt(picture); }

// ---- Pixels ----

// Bytes per pixel and the offsets of red, green and blue, by format code.
TEST_F(Pictures, PixelLayouts) {
  PictureReader editor;
  std::ostringstream layouts;
  for (editor.format = -1; editor.format < 18; ++editor.format)
    layouts << editor.GetBytesPerPixel() << editor.GetRedOffset() << editor.GetGreenOffset()
            << editor.GetBlueOffset() << ' ';
  EXPECT_EQ(layouts.str(),
            "0000 0000 4012 4123 4012 4123 4012 4123 0000 4210 4210 3210 3012 3012 4123 4210 4210 "
            "4210 0000 ");
}

// Addresses behind the middle of the memory are as good as others.
TEST_F(Pictures, RowsOfMoreThanHalfTheMemory) {
  PictureReader reader;
  reader.format = kFormatCairoOpaque;
  reader.width = 30000;
  reader.height = 17900;
  reader.rowBytes = reader.width * 4;
  const auto bytes = static_cast<size_t>(reader.rowBytes) * static_cast<size_t>(reader.height);
  void* const memory = mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) GTEST_SKIP() << "no room for " << bytes << " bytes";
  reader.firstRow = reader.row = static_cast<uint8_t*>(memory);
  size_t pixels = 0;
  scanRegion(reader, Region::whole(reader), [&](const kernels::Pixel* in, size_t count) {
    EXPECT_EQ(in, static_cast<const kernels::Pixel*>(memory) + pixels);
    pixels += count;
    return true;
  });
  EXPECT_EQ(pixels, bytes / 4);
  munmap(memory, bytes);
}

// ---- New pictures ----

TEST_F(Pictures, NewOnesHaveLimits) {
  for (int side : {-1, 0, 1, 32767, 32768}) {
    const bool isSide = side >= 1 && side <= 32767;
    for (auto [width, height] : {std::pair(side, 1), {1, side}}) {
      EXPECT_EQ(PictureWriter().NewPictureWriter(width, height), isSide) << side;
      EXPECT_EQ(GetPictureHeight(own(NewPicture(width, height, true)).get()), isSide ? height : 0) << side;
    }
  }
}

TEST_F(Pictures, AlphaPicturesNeedAHostThatHasThem) {
  for (auto [version, has] : {std::pair(2011.03, false), {2011.04, true}, {std::nan(""), false}}) {
    beginAt(version);
    const auto made = own(NewPictureWithAlphaChannel(3, 2));
    EXPECT_EQ(static_cast<bool>(made), has) << version;
    EXPECT_EQ(PictureHasAlphaChannel(made.get()), has && !isGdk()) << version;
  }
}

// Where a new picture turns out to be a copy of RGB24 pixels the alpha form gives up, and the plain form
// takes a buffer of the size asked for, whatever the copy's.
TEST_F(Pictures, WritersNeverShowACopy) {
  host::Settings settings = settingsForRoad();
  settings.newPicturesGrowBy = -1;
  host::start(settings);
  const auto shrunk = colorsOf(own(NewPicture(4, 3, true)));
  EXPECT_EQ(std::pair(shrunk.width, shrunk.height), std::pair(3, 2));
  PictureWriter writer;
  EXPECT_FALSE(writer.NewPictureWriterWithAlphaChannel(4, 3));
  EXPECT_EQ(writer.NewPictureWriter(4, 3), isGdk());
  EXPECT_FALSE(writer.picture);
}

// ---- Shapes ----

// An oval by a thin pen and by one two pixels wide, one that begins left of the picture, rounded corners.
TEST_F(Pictures, RoundShapes) {
  const auto drawn = [](auto draw, int32_t penWidth = 1) {
    const auto picture = pictureOf({8, 6, Rgb{255}});
    Held<REALgraphicsStruct> graphics(REALGetPictureGraphics(picture.get()));
    SetGraphicsPenWidth(graphics.get(), penWidth);
    draw(graphics.get());
    std::string rows;
    for (uint32_t color : colorsOf(picture).colors)
      rows += std::string(rows.size() % 9 == 8, '/') + (color == Rgb{0} ? '#' : '.');
    return rows;
  };
  const auto oval = [](auto* graphics) { GraphicsDrawOval(graphics, 1, 0, 6, 5); };
  EXPECT_EQ(drawn(oval), "..####../.##..##./.#....#./.##..##./..####../........");
  EXPECT_EQ(drawn(oval, 2), "..####../.##..##./.##..##./.##..##./..####../........");
  EXPECT_EQ(drawn([](auto* graphics) { GraphicsFillOval(graphics, -2, 1, 7, 5); }),
            "......../####..../#####.../#####.../#####.../####....");
  EXPECT_EQ(drawn([](auto* graphics) { GraphicsDrawRoundRect(graphics, 0, 0, 8, 6, 4, 3); }),
            ".######./#......#/#......#/#......#/#......#/.######.");
  EXPECT_EQ(drawn([](auto* graphics) { GraphicsFillRoundRect(graphics, 0, 1, 8, 5, 6, 5); }),
            "......../.######./########/########/########/.######.");
}

// Wider than high, from outside the picture to outside: 3 rows in 8 columns.
TEST_F(Pictures, FlatLine) {
  const auto picture = pictureOf({6, 3, Rgb{0xFFFFFF}});
  {
    PictureEditor editor;
    ASSERT_EQ(editor.GetPictureEditor(picture.get()), !isGdk());
    if (isGdk()) return;
    setOutlineColor(0);
    DrawAntialiasedLine(editor, -2, -1, 6, 2);
  }
  EXPECT_EQ(colorsOf(picture).colors,
            std::vector<uint32_t>({0x3F3F3F, 0x202020, 0x808080, 0xE0E0E0, 0xFFFFFF, 0xFFFFFF,  //
                                   0xFFFFFF, 0xDFDFDF, 0x7F7F7F, 0x1F1F1F, 0x404040, 0xA0A0A0,  //
                                   0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xBFBFBF, 0x5F5F5F}));
}

// ---- Copies ----

TEST_F(Pictures, ClonesWithAndWithoutMasks) {
  Pixels pixels = Random(5).pixels(5, 3);
  const Pixels maskPixels = Random(6).pixels(5, 3);
  pixels.mask = std::make_shared<Pixels>(maskPixels);
  const auto picture = pictureOf(pixels);
  EXPECT_EQ(host::pictureMask(own(ClonePicture(picture.get())).get()), nullptr);
  for (const auto& clone :
       {own(ClonePictureWithMask(picture.get())), own(ConvertToPictureWithMask(picture.get(), 5, 3))}) {
    const auto mask = own(REALGetPictureMask(clone.get(), false));
    EXPECT_NE(mask.get(), host::pictureMask(picture.get()));
    EXPECT_EQ(colorsOf(mask), maskPixels);
    EXPECT_EQ(colorsOf(clone).colors, pixels.colors);
  }
  for (REALpictureStruct* none :
       {ClonePicture(nullptr), ClonePicture(picture.get(), 0, 3), ClonePicture(picture.get(), 5, 0),
        ClonePictureWithMask(nullptr), ClonePictureWithMask(picture.get(), 0, 3),
        ClonePictureWithMask(picture.get(), 5, 0), ConvertToPictureWithMask(nullptr, 5, 3),
        CopyMask(nullptr)})
    EXPECT_EQ(none, nullptr);
  EXPECT_FALSE(AssignMask(picture.get(), nullptr));
  EXPECT_FALSE(AssignMask(nullptr, picture.get()));
  EXPECT_TRUE(AssignMask(picture.get(), pictureOf(maskPixels).get()));
  EXPECT_EQ(own(BitmapPicture(picture.get())).get(), picture.get());
}

// Between whole console bitmaps of one size, moved nowhere and not scaled.
TEST_F(Pictures, OwnCopy) {
  const Pixels pixels = Random(8).pixels(4, 3);
  const auto source = pictureOf(pixels), target = pictureOf({4, 3, Rgb{0}});
  const auto copies = [&](int32_t x = 0, int32_t y = 0, int32_t sx = 0, int32_t sy = 0, int32_t sw = 4,
                          int32_t sh = 3) {
    return OwnCopy(target.get(), source.get(), x, y, 4, 3, sx, sy, sw, sh);
  };
  EXPECT_FALSE(copies(1) || copies(0, 1) || copies(0, 0, 1) || copies(0, 0, 0, 1) || copies(0, 0, 0, 0, 3) ||
               copies(0, 0, 0, 0, 4, 2));
  EXPECT_FALSE(OwnCopy(target.get(), nullptr, 0, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_FALSE(OwnCopy(nullptr, source.get(), 0, 0, 4, 3, 0, 0, 4, 3));
  using Oddities = host::PictureOddities;
  constexpr void (*spoils[])(Oddities&) = {
      [](Oddities& o) { o.shownWidth = 3; },    [](Oddities& o) { o.shownHeight = 2; },
      [](Oddities& o) { o.reportedType = 5; },  [](Oddities& o) { o.bitmapKind = 1; },
      [](Oddities& o) { o.noRowTable = true; }, [](Oddities& o) { o.nullRow = 2; }};
  for (const auto spoil : spoils) {
    for (const auto& odd : {source, target}) {
      spoil(host::oddities(odd.get()));
      EXPECT_FALSE(copies());
      host::oddities(odd.get()) = {};
    }
  }
  EXPECT_EQ(colorsOf(target), Pixels(4, 3, Rgb{0}));
  EXPECT_EQ(copies(), isConsole());
  EXPECT_EQ(colorsOf(target) == pixels, isConsole());
}

}  // namespace
