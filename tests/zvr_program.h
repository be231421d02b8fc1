// zvr run as a child process on real files. ZVR_PROGRAM is the path of the built program.
#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zvr_test {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

Bytes readBytes(const fs::path& path);
std::string textOf(const fs::path& path);  // of a file
void writeBytes(const fs::path& path, const Bytes& bytes);
bool contains(const std::string& text, const std::string& part);

// A small picture as bytes red, green, blue and opacity.
struct Pixels {
  unsigned width = 0, height = 0;
  bool hasAlpha = false;
  Bytes bytes;
  bool operator==(const Pixels& o) const {
    return width == o.width && height == o.height && hasAlpha == o.hasAlpha && bytes == o.bytes;
  }
};
Pixels pattern(unsigned width, unsigned height, bool hasAlpha);
Pixels inverted(Pixels pixels);
void writePng(const fs::path& path, const Pixels& pixels, png_uint_32 format = PNG_FORMAT_RGBA);
Pixels readPng(const fs::path& path);

struct Finished {
  int status = -1;
  std::string output, errors;
};

// A folder with photo.png, a picture of 23 x 9 pixels without alpha.
class Zvr : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Runs zvr in the folder; words are single-quoted for the shell.
  Finished run(const std::vector<std::string>& words, const std::string& before = {});
  // The same for words as the shell reads them.
  Finished runLine(const std::string& words, const std::string& before = {});
  static std::vector<std::string> filesIn(const fs::path& folder);

  fs::path folder_;
  Pixels rgb_;
};

}  // namespace zvr_test
