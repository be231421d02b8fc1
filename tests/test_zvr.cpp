// zvr as its users meet it: its words, its files and its messages.

#include <cstdio>  // which jpeglib.h needs before it

#include <jpeglib.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "tests/zvr_program.h"

namespace {

using namespace zvr_test;

// A JPEG of one to four components; with scans a progressive one.
void writeJpeg(const fs::path& path, int components, const std::vector<jpeg_scan_info>& scans = {}) {
  constexpr J_COLOR_SPACE kSpaces[] = {JCS_UNKNOWN, JCS_GRAYSCALE, JCS_UNKNOWN, JCS_RGB, JCS_CMYK};
  jpeg_compress_struct encoder{};
  jpeg_error_mgr errors;
  encoder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&encoder);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&encoder, &memory, &size);
  encoder.image_width = encoder.image_height = 64;
  encoder.input_components = components;
  encoder.in_color_space = kSpaces[components];
  jpeg_set_defaults(&encoder);
  if (!scans.empty()) {
    encoder.scan_info = scans.data();
    encoder.num_scans = static_cast<int>(scans.size());
  }
  jpeg_start_compress(&encoder, TRUE);
  Bytes row(static_cast<size_t>(64 * components), 200);
  while (encoder.next_scanline < encoder.image_height) {
    for (size_t x = 0; x < row.size(); ++x) row[x] = static_cast<uint8_t>(x * encoder.next_scanline);
    JSAMPROW start = row.data();
    jpeg_write_scanlines(&encoder, &start, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  writeBytes(path, Bytes(memory, memory + size));
  std::free(memory);
}

// Every coefficient of a gray picture by itself, and its last bit in a scan of its own where asked: 64 or
// 127.
std::vector<jpeg_scan_info> manyScans(bool isRefined) {
  std::vector<jpeg_scan_info> scans = {{1, {0}, 0, 0, 0, 0}};
  for (int i = 1; i < 64; ++i) {
    scans.push_back({1, {0}, i, i, 0, isRefined ? 1 : 0});
    if (isRefined) scans.push_back({1, {0}, i, i, 1, 0});
  }
  return scans;
}

TEST_F(Zvr, invertsOnDesktopAndConsole) {
  for (const std::string host : {"cairo", "console"}) {
    const Finished done =
        run({"apply", "photo.png", "invertzvr", "-o", "out.png", "--host", host, "--ledger"});
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_EQ(readPng(folder_ / "out.png"), inverted(rgb_)) << host;
    EXPECT_TRUE(contains(done.errors, "held: 0 objects, 0 strings, 0 locks, 0 string data; 0 errors"))
        << done.errors;
  }
}

TEST_F(Zvr, chainsAndNegativeNumbers) {
  ASSERT_EQ(run({"apply", "photo.png", "InvertZVR", "+", "InvertZVR", "-o", "back.png"}).status, 0);
  EXPECT_EQ(readPng(folder_ / "back.png"), rgb_);
  // Options may come before the inputs and after them; -5 is none.
  const Finished done =
      run({"apply", "-o", "part.png", "photo.png", "InvertZVR", "-5", "-5", "6", "6", "--color", "never"});
  ASSERT_EQ(done.status, 0) << done.errors;
  // One pixel lies in the rectangle; the others are those of a fresh picture, white.
  Pixels expected = rgb_;
  std::fill(expected.bytes.begin(), expected.bytes.end(), uint8_t{255});
  const Pixels all = inverted(rgb_);
  std::copy_n(all.bytes.begin(), 3, expected.bytes.begin());
  EXPECT_EQ(readPng(folder_ / "part.png"), expected);
}

TEST_F(Zvr, keepsTransparencyOnEveryKindOfHost) {
  writePng(folder_ / "glass.png", pattern(16, 4, true));
  struct {
    const char *host, *version;
  } const hosts[] = {{"cairo", "2013.03"}, {"cairo", "2010.1"}, {"console", "2013.03"}, {"console", "none"}};
  for (const auto& [host, version] : hosts) {
    // A question changes nothing: the picture is written as it was read.
    const Finished done = run(
        {"apply", "glass.png", "HasMaskZVR", "-o", "same.png", "--host", host, "--host-version", version});
    ASSERT_EQ(done.status, 0) << done.errors;
    const Pixels before = pattern(16, 4, true), after = readPng(folder_ / "same.png");
    ASSERT_TRUE(after.hasAlpha) << host << version;
    for (size_t i = 0; i < before.bytes.size(); i += 4) {
      ASSERT_EQ(after.bytes[i + 3], before.bytes[i + 3]) << host << version << i;
      if (before.bytes[i + 3] == 0) continue;  // colours behind full transparency may go
      ASSERT_TRUE(std::equal(&before.bytes[i], &before.bytes[i] + 3, &after.bytes[i]))
          << host << version << i;
    }
    EXPECT_EQ(contains(done.output, "HasMaskZVR = true"), version != std::string("2013.03"))
        << host << version;
  }
}

TEST_F(Zvr, readsEveryKindOfFileByContent) {
  writePng(folder_ / "gray.png", rgb_, PNG_FORMAT_GRAY);
  writeJpeg(folder_ / "color.dat", 3);
  writeJpeg(folder_ / "gray.jpeg", 1, manyScans(false));
  fs::copy(folder_ / "photo.png", folder_ / "really-png.jpg");
  const Finished done = run({"apply", "gray.png", "color.dat", "gray.jpeg", "really-png.jpg", "InvertZVR",
                             "-o", "out/{n}-{name}.{ext}", "--quality", "100"});
  ASSERT_EQ(done.status, 0) << done.errors;
  EXPECT_EQ(filesIn(folder_ / "out"),
            (std::vector<std::string>{"1-gray.png", "2-color.png", "3-gray.jpeg", "4-really-png.jpg"}));
  EXPECT_EQ(readPng(folder_ / "out/2-color.png").width, 64U);
  const Pixels gray = readPng(folder_ / "out/1-gray.png");
  EXPECT_EQ(gray.bytes[0], 255 - rgb_.bytes[0]);
  EXPECT_EQ(gray.bytes[1], 255 - rgb_.bytes[0]);
}

TEST_F(Zvr, writesOnlyWhatWasMade) {
  EXPECT_EQ(run({"apply", "photo.png", "HasMaskZVR"}).output, "HasMaskZVR = false\n");
  EXPECT_EQ(filesIn(folder_), std::vector<std::string>{"photo.png"});
  EXPECT_EQ(run({"apply", "photo.png", "invertGRAYzvr", "+", "InvertZVR"}).status, 0);
  EXPECT_EQ(filesIn(folder_), (std::vector<std::string>{"photo-InvertGrayZVR-InvertZVR.png", "photo.png"}));
}

TEST_F(Zvr, goesOnAfterAnInputThatFails) {
  const Bytes good = readBytes(folder_ / "photo.png");
  writeJpeg(folder_ / "cmyk.jpg", 4);
  writeJpeg(folder_ / "scans.jpg", 1, manyScans(true));
  writeJpeg(folder_ / "color.jpg", 3);
  const Bytes jpeg = readBytes(folder_ / "color.jpg");
  Bytes flipped = good;
  flipped[good.size() / 2] ^= 0xFF;
  writeBytes(folder_ / "half.png", Bytes(good.begin(), good.begin() + static_cast<long>(good.size() / 2)));
  writeBytes(folder_ / "half.jpg",
             Bytes(jpeg.begin(), jpeg.begin() + static_cast<long>(jpeg.size() * 2 / 3)));
  writeBytes(folder_ / "flipped.png", flipped);
  writeBytes(folder_ / "empty.png", {});
  writeBytes(folder_ / "text.png", {'h', 'i'});
  fs::create_directory(folder_ / "folder.png");
  const Finished done = run({"apply", "half.png", "half.jpg", "flipped.png", "empty.png", "text.png",
                             "cmyk.jpg", "folder.png", "gone\x1b[1m\n\xc2\x9b\xff\u00e9.png", "scans.jpg",
                             "photo.png", "InvertZVR", "-o", "out/{n}.png", "--ledger"});
  EXPECT_EQ(done.status, 1);
  EXPECT_EQ(filesIn(folder_ / "out"), (std::vector<std::string>{"10.png", "6.png"}));
  for (const char* problem :
       {"half.png: damaged PNG", "half.jpg: damaged JPEG", "flipped.png: damaged PNG",
        "empty.png: the file is empty", "text.png: no picture that zvr reads", "note: cmyk.jpg: CMYK",
        "folder.png: ", "gone\\x1B[1m\\x0A\\xC2\\x9B\\xFF\u00e9.png: No such file",
        "scans.jpg: damaged JPEG: Scan number 101 exceeds", "held: 0 objects"}) {
    EXPECT_TRUE(contains(done.errors, problem)) << problem << "\n" << done.errors;
  }
  // One line each, and nothing from the libraries themselves.
  EXPECT_EQ(std::count(done.errors.begin(), done.errors.end(), '\n'), 10) << done.errors;
}

TEST_F(Zvr, refusesPicturesThatAreTooLarge) {
  writePng(folder_ / "long.png", pattern(32768, 1, false), PNG_FORMAT_GRAY);
  const Finished done = run({"apply", "long.png", "InvertZVR"});
  EXPECT_EQ(done.status, 1);
  EXPECT_TRUE(contains(done.errors, "long.png: the picture measures 32768 x 1")) << done.errors;
  writePng(folder_ / "long.png", pattern(32767, 1, false), PNG_FORMAT_GRAY);
  EXPECT_EQ(run({"apply", "long.png", "InvertZVR"}).status, 0);
}

TEST_F(Zvr, leavesNothingHalfWritten) {
  fs::create_directory(folder_ / "taken.png");
  EXPECT_EQ(run({"apply", "photo.png", "InvertZVR", "-o", "taken.png/x.png/"}).status, 0);
  EXPECT_EQ(filesIn(folder_ / "taken.png/x.png"), std::vector<std::string>{"photo-InvertZVR.png"});
  // No room (nor for messages): the old file stays as it was, and no other is left.
  writeBytes(folder_ / "old.png", {1});
  const Finished done = run({"apply", "photo.png", "InvertZVR", "-o", "old.png"}, "ulimit -f 0 &&");
  EXPECT_EQ(done.status, 1);
  EXPECT_EQ(readBytes(folder_ / "old.png"), Bytes{1});
  EXPECT_EQ(filesIn(folder_), (std::vector<std::string>{"old.png", "photo.png", "taken.png"}));
}

TEST_F(Zvr, keepsModesAndLinks) {
  writeBytes(folder_ / "old.png", {1});
  fs::permissions(folder_ / "old.png", fs::perms{0600});
  fs::create_symlink("old.png", folder_ / "link.png");
  fs::create_symlink("folder/new.png", folder_ / "dangling.png");
  for (const char* name : {"link.png", "dangling.png"}) {
    ASSERT_EQ(run({"apply", "photo.png", "InvertZVR", "-o", name}).status, 0);
    EXPECT_TRUE(fs::is_symlink(folder_ / name)) << name;
    EXPECT_EQ(readPng(folder_ / name), inverted(rgb_)) << name;
  }
  EXPECT_EQ(fs::status(folder_ / "old.png").permissions(), fs::perms{0600});
  EXPECT_TRUE(fs::is_regular_file(folder_ / "folder/new.png"));
}

// Under whatever name, and before anything is written.
TEST_F(Zvr, writesOverNoInput) {
  fs::copy(folder_ / "photo.png", folder_ / "2.png");
  fs::create_hard_link(folder_ / "2.png", folder_ / "hard.png");
  fs::create_symlink("2.png", folder_ / "soft.png");
  fs::create_symlink(".", folder_ / "here");
  const std::vector<std::string> files = filesIn(folder_);
  const char* cases[] = {
      "photo.png 2.png InvertZVR -o '{n}.png'",
      "photo.png MergePictureZVR @ 2.png -o hard.png",
      "photo.png EmbeddedMaskZVR false = 2.png -o soft.png",
      "photo.png ReplaceRedChannelZVR --in RedChannel=soft.png -o here/2.png",
      "photo.png CountColorsZVR --in red=2.png --out blue=hard.png",
      "photo.png CountColorsZVR --out red=new --out blue=here/new",
  };
  for (const char* words : cases) {
    const Finished done = runLine(std::string("apply ") + words);
    EXPECT_EQ(done.status, 2) << words;
    EXPECT_TRUE(contains(done.errors, " would ") && contains(done.errors, " be written ")) << done.errors;
  }
  EXPECT_EQ(filesIn(folder_), files);
  EXPECT_EQ(readPng(folder_ / "2.png"), rgb_);
}

TEST_F(Zvr, makesNoFolderOfAName) {
  fs::rename(folder_ / "photo.png", folder_ / "...png");
  EXPECT_EQ(run({"apply", "...png", "InvertZVR", "-o", "out/{name}/x.png"}).output,
            "wrote out/...png/x.png\n");
}

TEST_F(Zvr, saysWhyAnOutputCantBeWritten) {
  writeBytes(folder_ / "file", {1});
  const std::string longName = std::string(300, 'x') + ".png";
  const std::pair<std::string, const char*> outputs[] = {{"file/out.png", "Not a directory"},
                                                         {longName, "File name too long"},
                                                         {"/proc/out.png", "No such file or directory"}};
  for (const auto& [output, problem] : outputs) {
    const Finished done = run({"apply", "photo.png", "InvertZVR", "-o", output});
    EXPECT_EQ(done.status, 1) << output;
    EXPECT_TRUE(contains(done.errors, output + ": ") && contains(done.errors, problem)) << done.errors;
    EXPECT_EQ(done.output, "") << output;
  }
  EXPECT_EQ(filesIn(folder_), (std::vector<std::string>{"file", "photo.png"}));
}

TEST_F(Zvr, refusesFilesThatAreTooLarge) {
  for (const uintmax_t size : {uintmax_t{600} << 20, uintmax_t{3} << 30}) {  // sparse: they take no room
    writeBytes(folder_ / "large.png", {1});
    fs::resize_file(folder_ / "large.png", size);
    const Finished done = run({"apply", "large.png", "InvertZVR"});
    EXPECT_EQ(done.status, 1);
    EXPECT_TRUE(contains(done.errors, "large.png: File too large")) << done.errors;
  }
}

struct Refused {
  std::vector<std::string> words;
  const char* says;
};
class ZvrUsage : public Zvr, public testing::WithParamInterface<Refused> {};

TEST_P(ZvrUsage, isExplainedWithStatusTwo) {
  const Finished done = run(GetParam().words);
  EXPECT_EQ(done.status, 2);
  EXPECT_TRUE(contains(done.errors, GetParam().says)) << done.errors;
  EXPECT_EQ(done.output, "");
  EXPECT_EQ(filesIn(folder_), std::vector<std::string>{"photo.png"});
}

INSTANTIATE_TEST_SUITE_P(
    Mistakes, ZvrUsage,
    testing::Values(
        Refused{{}, "Usage: zvr"}, Refused{{"bogus"}, "no subcommand 'bogus'"},
        Refused{{"show", "InvrtZVR"}, "did you mean InvertZVR"},
        Refused{{"apply", "photo.png", "InvrtZVR"}, "'InvrtZVR' is neither a file nor a method"},
        Refused{{"apply", "photo.png", "InvertZVR", "+", "xyz"}, "no method 'xyz'"},
        Refused{{"apply", "photo.png"}, "expected a METHOD"},
        Refused{{"apply", "InvertZVR"}, "expected an INPUT"},
        Refused{{"apply", "photo.png", "InvertZVR", "+"}, "expected a METHOD after +"},
        Refused{{"apply", "photo.png", "InvertZVR", "1", "2"}, "InvertZVR(left as Integer, top as Integer"},
        Refused{{"apply", "photo.png", "InvertZVR", "1", "2", "3", "4.5"}, "height: '4.5' is not an Integer"},
        Refused{{"apply", "photo.png", "EmbeddedMaskZVR", "maybe"}, "'maybe' is not a Boolean"},
        Refused{{"apply", "photo.png", "CountColorZVR", "tealish"}, "a CSS name such as teal"},
        Refused{{"apply", "photo.png", "InvertZVR", "-o", "out.gif"}, ".webp, or name a --format"},
        Refused{{"apply", "photo.png", "InvertZVR", "-o", "{what}.png"}, "{what} is unknown"},
        Refused{{"apply", "photo.png", "./photo.png", "InvertZVR", "-o", "x.png"}, "would both be written"},
        Refused{{"apply", "photo.png", "InvertZVR", "-o", "./photo.png"}, "over the input photo.png"},
        Refused{{"run", "PictureSepiaZVR", "photo.png", "-o", "photo.png"}, "over the input photo.png"},
        Refused{{"run", "PictureSepiaZVR", "a.png", "SourcePicture=photo.png", "-o", "photo.png"},
                "over the input photo.png"},
        Refused{{"lut", "a.png", "photo.png", "-o", "photo.png"}, "over the input photo.png"},
        Refused{{"wave", "photo.png", "-o", "photo.png"}, "over the input photo.png"},
        Refused{{"gallery", "files/part.png", "-o", "."}, "over the input files/part.png"},
        Refused{{"gallery", "photo.png", "--sound", "a/files/samples.raw", "-o", "a"}, "over the input a/"},
        Refused{{"apply", "photo.png", "InvertZVR", "--bogus"}, "--bogus"},
        Refused{{"apply", "photo.png", "InvertZVR", "-o"}, "-o"},
        Refused{{"apply", "photo.png", "InvertZVR", "--quality", "101"}, "--quality"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "--in", "rot=x"}, "there are red, blue, green"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "--out", "count=x"}, "there are red, blue, green"},
        Refused{{"apply", "photo.png", "InvertZVR", "--out", "red=x"}, "no argument takes a file"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "--out", "red"}, "not of the form NAME=PATH"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "--in", "red=a", "--in", "Red=b"}, "given twice"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "--out", "red=a", "--out", "blue=a"},
                "--out red and --out blue would both"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "+", "TransformColorsZVR", "--in", "red=a"},
                "write METHOD.red"},
        Refused{{"apply", "photo.png", "CountColorsZVR", "nil"}, "a byref argument takes no word"},
        Refused{{"apply", "photo.png", "PicturetoBinaryStringZVR", "+", "InvertZVR"}, "bytes, not a picture"},
        Refused{{"apply", "photo.png", "InvertZVR", "+", "BinaryStringtoPictureZVR"}, "@ is a picture"},
        Refused{{"apply", "photo.png", "InvertZVR", "=", "photo.png"}, "can't be assigned to"},
        Refused{{"apply", "photo.png", "EmbeddedMaskZVR", "true", "="}, "expected one value after ="},
        Refused{{"list", "--host", "other"}, "--host"},
        Refused{{"list", "--host-version", "2013x"}, "'2013x' is not a version"}));

TEST_F(Zvr, listsWhatTheHostWasTold) {
  const Finished now = run({"list"});
  EXPECT_EQ(now.status, 0);
  EXPECT_TRUE(contains(now.output, "  c InvertZVR ")) << now.output;
  EXPECT_TRUE(contains(now.output, "Class PictureLut3DZVR, console-safe"));
  EXPECT_FALSE(contains(now.output, "\x1b["));
  // The same for scripts: an object for each member, defaults and all.
  const std::string json = run({"list", "--json"}).output;
  for (const char* part :
       {"{\"globalMethods\": [\n", "\"declaration\": \"InvertZVR as picture\", \"parameters\": [], ",
        "{\"name\": \"BackColor\", \"type\": \"Color\", \"byref\": false, \"default\": \"&c",
        "{\"name\": \"PictureLut3DZVR\", \"consoleSafe\": true, "}) {
    EXPECT_TRUE(contains(json, part)) << part;
  }
  // Hosts before 2010.029 learn of no console-safe member.
  const Finished old = run({"list", "--host-version", "2010.028"});
  EXPECT_TRUE(contains(old.output, "  - InvertZVR ")) << old.output;
  std::istringstream lines(now.output);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 100U) << line;
}

TEST_F(Zvr, saysWhatIsMissing) {
  const Finished noPlugin = run({"list", "--plugin", "nowhere.so"});
  EXPECT_EQ(noPlugin.status, 1);
  EXPECT_TRUE(contains(noPlugin.errors, "nowhere.so")) << noPlugin.errors;
  const Finished noDisplay = run({"list", "--host", "gdk"}, "DISPLAY=");
  EXPECT_EQ(noDisplay.status, 1);
  EXPECT_TRUE(contains(noDisplay.errors, "display")) << noDisplay.errors;
}

TEST_F(Zvr, completesWhatIsTyped) {
  struct {
    std::vector<std::string> words;
    const char* says;
  } const cases[] = {{{"sh"}, "show\n"},
                     {{"show", "picturesep"}, "PictureSepiaZVR\n"},
                     {{"apply", "invertgray"}, ""},  // the input comes first
                     {{"apply", "photo.png", "invertgray"}, "InvertGrayZVR\n"},
                     {{"list", "--j"}, "--json\n"},
                     {{"list", "--host", "c"}, "cairo\nconsole\n"},
                     {{"list", "--plugin", ""}, ""}};
  for (const auto& [typed, says] : cases) {
    std::vector<std::string> words{"--complete"};
    words.insert(words.end(), typed.begin(), typed.end());
    EXPECT_EQ(run(words).output, says) << typed.back();
  }
}

}  // namespace
