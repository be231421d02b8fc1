// Pictures as strings and back; strings that lie.

#include <optional>

#include "tests/support.h"

namespace {

std::string bigEndian(uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
          static_cast<char>(value)};
}

uint32_t wordAt(const std::string& bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = at; i < at + 4; ++i) value = value << 8 | static_cast<uint8_t>(bytes[i]);
  return value;
}

std::string pixelBytes(const Pixels& pixels) {
  std::string bytes;
  for (Rgb c : pixels.colors) bytes += bigEndian(c).substr(1);
  return bytes;
}

std::string encoded(const Pixels& pixels) {
  const std::string bytes = pixelBytes(pixels);
  return "PPIC" + bigEndian(static_cast<uint32_t>(bytes.size() + 40)) +
         bigEndian(static_cast<uint32_t>(pixels.width)) + bigEndian(static_cast<uint32_t>(pixels.height)) +
         bigEndian(32) + bigEndian(40) + std::string(16, '\0') + bytes;
}

// The picture that a string holds; none for one that is shorter or longer than it says.
std::optional<Pixels> decoded(const std::string& bytes) {
  if (bytes.size() < 24 || bytes.compare(0, 4, "PPIC") != 0 || wordAt(bytes, 4) != bytes.size()) return {};
  const uint64_t width = wordAt(bytes, 8), height = wordAt(bytes, 12), offset = wordAt(bytes, 20);
  if (width < 1 || width > 32767 || height < 1 || height > 32767) return {};
  if (offset + width * height * 3 > bytes.size()) return {};
  Pixels pixels(static_cast<int>(width), static_cast<int>(height), Rgb{0});
  for (size_t i = 0; i < pixels.colors.size(); ++i) {
    const std::string pixel = '\0' + bytes.substr(static_cast<size_t>(offset) + 3 * i, 3);
    pixels.colors[i] = wordAt(pixel, 0);
  }
  return pixels;
}

class BinaryString : public HostTest {
 protected:
  std::optional<std::string> toString(const host::PictureRef& picture) {
    const host::Outcome outcome = call("PicturetoBinaryStringZVR", nullptr, {picture});
    const auto* string = std::get_if<host::StringRef>(&outcome.result);
    if (!string || !*string) return {};
    EXPECT_EQ(host::stringEncoding(string->get()), uint32_t{kEncodingNone});
    return host::stringBytes(string->get());
  }
  host::PictureRef toPicture(const std::string& bytes) {
    return callPicture("BinaryStringtoPictureZVR", {}, {host::newString(bytes, kEncodingNone, false)});
  }
  // Holds the answer for a string to the model's.
  void check(const std::string& bytes, const char* what) {
    const auto expected = decoded(bytes);
    const auto picture = toPicture(bytes);
    ASSERT_EQ(static_cast<bool>(picture), expected.has_value()) << what;
    if (!expected) return;
    ASSERT_EQ(colorsOf(picture), asWritten(*expected)) << what;
  }
};

TEST_F(BinaryString, TheBytesOfAPicture) {
  const std::string bytes = std::string("PPIC\0\0\0\x2B\0\0\0\1\0\0\0\1\0\0\0\x20\0\0\0\x28", 24) +
                            std::string(16, '\0') + "\x0A\x14\x1E";
  EXPECT_EQ(toString(makePicture({1, 1, Rgb{0x0A141E}})), bytes);
}

TEST_F(BinaryString, ThereAndBack) {
  Random random(314);
  for (int round = 0; round < 60; ++round) {
    const Pixels pixels = random.pixels(random.side(), random.between(1, 4));
    const auto string = toString(makePicture(pixels, road() != host::Road::gdk && random.chance(50)));
    ASSERT_EQ(string, encoded(pixels));
    const auto picture = toPicture(*string);
    ASSERT_EQ(colorsOf(picture), asWritten(pixels));
    EXPECT_FALSE(host::pictureHasAlpha(picture.get()));
    if (road() == host::Road::gdk) continue;
    for (uint32_t word : wordsOf(picture)) ASSERT_EQ(word >> 24, opaqueTopByte());
  }
}

TEST_F(BinaryString, OldHosts) {
  beginAt(2012.5);
  const Pixels pixels = Random(6).pixels(5, 4);
  EXPECT_EQ(colorsOf(toPicture(encoded(pixels))), asWritten(pixels));
}

// A word of a good string replaced; `size` is its length then, also in its header.
struct HeaderCase {
  const char* what;
  size_t at;
  uint32_t value;
  size_t size;
};

constexpr size_t kWhole = 40 + 5 * 4 * 3;
const HeaderCase kHeaders[] = {
    {"an offset of 0", 20, 0, kWhole},
    {"one byte to spare", 20, 41, kWhole + 1},
    {"far out", 20, 0xFFFFFFFF, kWhole},
    {"no columns", 8, 0, kWhole},
    {"width * height * 3 is small in 32 bits", 8, 0x55555556, kWhole},
};

TEST_F(BinaryString, HeadersThatLie) {
  const std::string good = encoded(Random(7).pixels(5, 4));
  for (const HeaderCase& c : kHeaders) {
    std::string bytes = good;
    bytes.replace(c.at, 4, bigEndian(c.value)).resize(c.size, '\x55');
    check(bytes.replace(4, 4, bigEndian(static_cast<uint32_t>(c.size))), c.what);
  }
  check(encoded({32768, 1, Rgb{0x616161}}), "too wide");
  check("PPIC" + bigEndian(27) + bigEndian(1) + bigEndian(1) + bigEndian(32) + bigEndian(24) + "abc",
        "a header cut short that still tells all");
  EXPECT_FALSE(toString({}));
  EXPECT_FALSE(callPicture("BinaryStringtoPictureZVR", {}, {host::StringRef()}));
}

TEST_F(BinaryString, EveryFlippedBitAndEveryLength) {
  const std::string good = encoded(Random(8).pixels(3, 2));
  for (size_t bit = 0; bit < good.size() * 8; ++bit) {
    std::string bytes = good;
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
    check(bytes, "a flipped bit");
  }
  for (size_t size = 0; size < good.size(); ++size) {
    std::string bytes = good.substr(0, size);
    check(bytes, "cut");
    if (size >= 8) check(bytes.replace(4, 4, bigEndian(static_cast<uint32_t>(size))), "cut, and says so");
  }
}

TEST_F(BinaryString, APictureWithoutPixelsIsAHeader) {
  if (road() != host::Road::console) GTEST_SKIP() << "only bitmaps can have no pixels";
  const auto empty = makePicture({3, 3, Rgb{0}});
  host::oddities(empty.get()).describedWidth = 0;
  EXPECT_EQ(toString(empty), encoded(Pixels(0, 3, Rgb{0})));
}

}  // namespace
