#include "tests/zvr_program.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace zvr_test {

Bytes readBytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
std::string textOf(const fs::path& path) {
  const Bytes bytes = readBytes(path);
  return {bytes.begin(), bytes.end()};
}

void writeBytes(const fs::path& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

Pixels pattern(unsigned width, unsigned height, bool hasAlpha) {
  Pixels pixels{width, height, hasAlpha, {}};
  for (unsigned i = 0; i < width * height; ++i) {
    for (const unsigned value : {i * 7, i * 13 + 5, i * 3 + 90}) pixels.bytes.push_back(value & 0xFF);
    pixels.bytes.push_back(hasAlpha && i % 2 ? 0 : 255);
  }
  return pixels;
}
Pixels inverted(Pixels pixels) {
  for (size_t i = 0; i < pixels.bytes.size(); ++i) {
    if (i % 4 != 3) pixels.bytes[i] = static_cast<uint8_t>(255 - pixels.bytes[i]);
  }
  return pixels;
}

void writePng(const fs::path& path, const Pixels& pixels, png_uint_32 format) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = pixels.width;
  image.height = pixels.height;
  image.format = format;
  Bytes samples;
  for (size_t i = 0; i < pixels.bytes.size(); ++i) {
    const bool isKept = format == PNG_FORMAT_RGBA || (format == PNG_FORMAT_RGB ? i % 4 != 3 : i % 4 == 0);
    if (isKept) samples.push_back(pixels.bytes[i]);
  }
  ASSERT_TRUE(png_image_write_to_file(&image, path.c_str(), 0, samples.data(), 0, nullptr)) << image.message;
}

Pixels readPng(const fs::path& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) {
    ADD_FAILURE() << path << ": " << image.message;
    return {};
  }
  Pixels pixels{image.width, image.height, (image.format & PNG_FORMAT_FLAG_ALPHA) != 0, {}};
  image.format = PNG_FORMAT_RGBA;
  pixels.bytes.resize(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, pixels.bytes.data(), 0, nullptr);
  return pixels;
}

void Zvr::SetUp() {
  std::string name = (fs::temp_directory_path() / "zvr-test-XXXXXX").string();
  ASSERT_NE(mkdtemp(name.data()), nullptr);
  folder_ = name;
  rgb_ = pattern(23, 9, false);
  writePng(folder_ / "photo.png", rgb_, PNG_FORMAT_RGB);
}

void Zvr::TearDown() { fs::remove_all(folder_); }

Finished Zvr::run(const std::vector<std::string>& words, const std::string& before) {
  std::string line;
  for (const std::string& word : words) line += " '" + word + "'";
  return runLine(line, before);
}

Finished Zvr::runLine(const std::string& words, const std::string& before) {
  std::string line = "cd '" + folder_.string() + "' && " + before + " '" ZVR_PROGRAM "' " + words;
  line += " >'" + folder_.string() + ".out' 2>'" + folder_.string() + ".err'";
  const int status = std::system(line.c_str());
  const Bytes output = readBytes(folder_.string() + ".out"), errors = readBytes(folder_.string() + ".err");
  fs::remove(folder_.string() + ".out");
  fs::remove(folder_.string() + ".err");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
          {output.begin(), output.end()},
          {errors.begin(), errors.end()}};
}

std::vector<std::string> Zvr::filesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace zvr_test
