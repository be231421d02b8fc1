// Antialiased lines in a picture's pixels: the outline of a waveform.
#pragma once

#include "picture/editor.h"

// Sets the line colour. It is global: each rendering sets its own before it draws.
void setOutlineColor(RBColor color);

// Blends the line colour into one pixel of an opened picture; `kept` (0 to 255) is the share of the old
// colour. A no-op outside the picture.
void BlendOutlinePixel(PictureEditor& editor, int32_t x, int32_t y, int32_t kept);
// A line one pixel wide, ends included. Its length is held in 16 bits: only parts of longer lines are drawn.
void DrawAntialiasedLine(PictureEditor& editor, int32_t x0, int32_t y0, int32_t x1, int32_t y1);
