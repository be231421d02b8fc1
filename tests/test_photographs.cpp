// zvr on pictures as people have them: files that other programs made, as photographs/make.sh shows, and
// results as other programs want them.

#include <cmath>

#include "tests/zvr_program.h"

namespace {

using namespace zvr_test;

const fs::path kFolder = fs::path(ZVR_SOURCE_DIR) / "tests/photographs";

class Photographs : public Zvr {
 protected:
  // Twice inverted is as read; the file's pixels, and what was said.
  Finished pass(const std::string& file, const std::string& options = "-o out.png") {
    return runLine("apply " + (kFolder / file).string() + " InvertZVR + InvertZVR " + options);
  }
};

// The largest difference of a channel where the pictures measure the same.
int difference(const Pixels& a, const Pixels& b, bool withAlpha) {
  if (a.width != b.width || a.height != b.height) return 256;
  int most = 0;
  for (size_t i = 0; i < a.bytes.size(); ++i)
    if (withAlpha || i % 4 != 3) most = std::max(most, std::abs(a.bytes[i] - b.bytes[i]));
  return most;
}

struct Read {
  const char *file, *like;  // the picture that it shows, of the same folder
  int tolerance;
  const char* says;  // on standard error; empty: nothing
};
class Readable : public Photographs, public testing::WithParamInterface<Read> {};

TEST_P(Readable, showsTheSamePixels) {
  const Read& read = GetParam();
  const Finished done = pass(read.file);
  ASSERT_EQ(done.status, 0) << done.errors;
  const Pixels got = readPng(folder_ / "out.png"), expected = readPng(kFolder / read.like);
  EXPECT_LE(difference(got, expected, true), read.tolerance);
  EXPECT_TRUE(contains(done.errors, read.says)) << done.errors;
}

INSTANTIATE_TEST_SUITE_P(
    Files, Readable,
    testing::Values(Read{"rgb.png", "rgb.png", 0, ""}, Read{"rgba.png", "rgba.png", 0, ""},
                    Read{"gray.png", "gray.png", 0, ""}, Read{"palette.png", "rgb.png", 0, ""},
                    Read{"deep.png", "rgb.png", 0, "16 bits, read as 8 bits a channel"},
                    Read{"adobe.jpg", "rgb.png", 3, ""},
                    Read{"cmyk.jpg", "rgb.png", 6, "CMYK colours become RGB"},
                    Read{"turned2.jpg", "rgb.png", 3, ""}, Read{"turned3.jpg", "rgb.png", 3, ""},
                    Read{"turned4.jpg", "rgb.png", 3, ""}, Read{"turned5.jpg", "rgb.png", 3, ""},
                    Read{"turned6.jpg", "rgb.png", 3, ""}, Read{"turned7.jpg", "rgb.png", 3, ""},
                    Read{"turned8.jpg", "rgb.png", 3, ""}, Read{"turned.png", "rgb.png", 0, ""},
                    Read{"turned.tif", "rgb.png", 0, ""}, Read{"rgba.tif", "rgba.png", 0, ""},
                    Read{"rgb.bmp", "rgb.png", 0, ""}, Read{"rgb.gif", "rgb.png", 0, ""},
                    Read{"rgb.ppm", "rgb.png", 0, ""}, Read{"rgb.tga", "rgb.png", 0, ""},
                    Read{"icon.ico", "rgba.png", 0, ""}, Read{"rgba.webp", "rgba.png", 0, ""},
                    Read{"rgb.heic", "rgb.png", 10, ""}, Read{"rgb.avif", "rgb.png", 10, ""}),
    [](const auto& tested) {
      std::string name = tested.param.file;
      std::replace(name.begin(), name.end(), '.', '_');
      return name;
    });

TEST_F(Photographs, areRefusedByTheirHeaders) {
  const auto header = [](uint32_t width, uint32_t height) {
    Bytes png = readBytes(kFolder / "rgb.png");
    for (int i = 0; i < 4; ++i) {
      png[16 + static_cast<size_t>(i)] = static_cast<uint8_t>(width >> (24 - 8 * i));
      png[20 + static_cast<size_t>(i)] = static_cast<uint8_t>(height >> (24 - 8 * i));
    }
    // The checksum of the header chunk.
    uint32_t sum = ~0U;
    for (size_t i = 12; i < 29; ++i) {
      sum ^= png[i];
      for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (0xEDB88320 & (0 - (sum & 1)));
    }
    for (int i = 0; i < 4; ++i) png[29 + static_cast<size_t>(i)] = static_cast<uint8_t>(~sum >> (24 - 8 * i));
    return png;
  };
  const std::pair<Bytes, const char*> refused[] = {
      {header(40000, 10), "measures 40000 x 10, more than the 32767 pixels a side"},
      {header(30000, 30000), "measures 30000 x 30000, more than the 200 million pixels"},
      {{'8', 'B', 'P', 'S', 0, 1}, "a layered PSD picture, which zvr doesn't read; GIMP can"},
      {{'<', 's', 'v', 'g', '/', '>'}, "an SVG drawing"},
      {{'p', 'u', 's', 'h', ' ', 'g'}, "no picture that zvr reads"},
  };
  for (const auto& [bytes, says] : refused) {
    writeBytes(folder_ / "input", bytes);
    const Finished done = runLine("apply input InvertZVR");
    EXPECT_EQ(done.status, 1);
    EXPECT_TRUE(contains(done.errors, says)) << done.errors;
  }
}

TEST_F(Photographs, keepTheirMetadata) {
  const struct {
    const char *file, *options, *output;
    std::vector<std::string> has, lacks;
  } cases[] = {
      {"adobe.jpg", "", "out.jpg", {"ICC_PROFILE", std::string("JFIF\0\1\1\1\1\x2C\1\x2C", 12)}, {}},
      {"adobe.jpg", "", "out.png", {"iCCP", "pHYs"}, {}},
      {"adobe.jpg", "", "out.tif", {"acsp"}, {}},
      {"adobe.jpg", "--strip", "out.jpg", {}, {"ICC_PROFILE"}},
      {"turned6.jpg", "", "out.jpg", {"Exif", "RightTop"}, {}},
      {"turned6.jpg", "", "out.png", {"eXIf", "RightTop"}, {}},
      {"turned6.jpg", "--strip", "out.png", {}, {"eXIf"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.file) + " " + c.options + " " + c.output);
    ASSERT_EQ(pass(c.file, std::string(c.options) + " -o " + c.output).status, 0);
    const std::string written = textOf(folder_ / c.output);
    for (const std::string& part : c.has) EXPECT_NE(written.find(part), std::string::npos) << part;
    for (const std::string& part : c.lacks) EXPECT_EQ(written.find(part), std::string::npos) << part;
  }
  // Turned upright once, a picture stays so; left as it lies, it keeps its tag.
  ASSERT_EQ(pass("turned6.jpg", "-o once.jpg --quality 100").status, 0);
  ASSERT_EQ(pass("turned6.jpg", "-o left.jpg --quality 100 --no-autorotate").status, 0);
  for (const char* file : {"once.jpg", "left.jpg"}) {
    ASSERT_EQ(runLine(std::string("apply ") + file + " InvertZVR + InvertZVR -o twice.png").status, 0);
    EXPECT_LE(difference(readPng(folder_ / "twice.png"), readPng(kFolder / "rgb.png"), true), 4) << file;
  }
}

// The library's results are opaque: what is transparent comes back beside them, alike on all hosts.
TEST_F(Photographs, keepTheirTransparency) {
  const Pixels input = readPng(kFolder / "rgba.png");
  Pixels inverted = input;
  for (size_t i = 0; i < inverted.bytes.size(); ++i)
    if (i % 4 != 3) inverted.bytes[i] = static_cast<uint8_t>(255 - inverted.bytes[i]);
  const std::string line = "apply " + (kFolder / "rgba.png").string() + " InvertZVR -o out.png ";
  for (const char* host : {"cairo", "console"}) {
    ASSERT_EQ(runLine(line + "--host " + host).status, 0);
    EXPECT_EQ(readPng(folder_ / "out.png"), inverted) << host;
  }
  ASSERT_EQ(runLine(line + "--alpha drop").status, 0);
  const Pixels dropped = readPng(folder_ / "out.png");
  EXPECT_EQ(difference(dropped, inverted, false), 0);
  EXPECT_EQ(dropped.bytes[3], 255);
  // As a program of the host has it: opaque, and inverted after its colours were multiplied.
  ASSERT_EQ(runLine(line + "--alpha premultiplied").status, 0);
  const size_t last = input.bytes.size() - 4;
  EXPECT_EQ(readPng(folder_ / "out.png").bytes[last + 3], 255);
  EXPECT_EQ(readPng(folder_ / "out.png").bytes[last],
            255 - (input.bytes[last] * input.bytes[last + 3] + 127) / 255);
  const Finished white = runLine("apply " + (kFolder / "rgba.png").string() + " InvertZVR -o out.jpg");
  EXPECT_TRUE(contains(white.errors, "out.jpg: jpeg has no transparency: it becomes white")) << white.errors;
  // Methods about transparency get it from the library's own side, and that is said.
  const Finished mask =
      runLine("apply " + (kFolder / "rgba.png").string() + " EmbeddedMaskZVR false -o mask.png");
  EXPECT_TRUE(contains(mask.errors, "as a cairo host keeps it, premultiplied")) << mask.errors;
  EXPECT_EQ(readPng(folder_ / "mask.png").bytes[last], input.bytes[last + 3]);
}

TEST_F(Photographs, areWrittenAsAsked) {
  const struct {
    const char *options, *output;
    std::string has;
  } cases[] = {
      {"", "out.png", std::string("IHDR\0\0\0\x30\0\0\0\x20\x08\x02", 14)},
      {"--format tiff", "out", "II*"},
      {"", "out.bmp", "BM"},
      {"", "out.webp", "WEBPVP8 "},
      // The sampling factors of the first component.
      {"", "out.jpg", std::string("\xFF\xC0\0\x11\x08\0\x20\0\x30\3\1\x11", 12)},
      {"--quality 80", "out.jpg", std::string("\xFF\xC0\0\x11\x08\0\x20\0\x30\3\1\x22", 12)},
      {"--subsampling 4:2:2", "out.jpg", std::string("\xFF\xC0\0\x11\x08\0\x20\0\x30\3\1\x21", 12)},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(pass("rgb.png", std::string(c.options) + " -o " + c.output).status, 0) << c.output;
    EXPECT_TRUE(contains(textOf(folder_ / c.output), c.has)) << c.options << c.output;
  }
  ASSERT_EQ(pass("gray.png").status, 0);
  EXPECT_TRUE(contains(textOf(folder_ / "out.png"), std::string("IHDR\0\0\0\x30\0\0\0\x20\x08\0", 14)));
  const Bytes before = readBytes(folder_ / "photo.png");
  EXPECT_EQ(runLine("apply photo.png InvertZVR -o photo.png").status, 2);
  EXPECT_EQ(readBytes(folder_ / "photo.png"), before);
  const Finished replaced = runLine("apply photo.png InvertZVR --in-place");
  EXPECT_EQ(replaced.output, "wrote photo.png\n") << replaced.errors;
  EXPECT_NE(readBytes(folder_ / "photo.png"), before);
}

}  // namespace
