// Picture files in and out, through GraphicsMagick.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zvr {

// Sides longer than this are beyond what the host's pictures may have.
constexpr unsigned kLongestSide = 32767;
// More pixels don't fit into a 32-bit program: a call holds up to three pictures of four bytes a pixel.
constexpr uint64_t kLargestPicture = 200'000'000;

// All that a picture file says of its pixels.
struct Metadata {
  std::vector<uint8_t> profile;             // ICC; empty: none
  std::vector<uint8_t> exif;                // empty: none
  double xResolution = 0, yResolution = 0;  // in pixels per inch; 0: unknown
};

// Pixels of four bytes: red, green, blue, opacity (not premultiplied), rows without gaps.
struct Image {
  int width = 0, height = 0;
  bool hasAlpha = false;
  std::unique_ptr<uint8_t[]> pixels;
  Metadata metadata;

  // Makes room for a picture; throws Failure for sides that are too long or too many pixels.
  void allocate(unsigned newWidth, unsigned newHeight);
  size_t rowBytes() const { return static_cast<size_t>(width) * 4; }
  uint8_t* row(int y) const { return pixels.get() + static_cast<size_t>(y) * rowBytes(); }
  size_t byteCount() const { return rowBytes() * static_cast<size_t>(height); }
};
// The pixels and whether there is alpha.
bool operator==(const Image& a, const Image& b);

// Reads a picture, its format told by its content. `upright`: turned as its orientation tag says, which
// becomes 1. Sides and formats are refused by the header. Of several pictures in a file the first is read, of
// icons the largest. Oddities that leave a picture are told on standard error. Throws Failure with "PATH:
// what is wrong".
Image loadImage(const std::string& path, bool upright = true);
// The same for a file that has been read.
Image decodeImage(const std::string& path, const std::vector<uint8_t>& file, bool upright = true);

struct Writing {
  std::string format;  // "png", "jpeg", "tiff", "bmp" or "webp"; empty: by the file's extension, png to
                       // standard output
  int quality = 92;    // of JPEG and WebP, 1 to 100
  std::string
      subsampling;      // of JPEG: "4:4:4", "4:2:2" or "4:2:0"; empty: 4:4:4 from quality 90 on, else 4:2:0
  int compression = 1;  // of PNG, 0 to 9
};

// The format of a word or extension without its dot, in any case ("jpg" is "jpeg"); empty when none is
// written so.
std::string writtenFormat(const std::string& word);
// Throws UsageError unless the extension, or `format`, is one that saveImage writes.
void checkExtension(const std::string& path, const std::string& format = "");
// Encodes with the metadata. Formats without alpha show transparency as white, which is told on standard
// error. Throws Failure.
std::vector<uint8_t> encodeImage(const Image& image, const Writing& writing);
// The same into a file, which appears under its name when it is complete.
void saveImage(Image image, const std::string& path, const Writing& writing);

}  // namespace zvr
