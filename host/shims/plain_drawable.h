// The drawable that our host shows with Settings::plainDrawables.
#pragma once

#include <cstdint>

struct PlainDrawable {
  uint8_t* pixels;  // red, green and blue bytes
  int32_t stride;   // bytes from one row to the next
};

// Rows of RGB24 pixels begin at multiples of 4 bytes, as GDK's do.
inline int32_t plainStride(int32_t width) { return (width * 3 + 3) / 4 * 4; }
