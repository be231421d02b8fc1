// Lines with soft edges in a picture's pixels: the outline of a waveform.
#pragma once

#include "picture/editor.h"

// The colour of the lines from now on, shared by all renderings: each sets its own before it draws.
void setOutlineColor(RBColor color);

// Blends the outline's colour into one pixel of an opened picture, `kept` (0 to 255) being the share of what
// stands there. Nothing outside the picture.
void BlendOutlinePixel(PictureEditor& editor, int32_t x, int32_t y, int32_t kept);
// A line one pixel wide, ends included. Its length is counted in 16 bits: beyond that only parts are drawn.
void DrawAntialiasedLine(PictureEditor& editor, int32_t x0, int32_t y0, int32_t x1, int32_t y1);
