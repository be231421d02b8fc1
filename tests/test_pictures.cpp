// The editor's corners and the making and copying of pictures, which no registered method reaches by itself.

#include <sys/mman.h>

#include <cmath>

#include "picture/editor.h"
#include "picture/pictures.h"
#include "picture/rows.h"
#include "tests/linked.h"

namespace {

class Pictures : public LinkedTest {
 protected:
  static host::PictureRef own(REALpictureStruct* picture) { return host::PictureRef::adopt(picture); }
};

// Bytes per pixel and the offsets of red, green and blue, by format code.
TEST_F(Pictures, PixelLayouts) {
  PictureReader editor;
  std::string layouts;
  for (editor.format = -1; editor.format < 18; ++editor.format) {
    for (int32_t number :
         {editor.GetBytesPerPixel(), editor.GetRedOffset(), editor.GetGreenOffset(), editor.GetBlueOffset()})
      layouts += std::to_string(number);
    layouts += ' ';
  }
  EXPECT_EQ(layouts,
            "0000 0000 4012 4123 4012 4123 4012 4123 0000 4210 4210 3210 3012 3012 4123 4210 4210 "
            "4210 0000 ");
}

TEST_F(Pictures, RowsStartOverAfterTheLast) {
  const auto picture = makePicture({4, 3, Rgb{0}});
  PictureReader reader;
  ASSERT_TRUE(reader.GetPictureReader(picture.get()));
  EXPECT_EQ(reader.format, isGdk() ? kFormatRGB24 : isConsole() ? kFormatHostBitmap : kFormatCairoOpaque);
  uint8_t* const first = reader.row;
  for (int y : {1, 2, 3}) EXPECT_EQ(reader.AddPixelRow() == first, y == 3);
  EXPECT_EQ(reader.GetRow(100), first);
  EXPECT_EQ(host::references(picture.get()), 2);
  reader.clear();
  EXPECT_EQ(host::references(picture.get()), 1);
  EXPECT_EQ(reader.width, 4) << "clear leaves the sizes";
}

TEST_F(Pictures, NewOnesHaveLimits) {
  for (auto [width, height] : {std::pair(0, 1), {1, 0}, {-1, 5}, {32768, 1}, {1, 32768}}) {
    PictureWriter writer;
    EXPECT_FALSE(writer.NewPictureWriter(width, height)) << width << " x " << height;
    EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
    EXPECT_FALSE(own(NewPicture(width, height, true))) << width << " x " << height;
  }
  PictureWriter writer;
  EXPECT_TRUE(writer.NewPictureWriter(32767, 1));
}

TEST_F(Pictures, AlphaPicturesNeedAHostThatHasThem) {
  for (auto [version, has] : {std::pair(2011.03, false), {2011.04, true}, {std::nan(""), false}}) {
    beginAt(version);
    const auto made = own(NewPictureWithAlphaChannel(3, 2));
    EXPECT_EQ(static_cast<bool>(made), has) << version;
    EXPECT_EQ(PictureHasAlphaChannel(made.get()), has && !isGdk()) << version;
    EXPECT_TRUE(own(NewPicture(3, 2, true))) << version;
  }
}

// Where a new picture turns out to be a copy of RGB24 pixels the alpha form gives up, and the plain form
// takes a buffer of the size asked for, whatever the copy's.
TEST_F(Pictures, WritersNeverShowACopy) {
  host::Settings settings = settingsForRoad();
  for (auto [more, alpha] : {std::pair(-1, true), {-1, false}, {0, true}, {0, false}}) {
    SCOPED_TRACE(std::to_string(more) + (alpha ? " with alpha" : ""));
    settings.newPicturesGrowBy = more;
    host::start(settings);
    PictureWriter writer;
    const bool opened = alpha ? writer.NewPictureWriterWithAlphaChannel(4, 3) : writer.NewPictureWriter(4, 3);
    EXPECT_EQ(opened, isGdk() ? !alpha : more == 0);
    EXPECT_EQ(writer.picture != nullptr, opened && !isGdk());
  }
}

// Addresses behind the middle of the memory are as good as others: a surface of more than 2 GiB.
TEST_F(Pictures, RowsOfMoreThanHalfTheMemory) {
  if (!isConsole()) GTEST_SKIP() << "it would be the same again";
  constexpr int32_t kWidth = 30000, kHeight = 17900;
  constexpr size_t kBytes = size_t{kWidth} * kHeight * 4;
  void* const memory = mmap(nullptr, kBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) GTEST_SKIP() << "no room for " << kBytes << " bytes";
  PictureReader reader;
  reader.format = kFormatCairoOpaque;
  reader.width = kWidth;
  reader.height = kHeight;
  reader.rowBytes = kWidth * 4;
  reader.firstRow = reader.row = static_cast<uint8_t*>(memory);
  const auto* next = static_cast<const kernels::Pixel*>(memory);
  EXPECT_TRUE(scanRegion(reader, Region::whole(reader), [&](const kernels::Pixel* in, size_t count) {
    EXPECT_EQ(in, next);
    next += count;
    return count == kWidth;
  }));
  EXPECT_EQ(reinterpret_cast<uintptr_t>(next), reinterpret_cast<uintptr_t>(memory) + kBytes);
  EXPECT_EQ(RowSource(reader, Region::cut(0, kHeight - 1, kWidth, 1, reader)).readable(0, kWidth), kWidth);
  munmap(memory, kBytes);
}

TEST_F(Pictures, ClonesWithAndWithoutMasks) {
  const Pixels pixels = Random(5).pixels(5, 3), maskPixels = Random(6).pixels(5, 3);
  const auto picture = makePicture(pixels), mask = makePicture(maskPixels);
  host::setPictureMask(picture.get(), mask.get());
  EXPECT_EQ(host::pictureMask(own(ClonePicture(picture.get())).get()), nullptr);
  for (const auto& clone :
       {own(ClonePictureWithMask(picture.get())), own(ConvertToPictureWithMask(picture.get(), 5, 3))}) {
    EXPECT_EQ(colorsOf(clone), pixels);
    const auto cloned = own(REALGetPictureMask(clone.get(), false));
    EXPECT_NE(cloned.get(), mask.get());
    EXPECT_EQ(colorsOf(cloned), maskPixels);
  }
  EXPECT_EQ(host::pictureWidth(own(ClonePicture(picture.get(), 9, 2)).get()), 9);
  for (REALpictureStruct* none : {ClonePicture(nullptr), ClonePicture(picture.get(), 0, 3),
                                  ClonePictureWithMask(nullptr), CopyMask(nullptr)})
    EXPECT_EQ(none, nullptr);
  EXPECT_FALSE(AssignMask(picture.get(), nullptr));
  EXPECT_EQ(own(BitmapPicture(picture.get())).get(), picture.get());
}

// Between whole console bitmaps of one size, moved nowhere and not scaled.
TEST_F(Pictures, OwnCopy) {
  const Pixels pixels = Random(8).pixels(4, 3), black(4, 3, Rgb{0});
  const auto source = makePicture(pixels), target = makePicture(black), wider = makePicture({5, 3, Rgb{0}}),
             higher = makePicture({4, 4, Rgb{0}});
  REALpictureStruct *const from = source.get(), *const to = target.get();
  EXPECT_FALSE(OwnCopy(to, from, 1, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_FALSE(OwnCopy(to, from, 0, 0, 4, 3, 0, 0, 3, 3));
  EXPECT_FALSE(OwnCopy(wider.get(), from, 0, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_FALSE(OwnCopy(higher.get(), from, 0, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_FALSE(OwnCopy(to, nullptr, 0, 0, 4, 3, 0, 0, 4, 3));
  using Oddities = host::PictureOddities;
  constexpr void (*spoils[])(Oddities&) = {
      [](Oddities& o) { o.nullRow = 2; }, [](Oddities& o) { o.reportedType = 5; },
      [](Oddities& o) { o.bitmapKind = 1; }, [](Oddities& o) { o.noRowTable = true; }};
  for (const auto spoil : spoils) {
    for (REALpictureStruct* odd : {from, to}) {
      spoil(host::oddities(odd));
      EXPECT_FALSE(OwnCopy(to, from, 0, 0, 4, 3, 0, 0, 4, 3));
      host::oddities(odd) = {};
    }
  }
  EXPECT_EQ(colorsOf(target), black);
  EXPECT_EQ(OwnCopy(to, from, 0, 0, 4, 3, 0, 0, 4, 3), isConsole());
  EXPECT_EQ(colorsOf(target), isConsole() ? pixels : black);
}

}  // namespace
