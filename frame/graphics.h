// A picture's size, and drawing through the host's Graphics object. Nothing here reports failure: a setter or
// drawing call that the host refuses is a no-op, and getters return 0.
#pragma once

#include "frame/entry_points.h"

// In pixels; 0 for a null picture (without calling the host) and if the host can't tell.
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

// In pixels. No-ops for a null graphics object and on a host without the method.
void GraphicsDrawRoundRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t arcWidth, int32_t arcHeight);
void GraphicsFillRoundRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t arcWidth, int32_t arcHeight);
void GraphicsDrawOval(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsFillOval(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsDrawRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsFillRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
void GraphicsClearRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height);
