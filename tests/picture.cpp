// Compares and shows PNG files, for sessions.
//
//   picture same FILE OTHER [TOLERANCE]     fails where a channel differs by more
//   picture show FILE [X Y]…                its size, and the colours at places, with opacity where the file
//   has it

#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Picture {
  png_image image{};
  std::vector<uint8_t> bytes;  // red, green, blue and opacity
  bool hasAlpha = false;

  explicit Picture(const std::string& path) {
    image.version = PNG_IMAGE_VERSION;
    png_image_begin_read_from_file(&image, path.c_str());
    hasAlpha = image.format & PNG_FORMAT_FLAG_ALPHA;
    image.format = PNG_FORMAT_RGBA;
    bytes.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr))
      throw std::runtime_error(path + ": " + image.message);
  }
};

void expectSame(const Picture& a, const Picture& b, int tolerance) {
  if (a.image.width != b.image.width || a.bytes.size() != b.bytes.size()) throw std::runtime_error("sizes");
  for (size_t i = 0; i < a.bytes.size(); ++i) {
    if (std::abs(a.bytes[i] - b.bytes[i]) > tolerance)
      throw std::runtime_error("differ at pixel " + std::to_string(i / 4));
  }
}

void show(const Picture& picture, const std::vector<std::string>& places) {
  std::printf("%u x %u", picture.image.width, picture.image.height);
  for (size_t i = 0; i + 1 < places.size(); i += 2) {
    const size_t at = (std::stoul(places[i + 1]) * picture.image.width + std::stoul(places[i])) * 4;
    const auto& b = picture.bytes;
    std::printf(picture.hasAlpha ? " #%02x%02x%02x%02x" : " #%02x%02x%02x", b.at(at), b[at + 1], b[at + 2],
                b[at + 3]);
  }
  std::puts("");
}

}  // namespace

int main(int count, char** words) {
  const Picture picture(words[2]);
  if (words[1] == std::string("show")) {
    show(picture, {words + 3, words + count});
  } else {
    expectSame(picture, Picture(words[3]), count > 4 ? std::atoi(words[4]) : 0);
  }
}
