// Contents of the measured pictures, as words 0x00RRGGBB.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Size {
  int width, height;
  size_t pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
  bool operator==(const Size& o) const { return width == o.width && height == o.height; }
};
std::string nameOf(const Size& size);  // "3840x2160"

enum class Content {
  photo,  // soft shapes with noise over them, all colours
  otherPhoto,
  grays,  // the photo without colour
  flat,   // one colour
  white,
  black,
  page,   // black on white, mostly white; far down a needle with white edges
  place,  // the photo, with a unique needle far down
  blobs,  // sparse coloured areas on white
};

// Writes the pixels of one row.
void drawRow(Content content, const Size& size, int y, uint32_t* row);

// The needle in Content::page and Content::place, row after row, and its position.
constexpr int kLongestNeedleSide = 64;
Size needleSize(const Size& picture);
struct Place {
  int x, y;
};
Place needlePlace(const Size& picture);
std::vector<uint32_t> needle(Content content, const Size& picture);

}  // namespace bench
