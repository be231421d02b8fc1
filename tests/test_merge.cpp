// Merging, combining and replacing channels: sizes that differ, nils.

#include "tests/support.h"

namespace {

using host::PictureRef;

class Merge : public HostTest {};

PictureRef plain(Rgb color, int width = 2, int height = 3) { return makePicture({width, height, color}); }

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
  for (const auto& [first, second, third] : {std::tuple(nil, p, p), {p, nil, p}, {p, p, nil}}) {
    EXPECT_FALSE(callPicture("CombinePicturesZVR", {}, {first, second, third}));
    if (first && second) continue;
    host::clearFaults();
    EXPECT_FALSE(callPicture("MergePictureZVR", {}, {first, second}));
    EXPECT_EQ(host::uses("REALLockPictureDescription"), 0) << "both are looked at before either is opened";
  }
  for (const char* method : {"ReplaceRedChannelZVR", "ReplaceGreenChannelZVR", "ReplaceBlueChannelZVR"}) {
    EXPECT_FALSE(callPicture(method, nil, {p})) << "without an exception";
    for (const auto& receiver : {p, nil})
      expectNilException(call(method, receiver.get(), {nil}), "The channel picture is nil.");
  }
}

}  // namespace
