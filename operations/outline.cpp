// Wu's antialiased line in 16-bit fixed point.

#include "operations/outline.h"

#include <utility>

namespace {

int32_t gOutLineColorR, gOutLineColorG, gOutLineColorB;

int32_t difference16(int32_t to, int32_t from) {
  return static_cast<int16_t>(static_cast<uint32_t>(to) - static_cast<uint32_t>(from));
}

uint8_t blended(int32_t outline, int32_t existing, int32_t kept) {
  return static_cast<uint8_t>((outline * (255 - kept) + existing * kept) / 255);
}

}  // namespace

void setOutlineColor(RBColor color) {
  gOutLineColorR = color >> 16 & 0xFF;
  gOutLineColorG = color >> 8 & 0xFF;
  gOutLineColorB = color & 0xFF;
}

void BlendOutlinePixel(PictureEditor& editor, int32_t x, int32_t y, int32_t kept) {
  if (x < 0 || y < 0 || x >= editor.width || y >= editor.height) return;
  uint8_t* pixel = editor.GetRow(y) + ptrdiff_t{x} * editor.bytesPerPixel;
  // In memory a word begins with blue, an RGB24 pixel with red.
  const bool isWord = editor.hasWords();
  uint8_t &red = pixel[isWord ? 2 : 0], &green = pixel[1], &blue = pixel[isWord ? 0 : 2];
  const int32_t oldGreen = green;
  red = blended(gOutLineColorR, red, kept);
  // The old blue blends into green and the old green into blue, on purpose.
  green = blended(gOutLineColorG, blue, kept);
  blue = blended(gOutLineColorB, oldGreen, kept);
  if (isWord) pixel[3] = static_cast<uint8_t>(editor.topByte() >> 24);
}

void DrawAntialiasedLine(PictureEditor& editor, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
  if (y0 > y1) {
    std::swap(x0, x1);
    std::swap(y0, y1);
  }
  BlendOutlinePixel(editor, x0, y0, 0);
  const int32_t dx = difference16(x1, x0), down = difference16(y1, y0);
  const int32_t step = dx < 0 ? -1 : 1, across = dx * step;
  if (down == 0 || across == 0 || down == across) {
    // Horizontal, vertical and diagonal lines need no antialiasing.
    for (int32_t left = down == 0 ? across : down; left > 0; --left) {
      if (across != 0) x0 += step;
      if (down != 0) ++y0;
      BlendOutlinePixel(editor, x0, y0, 0);
    }
    return;
  }
  // Each step advances along the longer side, and along the shorter one whenever its fraction wraps.
  const bool isSteep = down > across;
  const int32_t longer = isSteep ? down : across, shorter = isSteep ? across : down;
  const auto slope = static_cast<uint16_t>(shorter * 0x10000 / longer);
  uint16_t fraction = 0;
  for (int32_t left = longer - 1; left > 0; --left) {
    const uint16_t before = fraction;
    fraction = static_cast<uint16_t>(fraction + slope);
    const bool wrapped = fraction <= before;
    if (isSteep || wrapped) ++y0;
    if (!isSteep || wrapped) x0 += step;
    const int32_t kept = fraction >> 8;
    BlendOutlinePixel(editor, x0, y0, kept);
    BlendOutlinePixel(editor, isSteep ? x0 + step : x0, isSteep ? y0 : y0 + 1, 255 - kept);
  }
  BlendOutlinePixel(editor, x1, y1, 0);
}
