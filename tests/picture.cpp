// Compares and shows PNG files, for sessions.
//
//   picture same FILE OTHER [TOLERANCE]     fails where a channel differs by more
//   picture show FILE [X Y]…                its size, and the colours at places, with opacity where the file
//   has it

#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

[[noreturn]] void fail(const std::string& problem) {
  std::fprintf(stderr, "picture: %s\n", problem.c_str());
  std::exit(1);
}

struct Picture {
  png_image image{};
  std::vector<uint8_t> bytes;  // red, green, blue and opacity
  bool hasAlpha = false;

  explicit Picture(const std::string& path) {
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) fail(path + ": " + image.message);
    hasAlpha = image.format & PNG_FORMAT_FLAG_ALPHA;
    image.format = PNG_FORMAT_RGBA;
    bytes.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr)) fail(path + ": " + image.message);
  }
};

void same(const std::string& path, const std::string& other, int tolerance) {
  const Picture a(path), b(other);
  if (a.image.width != b.image.width || a.image.height != b.image.height)
    fail(path + " and " + other + " differ in size");
  for (size_t i = 0; i < a.bytes.size(); ++i) {
    if (std::abs(a.bytes[i] - b.bytes[i]) > tolerance)
      fail(path + " and " + other + " differ at pixel " + std::to_string(i / 4));
  }
}

void show(const Picture& picture, const Words& places) {
  std::printf("%u x %u", picture.image.width, picture.image.height);
  for (size_t i = 0; i + 1 < places.size(); i += 2) {
    const size_t pixel = std::stoul(places[i + 1]) * picture.image.width + std::stoul(places[i]);
    std::printf(" #");
    for (size_t channel = 0; channel < (picture.hasAlpha ? 4 : 3); ++channel)
      std::printf("%02x", picture.bytes.at(pixel * 4 + channel));
  }
  std::printf("\n");
}

}  // namespace

int main(int count, char** arguments) {
  const Words words(arguments + 1, arguments + count);
  const std::string &command = words.at(0), &file = words.at(1);
  if (command == "same") same(file, words.at(2), words.size() > 3 ? std::stoi(words[3]) : 0);
  if (command == "show") show(Picture(file), Words(words.begin() + 2, words.end()));
}
