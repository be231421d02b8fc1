// Registered methods through zvr, and the files that its arguments and answers may be.

#include <sstream>

#include "tests/zvr_program.h"

namespace {

using namespace zvr_test;

// Words after photo.png, and what is printed.
struct Call {
  const char *words, *says;
};

// The names of registered methods as `zvr list` prints them, empty for further overloads.
std::vector<std::string> listedMethods(const std::string& list) {
  std::vector<std::string> names;
  std::istringstream lines(list.substr(0, list.find("Class ")));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  c ", 0) != 0 && line.rfind("  - ", 0) != 0) continue;
    names.push_back(line.substr(4, line.find_first_of(" (", 4) - 4));
  }
  return names;
}

class ZvrMethods : public Zvr {
 protected:
  void SetUp() override {
    Zvr::SetUp();
    writePng(folder_ / "other.png", inverted(rgb_), PNG_FORMAT_RGB);
    Bytes table;
    for (int i = 255; i >= 0; --i) table.push_back(static_cast<uint8_t>(i));
    for (const char* name : {"table", "red", "green", "blue"}) {
      writeBytes(folder_ / (name + std::string(".bin")), table);
    }
    ASSERT_EQ(run({"apply", "photo.png", "PicturetoBinaryStringZVR", "-o", "photo.ppic"}).status, 0);
  }
};

// That every method runs is checked with the gallery's lines, in test_gallery.
TEST_F(ZvrMethods, takeArgumentsAndPrintAnswersOfEveryType) {
  const Call calls[] = {
      {"ColornessZVR", "ColornessZVR = 0.9903381642512077\n"},
      {"ScrollZVR 5 -1 false true -o out.png", "ScrollZVR = true\nwrote out.png\n"},
      {"ChangeContrastZVR .5 1 inf -o out.png", "wrote out.png\n"},
      {"InvertZVR 1 2 3 4 -o out.png", "wrote out.png\n"},
      {"CountColorZVR '#00055a'", "CountColorZVR = 1\n"},
      {"CountColorsZVR", "count = 207\n"},
      {"ExtractColorZVR '&c00055A' Red LIME + CountColorZVR '#ff0000' -o out.png",
       "CountColorZVR = 1\nwrote out.png\n"},
      {"FindPictureZVR @", "FindPictureZVR = true\nx = 0\ny = 0\n"},
      {"isWhiteZVR 0 0 2 2", "isWhiteZVR = false\n"},
      {"isGrayZVR 255", "isGrayZVR = true\n"},
      {"BinaryStringtoPictureZVR --in data=photo.ppic -o out.png", "wrote out.png\n"},
      {"RenderSamplesZVR table.bin 256 1 16 8 1 -o out.png", "wrote out.png\n"},
  };
  for (const auto& [words, says] : calls) {
    SCOPED_TRACE(words);
    fs::remove(folder_ / "out.png");
    const Finished done = runLine(std::string("apply photo.png ") + words);
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_EQ(fs::exists(folder_ / "out.png"), contains(says, "out.png"));
    const size_t at = done.output.rfind(says);
    EXPECT_TRUE(at != std::string::npos && at + std::string(says).size() == done.output.size())
        << done.output;
  }
}

// The manual is checked in test_manual; here its text has to arrive.
TEST_F(ZvrMethods, areShownWithTheManualsText) {
  EXPECT_TRUE(contains(run({"show", "INVERTzvr", "--color", "always"}, "NO_COLOR=1").output, "\x1b["));
  for (const std::string& name : listedMethods(run({"list"}).output)) {
    if (name.empty()) continue;
    const Finished shown = run({"show", name});
    EXPECT_EQ(shown.output.compare(0, name.size(), name), 0) << shown.output;
    EXPECT_TRUE(contains(shown.output, "    zvr ")) << shown.output;
    for (const char* markup : {"```", "**", "](", "![", "|--", "<!--"}) {
      EXPECT_FALSE(contains(shown.output, markup)) << name << ": " << markup;
    }
    // Code is left as it is; all else fits a terminal.
    std::istringstream lines(shown.output);
    for (std::string line; std::getline(lines, line);) {
      const bool isCode = line.compare(0, 4, "    ") == 0;
      const auto seen = std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; });
      EXPECT_TRUE(isCode || seen <= 80) << name << ": " << line;
    }
  }
  const Call topics[] = {
      {"PictureSepiaZVR", "FactorBlue and FactorGreen are crossed"},
      {"ChangeCustomZVR", "are console-safe"},          // said once for the whole page
      {"ChangeSaturationZVR", "(r + 2 × g + b) \\ 4"},  // this backslash protects nothing
      {"new-pictures", "A new picture has the source's size."},
  };
  for (const auto& [topic, says] : topics) {
    EXPECT_TRUE(contains(run({"show", topic}).output, says)) << topic;
  }
}

TEST_F(ZvrMethods, passBytesThroughFiles) {
  // Histograms are added to the counters in a block, little-endian.
  const std::pair<int, const char*> rounds[] = {{1, "--out red=red.hist"},
                                                {2, "--in RED=red.hist --out red=twice.hist"}};
  for (const auto& [round, options] : rounds) {
    ASSERT_EQ(runLine(std::string("apply photo.png CountColorsZVR ") + options).status, 0);
    Bytes expected(1024);
    for (size_t i = 0; i < rgb_.bytes.size(); i += 4) {
      expected[rgb_.bytes[i] * size_t{4}] = static_cast<uint8_t>(expected[rgb_.bytes[i] * size_t{4}] + round);
    }
    EXPECT_EQ(readBytes(folder_ / (round == 1 ? "red.hist" : "twice.hist")), expected);
  }
  EXPECT_TRUE(contains(runLine("apply photo.png CountColorsZVR --in red=twice.hist").output,
                       "red = MemoryBlock of 1024 bytes: 207 of 256 entries are not 0, sum 621, largest 3"));
  // Of two steps with a block called red the qualified name means one.
  const Finished chained = runLine(
      "apply photo.png CountColorsZVR + TransformColorsZVR blue.bin green.bin --out red=hists/{name}.hist "
      "--in TransformColorsZVR.red=red.bin -o out.png");
  ASSERT_EQ(chained.status, 0) << chained.errors;
  EXPECT_EQ(readPng(folder_ / "out.png"), inverted(rgb_));
  EXPECT_EQ(readBytes(folder_ / "hists/photo.hist").size(), 1024U);
  // Strings: by themselves, in a chain, and under their own name.
  EXPECT_EQ(readBytes(folder_ / "photo.ppic").size(), 40 + 3 * 207U);
  ASSERT_EQ(runLine("apply photo.ppic BinaryStringtoPictureZVR + InvertZVR -o out.png").status, 0);
  EXPECT_EQ(readPng(folder_ / "out.png"), inverted(rgb_));
  ASSERT_EQ(
      runLine("apply photo.png PicturetoBinaryStringZVR + BinaryStringtoPictureZVR @ -o out.png").status, 0);
  EXPECT_EQ(readPng(folder_ / "out.png"), rgb_);
  EXPECT_EQ(runLine("apply photo.png PicturetoBinaryStringZVR").output,
            "wrote photo-PicturetoBinaryStringZVR.bin\n");
}

TEST_F(ZvrMethods, sayWhatIsWrongWithFiles) {
  writeBytes(folder_ / "empty.bin", {});
  writeBytes(folder_ / "odd.bin", {1, 2, 3});
  writePng(folder_ / "small.png", zvr_test::pattern(5, 4, false));
  fs::create_directory(folder_ / "folder");
  const Call failures[] = {
      {"TransformColorsZVR red.bin gone.bin green.bin", "gone.bin: No such file"},
      {"TransformColorsZVR red.bin folder green.bin", "folder: Is a directory"},
      {"TransformColorsZVR red.bin empty.bin green.bin", "empty.bin: the file is empty"},
      {"TransformColorsZVR nil nil nil", "NilObjectException: red memoryblock is nil"},
      {"CountColorsZVR --in red=gone.bin", "gone.bin: No such file"},
      {"CountColorsZVR --out red=folder/../photo.png/x", "photo.png/x: Not a directory"},
      {"BinaryStringtoPictureZVR red.bin",
       "BinaryStringtoPictureZVR answered nil for data = String of 256 bytes. Memory ran out, or as the "
       "manual says: Nil when the string"},
      {"MergePictureZVR @ nil", "MergePictureZVR answered nil: source2 is nil"},
      {"MergePictureZVR small.png @",
       "MergePictureZVR answered nil: the sizes differ: source1 = Picture of 5 x 4, source2 = Picture of 23 "
       "x 9"},
      {"ReplaceRedChannelZVR small.png",
       "answered nil: the sizes differ: @ = Picture of 23 x 9, RedChannel = Picture of 5 x 4"},
      {"RenderSamplesZVR red.bin 0 1 32768 9 0", "answered nil: Width is 32768, above 32767"},
      {"RenderSamplesZVR odd.bin 0 1 10 9 0 red red red 9",
       "answered nil for Samples = MemoryBlock of 3 bytes, "},
  };
  for (const auto& [words, says] : failures) {
    const Finished done = runLine(std::string("apply photo.png ") + words);
    EXPECT_EQ(done.status, 1) << words;
    EXPECT_TRUE(contains(done.errors, says)) << done.errors;
  }
}

}  // namespace
