// For sessions: makes and compares PNG files.
//
//   picture make FILE WIDTH HEIGHT KIND     a pattern; KIND is gray, rgb, or rgba, with every other pixel
//   transparent picture invert FILE OTHER               writes OTHER: FILE with other colours and the same
//   opacity picture same FILE OTHER [TOLERANCE]     fails where a channel differs by more picture show FILE
//   [X Y]…                its size and kind, and the colours at places, with opacity as a fourth byte

#include <png.h>

#include <algorithm>
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

// Four bytes a pixel: red, green, blue and opacity.
struct Picture {
  png_image image{};
  std::vector<uint8_t> bytes;

  Picture(unsigned width, unsigned height, png_uint_32 format) {
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = format;
    bytes.resize(size_t{width} * height * 4);
  }
  explicit Picture(const std::string& path) {
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str())) fail(path + ": " + image.message);
    const png_uint_32 format = image.format;
    image.format = PNG_FORMAT_RGBA;
    bytes.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr)) fail(path + ": " + image.message);
    image.format = format & (PNG_FORMAT_FLAG_COLOR | PNG_FORMAT_FLAG_ALPHA);
  }
  void write(const std::string& path) {
    std::vector<uint8_t> samples;
    for (size_t i = 0; i < bytes.size(); ++i) {
      const bool isColor = i % 4 == 1 || i % 4 == 2;
      if (isColor && !(image.format & PNG_FORMAT_FLAG_COLOR)) continue;
      if (i % 4 == 3 && !(image.format & PNG_FORMAT_FLAG_ALPHA)) continue;
      samples.push_back(bytes[i]);
    }
    if (!png_image_write_to_file(&image, path.c_str(), 0, samples.data(), 0, nullptr))
      fail(path + ": " + image.message);
  }
};

void make(const Words& words) {
  const png_uint_32 format = words[4] == "gray"   ? PNG_FORMAT_GRAY
                             : words[4] == "rgba" ? PNG_FORMAT_RGBA
                                                  : PNG_FORMAT_RGB;
  Picture picture(static_cast<unsigned>(std::stoul(words[2])), static_cast<unsigned>(std::stoul(words[3])),
                  format);
  for (size_t i = 0; i < picture.bytes.size() / 4; ++i) {
    if (format == PNG_FORMAT_RGBA && i % 2) continue;
    uint8_t* pixel = &picture.bytes[i * 4];
    pixel[0] = static_cast<uint8_t>(i * 7);
    pixel[1] = static_cast<uint8_t>(i * 13 + 5);
    pixel[2] = static_cast<uint8_t>(i * 3 + 90);
    pixel[3] = 255;
  }
  picture.write(words[1]);
}

void invert(const Words& words) {
  Picture picture(words[1]);
  for (size_t i = 0; i < picture.bytes.size(); ++i)
    if (i % 4 != 3) picture.bytes[i] = static_cast<uint8_t>(255 - picture.bytes[i]);
  picture.write(words[2]);
}

void same(const Words& words) {
  const Picture a(words[1]), b(words[2]);
  const int tolerance = words.size() > 3 ? std::stoi(words[3]) : 0;
  if (a.image.width != b.image.width || a.image.height != b.image.height) fail("the sizes differ");
  for (size_t i = 0; i < a.bytes.size(); ++i) {
    if (std::abs(a.bytes[i] - b.bytes[i]) > tolerance)
      fail("channel " + std::to_string(i % 4) + " of pixel " + std::to_string(i / 4) + " is " +
           std::to_string(a.bytes[i]) + " and " + std::to_string(b.bytes[i]));
  }
}

void show(const Words& words) {
  const Picture picture(words[1]);
  const bool hasAlpha = picture.image.format & PNG_FORMAT_FLAG_ALPHA;
  std::printf("%u x %u %s%s", picture.image.width, picture.image.height,
              picture.image.format & PNG_FORMAT_FLAG_COLOR ? "rgb" : "gray", hasAlpha ? "a" : "");
  for (size_t i = 2; i + 1 < words.size(); i += 2) {
    const size_t at = (std::stoul(words[i + 1]) * picture.image.width + std::stoul(words[i])) * 4;
    std::printf(" #");
    for (size_t channel = 0; channel < (hasAlpha ? 4 : 3); ++channel)
      std::printf("%02x", picture.bytes.at(at + channel));
  }
  std::printf("\n");
}

}  // namespace

int main(int count, char** arguments) {
  const Words words(arguments + 1, arguments + count);
  const std::string& command = words.at(0);
  if (command == "make") {
    make(words);
  } else if (command == "invert") {
    invert(words);
  } else if (command == "same") {
    same(words);
  } else if (command == "show") {
    show(words);
  } else {
    fail("no command " + command);
  }
}
