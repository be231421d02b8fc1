// Counting colours, histograms, lookup tables: the blocks that they come in and go to.

#include <algorithm>
#include <cstring>

#include "tests/support.h"

namespace {

using host::MemoryBlockRef;
using host::PictureRef;
using Counters = std::vector<uint32_t>;

class Count : public HostTest {
 protected:
  int64_t countColor(const PictureRef& picture, RBColor color) {
    return std::get<int64_t>(call("CountColorZVR", picture.get(), {host::Color{color}}).result);
  }
  // Counts into blocks, which are replaced by those that the references hold afterwards.
  int64_t countColors(const PictureRef& picture, std::vector<MemoryBlockRef>& blocks) {
    const auto outcome = call("CountColorsZVR", picture.get(), {blocks[0], blocks[1], blocks[2], int64_t{7}});
    EXPECT_FALSE(outcome.exception);
    for (size_t i = 0; i < 3; ++i) blocks[i] = std::get<MemoryBlockRef>(outcome.arguments[i]);
    return std::get<int64_t>(outcome.arguments[3]);
  }
};

Counters countersIn(const MemoryBlockRef& block) {
  Counters counters(host::memoryBlockSize(block.get()) / 4);
  std::memcpy(counters.data(), host::memoryBlockBytes(block.get()), counters.size() * 4);
  return counters;
}

MemoryBlockRef blockOf(const std::vector<uint8_t>& bytes) {
  return host::newMemoryBlock(bytes.data(), bytes.size());
}

std::vector<uint8_t> bytesIn(const MemoryBlockRef& block) {
  const uint8_t* bytes = host::memoryBlockBytes(block.get());
  return {bytes, bytes + host::memoryBlockSize(block.get())};
}

TEST_F(Count, CountsExactMatchesWhateverTheAlpha) {
  const auto picture =
      makePicture({4, 2, {0, 0, 1, 0x010000, 0x000100, 0, 0, 0xFFFFFF}}, road() != host::Road::gdk);
  EXPECT_EQ(countColor(picture, 0), 4);
  EXPECT_EQ(countColor(picture, 0xAB000000), 4) << "the colour's top byte";
  EXPECT_EQ(countColor(picture, 0x000100), 1);
  EXPECT_EQ(countColor(picture, 0x010101), 0);
  EXPECT_EQ(countColor({}, 0), 0);
}

// The second block gets green's histogram and the third blue's, on purpose.
TEST_F(Count, HistogramsAddToWhatTheBlocksHold) {
  const Pixels pixels = Random(3).pixels(67, 31);
  Counters expected[3] = {Counters(256), Counters(256), Counters(256)}, sum(256);
  for (Rgb c : pixels.colors) {
    const int channels[] = {red(c), green(c), blue(c)};
    for (size_t i = 0; i < 3; ++i)
      ++expected[i][static_cast<size_t>(channels[i])], ++sum[static_cast<size_t>(channels[i])];
  }
  const auto picture = makePicture(pixels);
  std::vector<MemoryBlockRef> blocks(3);
  for (uint32_t times = 1; times <= 2; ++times) {
    EXPECT_EQ(countColors(picture, blocks), 67 * 31);
    for (size_t i = 0; i < 3; ++i) {
      Counters scaled = expected[i];
      for (uint32_t& n : scaled) n *= times;
      EXPECT_EQ(countersIn(blocks[i]), scaled) << times << " times, block " << i;
      EXPECT_EQ(host::references(blocks[i].get()), 1) << "only ours";
    }
  }
  std::vector<MemoryBlockRef> one(3, blockOf(std::vector<uint8_t>(1024)));
  EXPECT_EQ(countColors(picture, one), 67 * 31);
  EXPECT_EQ(countersIn(one[0]), sum) << "one block for all three";
}

// Guard pages behind the blocks tell of a single byte too many.
TEST_F(Count, BlocksOfAnyLengthTakeWhatFits) {
  const auto picture = makePicture({3, 2, {0xFF0201, 0xFF0201, 0xFFFFFF, 0, 0, 0}});
  const uint8_t full[1024] = {3, 0, 0, 0, 2, 0, 0, 0, 0};
  for (size_t size : {size_t{0}, size_t{1}, size_t{3}, size_t{5}, size_t{1021}, size_t{1024}, size_t{1100}}) {
    std::vector<uint8_t> expected(size, 0);
    std::copy_n(full, std::min<size_t>(size, 5), expected.begin());
    if (size > 1020) expected[1020] = 1;
    // Bytes beyond the counters stay as they are.
    std::vector<uint8_t> before(size, 0);
    for (size_t i = 1024; i < size; ++i) before[i] = expected[i] = 0x5A;
    std::vector<MemoryBlockRef> blocks = {{}, {}, blockOf(before)};
    EXPECT_EQ(countColors(picture, blocks), 6);
    EXPECT_EQ(bytesIn(blocks[2]), expected) << size;
  }
}

// A size of 0 is 0; only a host that can't tell sizes is trusted.
TEST_F(Count, BlocksOfUnknownSizeAreTrustedAndThoseWithoutBytesLeftAlone) {
  host::PictureRef picture;
  for (const bool tellsSizes : {true, false}) {
    picture = {};
    begin(settingsForRoad());
    picture = makePicture({2, 2, Rgb{0x000005}});
    if (!tellsSizes) host::removeEntryPoint("memoryBlockGetSize");
    std::vector<MemoryBlockRef> blocks = {{}, {}, blockOf(std::vector<uint8_t>(1024))};
    host::setReportedSize(blocks[2].get(), 0);
    EXPECT_EQ(countColors(picture, blocks), 4);
    EXPECT_EQ(bytesIn(blocks[2])[20], tellsSizes ? 0 : 4);
  }
  std::vector<MemoryBlockRef> blocks = std::vector<MemoryBlockRef>(3);
  host::failAt("memoryBlockGetPtr", 2);
  EXPECT_EQ(countColors(picture, blocks), 4);
  EXPECT_EQ(countersIn(blocks[0])[0], 4u);
  EXPECT_EQ(countersIn(blocks[1])[0], 0u);
  EXPECT_EQ(countersIn(blocks[2])[5], 4u);
}

TEST_F(Count, FailureOfHistogramsIsACountOfMinusOne) {
  std::vector<MemoryBlockRef> blocks(3);
  EXPECT_EQ(countColors({}, blocks), -1);
  for (const auto& block : blocks) EXPECT_EQ(countersIn(block), Counters(256)) << "made all the same";
  blocks = std::vector<MemoryBlockRef>(3);
  host::failAt("newMemoryBlock", 2);
  EXPECT_EQ(countColors(makePicture({1, 1, Rgb{0}}), blocks), -1);
  EXPECT_TRUE(blocks[0]);
  EXPECT_FALSE(blocks[1]);
  EXPECT_TRUE(blocks[2]);
}

// ---- Lookup tables ----

class Transform : public Count {};

// A table that adds to each value, wrapping.
MemoryBlockRef adding(int amount, size_t size = 256) {
  std::vector<uint8_t> table(size);
  for (size_t i = 0; i < size; ++i) table[i] = static_cast<uint8_t>(static_cast<int>(i) + amount);
  return blockOf(table);
}

TEST_F(Transform, WhatATableLacksIsZero) {
  const auto picture = makePicture({1, 2, Rgb{0x0A0B0C}});
  const auto empty = adding(1);
  host::setReportedSize(empty.get(), 0);
  EXPECT_EQ(colorsOf(callPicture("TransformColorsZVR", picture, {adding(1, 11), empty, adding(1, 11)})),
            asWritten({1, 2, Rgb{0x0B0000}}));
  host::failAt("memoryBlockGetPtr", 3);
  EXPECT_FALSE(callPicture("TransformColorsZVR", picture, {adding(1), adding(1), adding(1)}))
      << "a table without bytes";
}

TEST_F(Transform, DestinationIsUsedWhenItIsLargeEnough) {
  const auto one = adding(1);
  const Pixels pixels(5, 4, Rgb{0x101010}), changed(5, 4, Rgb{0x111111});
  const auto picture = makePicture(pixels);
  for (auto [width, height] : {std::pair(4, 4), std::pair(5, 3)}) {
    const auto small = makePicture({width, height, Rgb{0x777777}});
    const auto result = callPicture("TransformColorsZVR", picture, {one, one, one, small});
    EXPECT_NE(result.get(), small.get());
    EXPECT_EQ(colorsOf(result), asWritten(changed));
    EXPECT_EQ(colorsOf(small), Pixels(width, height, Rgb{0x777777}));
  }
  if (road() == host::Road::gdk) return;  // its pictures can't be written in place
  for (bool alpha : {false, true}) {
    const auto large = makePicture({7, 6, Rgb{0x777777}}, alpha);
    const auto result = callPicture("TransformColorsZVR", picture, {one, one, one, large});
    EXPECT_EQ(result.get(), large.get());
    Pixels expected(7, 6, Rgb{0x777777});
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 5; ++x) expected.at(x, y) = 0x111111;
    }
    EXPECT_EQ(colorsOf(large), expected);
    EXPECT_EQ(wordsOf(large)[0] >> 24, opaqueTopByte());
  }
  EXPECT_EQ(callPicture("TransformColorsZVR", picture, {one, one, one, picture}).get(), picture.get());
  EXPECT_EQ(colorsOf(picture), changed) << "a picture into itself";
}

TEST_F(Transform, NilsAreNamedInTheOrderPictureRedGreenBlue) {
  const auto picture = makePicture({1, 1, Rgb{0}});
  const MemoryBlockRef table = adding(0), nil;
  const auto expect = [&](const PictureRef& source, const MemoryBlockRef& red, const MemoryBlockRef& blue,
                          const MemoryBlockRef& green, const char* message) {
    expectNilException(call("TransformColorsZVR", source.get(), {red, blue, green}), message);
  };
  expect({}, nil, nil, nil, "picture is nil");
  expect(picture, nil, nil, nil, "red memoryblock is nil");
  expect(picture, table, nil, nil, "green memoryblock is nil");
  expect(picture, table, table, nil, "green memoryblock is nil");
  expect(picture, table, nil, table, "blue memoryblock is nil");
}

}  // namespace
