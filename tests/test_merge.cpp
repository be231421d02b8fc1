// Merging, combining and replacing channels: which picture gives which channel, sizes, nils.

#include "tests/support.h"

namespace {

using host::PictureRef;

class Merge : public HostTest {};

PictureRef plain(Rgb color, int width = 2, int height = 3) { return makePicture({width, height, color}); }

Pixels written(Rgb color, int width = 2, int height = 3) { return asWritten({width, height, color}); }

TEST_F(Merge, KeepsTheLargerValueOfEachChannel) {
  // 0x80 and above: a comparison of signed bytes would take them for small.
  const auto a = makePicture({4, 2, {0xC80A32, 0x80FF00, 0x7F0080, 0, 0xC80A32, 0x80FF00, 0x7F0080, 0}});
  const auto b = makePicture({4, 2, {0x645A3C, 0x7F00FF, 0x80017F, 0, 0x645A3C, 0x7F00FF, 0x80017F, 0}});
  const Pixels larger(4, 2, {0xC85A3C, 0x80FFFF, 0x800180, 0, 0xC85A3C, 0x80FFFF, 0x800180, 0});
  EXPECT_EQ(colorsOf(callPicture("MergePictureZVR", {}, {a, b})), asWritten(larger));
  EXPECT_EQ(colorsOf(callPicture("MergePictureZVR", {}, {b, a})), asWritten(larger));
}

TEST_F(Merge, CombineTakesRedThenBlueThenGreen) {
  const auto red = plain(0xFF0000), green = plain(0x00FF00), blue = plain(0x0000FF);
  EXPECT_EQ(colorsOf(callPicture("CombinePicturesZVR", {}, {red, blue, green})), written(0xFFFFFF));
  EXPECT_EQ(colorsOf(callPicture("CombinePicturesZVR", {}, {red, green, blue})), written(0xFF0000));
  EXPECT_EQ(
      colorsOf(callPicture("CombinePicturesZVR", {}, {plain(0x112233), plain(0x445566), plain(0x778899)})),
      written(0x118866));
}

TEST_F(Merge, ReplacesOneChannelFromTheTopLeftOfALargerPicture) {
  const Pixels source = Random(1).pixels(5, 4), large = Random(2).pixels(9, 6);
  const struct {
    const char* name;
    Rgb channel;
  } methods[] = {{"ReplaceRedChannelZVR", 0xFF0000},
                 {"ReplaceGreenChannelZVR", 0x00FF00},
                 {"ReplaceBlueChannelZVR", 0x0000FF}};
  const auto picture = makePicture(source), channelPicture = makePicture(large);
  for (const auto& method : methods) {
    Pixels expected = source;
    for (int y = 0; y < source.height; ++y) {
      for (int x = 0; x < source.width; ++x)
        expected.at(x, y) = (source.at(x, y) & ~method.channel) | (large.at(x, y) & method.channel);
    }
    EXPECT_EQ(colorsOf(callPicture(method.name, picture, {channelPicture})), asWritten(expected));
    EXPECT_EQ(colorsOf(callPicture(method.name, picture, {picture})), asWritten(source)) << "its own channel";
  }
}

TEST_F(Merge, ResultsHaveNoAlphaChannel) {
  if (road() == host::Road::gdk) GTEST_SKIP() << "no alpha channels there";
  const auto a = makePicture({2, 2, Rgb{0x123456}}, true);
  for (const auto& result :
       {callPicture("MergePictureZVR", {}, {a, a}), callPicture("CombinePicturesZVR", {}, {a, a, a}),
        callPicture("ReplaceBlueChannelZVR", a, {a})}) {
    EXPECT_FALSE(host::pictureHasAlpha(result.get()));
    EXPECT_EQ(colorsOf(result), written(0x123456, 2, 2));
  }
}

TEST_F(Merge, SizesThatDoNotFitGiveNil) {
  const auto p = plain(0x102030, 10, 10);
  const PictureRef shorter = plain(0, 10, 9), narrower = plain(0, 9, 10), wider = plain(0, 11, 10),
                   higher = plain(0, 10, 11);
  for (const auto& other : {shorter, narrower, wider, higher}) {
    EXPECT_FALSE(callPicture("MergePictureZVR", {}, {p, other}));
    EXPECT_FALSE(callPicture("MergePictureZVR", {}, {other, p}));
    EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {other, p, p}));
    EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {p, other, p}));
    EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {p, p, other}));
  }
  for (const char* method : {"ReplaceRedChannelZVR", "ReplaceGreenChannelZVR", "ReplaceBlueChannelZVR"}) {
    EXPECT_FALSE(callPicture(method, p, {shorter}));
    EXPECT_FALSE(callPicture(method, p, {narrower}));
    EXPECT_TRUE(callPicture(method, p, {higher}));
    EXPECT_TRUE(callPicture(method, p, {wider}));
  }
}

TEST_F(Merge, NilPictures) {
  const auto p = plain(0x102030);
  const PictureRef nil;
  EXPECT_FALSE(callPicture("MergePictureZVR", {}, {nil, p}));
  EXPECT_FALSE(callPicture("MergePictureZVR", {}, {p, nil}));
  EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {nil, p, p}));
  EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {p, nil, p}));
  EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {p, p, nil}));
  for (const char* method : {"ReplaceRedChannelZVR", "ReplaceGreenChannelZVR", "ReplaceBlueChannelZVR"}) {
    EXPECT_FALSE(callPicture(method, nil, {p})) << "without an exception";
    for (const auto& receiver : {p, nil}) {
      const host::Outcome outcome = call(method, receiver.get(), {nil});
      EXPECT_FALSE(std::get<PictureRef>(outcome.result));
      ASSERT_TRUE(outcome.exception);
      EXPECT_EQ(outcome.exception->className, "NilObjectException");
      EXPECT_EQ(outcome.exception->message, "The channel picture is nil.");
    }
  }
}

}  // namespace
