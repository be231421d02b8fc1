// A picture's size, and drawing through the host's own Graphics object. Nothing here reports a failure: a
// lookup or property that the host refuses leaves things as they are, and getters answer 0.
#pragma once

#include "frame/entry_points.h"

// Pixels; 0 for a null picture (the host is not asked) and when the host can't say.
int32_t GetPictureWidth(REALpictureStruct* picture);
int32_t GetPictureHeight(REALpictureStruct* picture);

void SetGraphicsTextFont(REALgraphicsStruct* graphics, REALstringStruct* name);
void SetGraphicsTextFont(REALgraphicsStruct* graphics, const char* name);  // ASCII; null sets a null string
void SetGraphicsTextSize(REALgraphicsStruct* graphics, int32_t points);
void SetGraphicsPenHeight(REALgraphicsStruct* graphics, int32_t pixels);
void SetGraphicsPenWidth(REALgraphicsStruct* graphics, int32_t pixels);
void SetGraphicsUnderline(REALgraphicsStruct* graphics, bool on);
void SetGraphicsItalic(REALgraphicsStruct* graphics, bool on);
void SetGraphicsBold(REALgraphicsStruct* graphics, bool on);
void SetGraphicsForeColor(REALgraphicsStruct* graphics, RBColor color);
RBColor GetGraphicsForeColor(REALgraphicsStruct* graphics);

// Pixels throughout. Nothing for a null graphics object or on a host without the method.
void GraphicsDrawRoundRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t arcWidth, int32_t arcHeight);
void GraphicsFillRoundRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t arcWidth, int32_t arcHeight);
void GraphicsDrawOval(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsFillOval(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsDrawRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsFillRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsClearRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
