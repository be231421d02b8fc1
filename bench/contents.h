// What the measured pictures show, as words 0x00RRGGBB.
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
  page,   // black on white, mostly white, a needle far down that has white edges
  place,  // the photo with a needle far down that nothing else resembles
  blobs,  // sparse coloured areas on white
};

// The pixels of one row.
void drawRow(Content content, const Size& size, int y, uint32_t* row);

// The part of Content::page and Content::place that is searched for, row after row, and where it lies.
constexpr int kLongestNeedleSide = 64;
Size needleSize(const Size& picture);
struct Place {
  int x, y;
};
Place needlePlace(const Size& picture);
std::vector<uint32_t> needle(Content content, const Size& picture);

}  // namespace bench
