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

TEST_F(Pictures, PixelLayoutsByFormatCode) {
  struct Case {
    int32_t code, bytes, red, green, blue;
  };
  PictureReader editor;
  for (const Case& c :
       {Case{0, 0, 0, 0, 0}, Case{1, 4, 0, 1, 2}, Case{6, 4, 1, 2, 3}, Case{8, 4, 2, 1, 0},
        Case{11, 3, 0, 1, 2}, Case{16, 4, 2, 1, 0}, Case{17, 0, 0, 0, 0}, Case{-1, 0, 0, 0, 0}}) {
    editor.format = c.code;
    EXPECT_EQ(editor.GetBytesPerPixel(), c.bytes) << c.code;
    EXPECT_EQ(editor.GetRedOffset(), c.red) << c.code;
    EXPECT_EQ(editor.GetGreenOffset(), c.green) << c.code;
    EXPECT_EQ(editor.GetBlueOffset(), c.blue) << c.code;
  }
}

TEST_F(Pictures, RowsStartOverAfterTheLast) {
  const auto picture = makePicture({4, 3, Rgb{0}});
  PictureReader reader;
  ASSERT_TRUE(reader.GetPictureReader(picture.get()));
  EXPECT_EQ(reader.format, isGdk() ? kFormatRGB24 : isConsole() ? kFormatHostBitmap : kFormatCairoOpaque);
  uint8_t* const first = reader.row;
  for (int i = 0; i < 2; ++i) EXPECT_NE(reader.AddPixelRow(), first);
  EXPECT_EQ(reader.AddPixelRow(), first);
  EXPECT_EQ(reader.GetRow(100), first);
  EXPECT_EQ(host::references(picture.get()), 2);
  reader.clear();
  EXPECT_EQ(host::references(picture.get()), 1);
  EXPECT_EQ(reader.width, 4) << "clear leaves the sizes";
}

TEST_F(Pictures, InPlaceAccessIsRefusedWhereWritesWouldBeLost) {
  const auto picture = makePicture({4, 3, Rgb{0}});
  PictureEditor editor;
  EXPECT_EQ(editor.GetPictureEditor(picture.get()), !isGdk());
  EXPECT_FALSE(editor.GetPictureEditor(nullptr));
  EXPECT_EQ(editor.picture, nullptr);
}

TEST_F(Pictures, WritersHaveLimits) {
  for (auto [width, height] :
       {std::pair(0, 1), std::pair(1, 0), std::pair(-1, 5), std::pair(32768, 1), std::pair(1, 32768)}) {
    PictureWriter writer;
    EXPECT_FALSE(writer.NewPictureWriter(width, height)) << width << " x " << height;
    EXPECT_FALSE(own(NewPicture(width, height, true))) << width << " x " << height;
    EXPECT_EQ(writer.RenderPictureWriter(), nullptr);
  }
  PictureWriter writer;
  EXPECT_TRUE(writer.NewPictureWriter(32767, 1));
}

TEST_F(Pictures, WritersReuseALargeEnoughTarget) {
  const auto target = makePicture({6, 5, Rgb{0x101010}});
  for (auto [width, height, fits] :
       {std::tuple(6, 5, true), std::tuple(2, 2, true), std::tuple(7, 5, false), std::tuple(6, 6, false)}) {
    PictureWriter writer;
    ASSERT_TRUE(writer.NewPictureWriter(target.get(), width, height));
    const auto result = own(writer.RenderPictureWriter());
    EXPECT_EQ(result.get() == target.get(), fits && !isGdk()) << width << " x " << height;
  }
  PictureWriter writer;
  EXPECT_TRUE(writer.NewPictureWriter(static_cast<REALpictureStruct*>(nullptr), 2, 2));
}

// A writer that never renders keeps its buffer to itself; one that rendered has given it to the host.
TEST_F(Pictures, BuffersOfWriters) {
  PictureWriter writer;
  ASSERT_TRUE(writer.NewPictureWriterLinux(5, 4));
  EXPECT_EQ(writer.rowBytes, 15);
  EXPECT_NE(writer.row, writer.buffer) << "the first row's writes are dropped, on purpose";
  for (int y = 0; y < 4; ++y, writer.AddPixelRow()) {
    for (int i = 0; i < 15; ++i) writer.row[i] = 200;
  }
  const auto result = own(writer.RenderPictureWriter());
  Pixels expected(5, 4, Rgb{0xC8C8C8});
  for (int x = 0; x < 5; ++x) expected.at(x, 0) = 0;
  EXPECT_EQ(colorsOf(result), expected);

  PictureWriter unused;
  EXPECT_TRUE(unused.NewPictureWriterLinux(5, 4));
  EXPECT_TRUE(unused.NewPictureWriterLinux(3, 2));
}

TEST_F(Pictures, AlphaPicturesNeedAHostThatHasThem) {
  for (auto [version, has] :
       {std::pair(2011.03, false), std::pair(2011.04, true), std::pair(std::nan(""), false)}) {
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
  for (const int more : {-1, 0}) {
    settings.newPicturesGrowBy = more;
    host::start(settings);
    for (const bool alpha : {true, false}) {
      SCOPED_TRACE(std::to_string(more) + (alpha ? " with alpha" : ""));
      PictureWriter writer;
      const bool opened =
          alpha ? writer.NewPictureWriterWithAlphaChannel(4, 3) : writer.NewPictureWriter(4, 3);
      EXPECT_EQ(opened, isGdk() ? !alpha : more == 0);
      EXPECT_EQ(writer.picture != nullptr, opened && !isGdk());
    }
  }
}

// Addresses behind the middle of the memory are as good as others: a black surface of more than 2 GiB.
TEST_F(Pictures, RowsOfMoreThanHalfTheMemory) {
  if (!isConsole()) GTEST_SKIP() << "it would be the same again";
  constexpr int32_t kWidth = 30000, kHeight = 17900;
  constexpr size_t kBytes = size_t{kWidth} * kHeight * 4;
  void* const memory = mmap(nullptr, kBytes, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) GTEST_SKIP() << "no room for " << kBytes << " bytes";
  PictureReader reader;
  reader.format = kFormatCairoOpaque;
  reader.bytesPerPixel = 4;
  reader.width = kWidth;
  reader.height = kHeight;
  reader.rowBytes = kWidth * 4;
  reader.firstRow = reader.row = static_cast<uint8_t*>(memory);
  size_t black = 0;
  EXPECT_TRUE(scanRegion(reader, Region::whole(reader), [&](const kernels::Pixel* in, size_t count) {
    black += kernels::best().countColor(in, count, 0x000000);
    return true;
  }));
  EXPECT_EQ(black, kBytes / 4);
  EXPECT_EQ(RowSource(reader, Region::cut(0, kHeight - 1, kWidth, 1, reader)).readable(0, kWidth), kWidth);
  munmap(memory, kBytes);
}

TEST_F(Pictures, ClonesWithAndWithoutMasks) {
  const Pixels pixels = Random(5).pixels(5, 3), maskPixels = Random(6).pixels(5, 3);
  const auto picture = makePicture(pixels);
  host::setPictureMask(picture.get(), makePicture(maskPixels).get());

  const auto plain = own(ClonePicture(picture.get()));
  EXPECT_EQ(colorsOf(plain), pixels);
  EXPECT_EQ(host::pictureMask(plain.get()), nullptr);

  for (const auto& clone :
       {own(ClonePictureWithMask(picture.get())), own(ConvertToPictureWithMask(picture.get(), 5, 3))}) {
    EXPECT_EQ(colorsOf(clone), pixels);
    REALpictureStruct* mask = host::pictureMask(clone.get());
    ASSERT_NE(mask, nullptr);
    EXPECT_NE(mask, host::pictureMask(picture.get()));
    host::retain(mask);
    EXPECT_EQ(colorsOf(own(mask)), maskPixels);
  }
  EXPECT_EQ(host::pictureWidth(own(ClonePicture(picture.get(), 9, 2)).get()), 9);
  EXPECT_FALSE(own(ClonePicture(nullptr)));
  EXPECT_FALSE(own(ClonePicture(picture.get(), 0, 3)));
  EXPECT_FALSE(own(ClonePictureWithMask(nullptr)));
  EXPECT_FALSE(own(CopyMask(nullptr)));
  EXPECT_FALSE(AssignMask(picture.get(), nullptr));
  EXPECT_EQ(own(BitmapPicture(picture.get())).get(), picture.get());
}

// Between console bitmaps of one size, moved nowhere and not scaled.
TEST_F(Pictures, OwnCopy) {
  const Pixels pixels = Random(8).pixels(4, 3);
  const auto source = makePicture(pixels), target = makePicture({4, 3, Rgb{0}}),
             larger = makePicture({5, 3, Rgb{0}});
  EXPECT_FALSE(OwnCopy(target.get(), source.get(), 1, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_FALSE(OwnCopy(target.get(), source.get(), 0, 0, 4, 3, 0, 0, 3, 3));
  EXPECT_FALSE(OwnCopy(larger.get(), source.get(), 0, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_FALSE(OwnCopy(target.get(), nullptr, 0, 0, 4, 3, 0, 0, 4, 3));
  EXPECT_EQ(colorsOf(target), Pixels(4, 3, Rgb{0}));
  EXPECT_EQ(OwnCopy(target.get(), source.get(), 0, 0, 4, 3, 0, 0, 4, 3), isConsole());
  EXPECT_EQ(colorsOf(target), isConsole() ? pixels : Pixels(4, 3, Rgb{0}));
}

TEST_F(Pictures, OwnCopyOfWhatIsNoWholeBitmap) {
  constexpr void (*spoils[])(host::PictureOddities&) = {[](host::PictureOddities& o) { o.nullRow = 2; },
                                                        [](host::PictureOddities& o) { o.reportedType = 5; }};
  for (const auto spoil : spoils) {
    const auto odd = makePicture({4, 3, Rgb{1}}), sound = makePicture({4, 3, Rgb{2}});
    spoil(host::oddities(odd.get()));
    EXPECT_FALSE(OwnCopy(sound.get(), odd.get(), 0, 0, 4, 3, 0, 0, 4, 3));
    EXPECT_FALSE(OwnCopy(odd.get(), sound.get(), 0, 0, 4, 3, 0, 0, 4, 3));
    EXPECT_EQ(colorsOf(sound), Pixels(4, 3, Rgb{2}));
  }
}

}  // namespace
