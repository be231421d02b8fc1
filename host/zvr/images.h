// Picture files in and out, and the host pictures that they become.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/objects.h"

namespace zvr {

// Sides longer than this are beyond what the host's pictures may have.
constexpr unsigned kLongestSide = 32767;

// Pixels of four bytes: red, green, blue, opacity (not premultiplied), rows without gaps.
struct Image {
  int width = 0, height = 0;
  bool hasAlpha = false;
  std::unique_ptr<uint8_t[]> pixels;

  // Makes room for a picture; throws Failure for sides that are too long or memory that can't be had.
  void allocate(unsigned newWidth, unsigned newHeight);
  size_t rowBytes() const { return static_cast<size_t>(width) * 4; }
  uint8_t* row(int y) const { return pixels.get() + static_cast<size_t>(y) * rowBytes(); }
  size_t byteCount() const { return rowBytes() * static_cast<size_t>(height); }
};
bool operator==(const Image& a, const Image& b);

// Reads a PNG or JPEG, told by its content. Throws Failure with "PATH: what is wrong".
Image loadImage(const std::string& path);
// The same for a file that has been read.
Image decodeImage(const std::string& path, const std::vector<uint8_t>& file);

// Throws UsageError unless the extension is one that saveImage can write.
void checkExtension(const std::string& path);
// Writes a PNG or JPEG by the extension; `quality` (1 to 100) is JPEG's, which has no alpha: what is
// transparent becomes white. The file appears under its name when it is complete. Throws Failure.
void saveImage(const Image& image, const std::string& path, int quality);

// A host picture of an image. Transparency becomes the picture's own where the host that is played has such
// pictures, otherwise a mask picture (white: transparent). Throws Failure when the host has no memory.
host::PictureRef toPicture(const Image& image);
// The way back: alpha or mask become opacity.
Image fromPicture(REALpictureStruct* picture);

// The formats. Decoders throw Failure with the problem, without a path; the libraries themselves print
// nothing.
bool isPng(const std::vector<uint8_t>& file);
Image decodePng(const std::vector<uint8_t>& file);
std::vector<uint8_t> encodePng(const Image& image);
bool isJpeg(const std::vector<uint8_t>& file);
Image decodeJpeg(const std::vector<uint8_t>& file);
std::vector<uint8_t> encodeJpeg(const Image& image, int quality);

}  // namespace zvr
