// Host properties and drawing methods, looked up by name.

#include "frame/graphics.h"

#include <string.h>

#include "frame/held.h"
#include "frame/text.h"

namespace {

int32_t pictureSize(REALpictureStruct* picture, const char* property) {
  int32_t value = 0;
  return picture && REALGetPropValueInt32(picture, property, &value) ? value : 0;
}

// Calls a method of the graphics object with integer arguments.
template <typename... Integers>
void draw(REALgraphicsStruct* graphics, const char* declaration, Integers... arguments) {
  if (!graphics) return;
  void* method = REALLoadObjectMethod(graphics, declaration);
  if (method) reinterpret_cast<void (*)(REALgraphicsStruct*, Integers...)>(method)(graphics, arguments...);
}

}  // namespace

int32_t GetPictureWidth(REALpictureStruct* picture) { return pictureSize(picture, "Width"); }
int32_t GetPictureHeight(REALpictureStruct* picture) { return pictureSize(picture, "Height"); }

void SetGraphicsTextFont(REALgraphicsStruct* graphics, REALstringStruct* name) {
  REALSetPropValueString(graphics, "TextFont", name);
}
void SetGraphicsTextFont(REALgraphicsStruct* graphics, const char* name) {
  Held<REALstringStruct> text(
      name ? REALBuildUnicodeString(name, static_cast<int64_t>(strlen(name)), kEncodingASCII) : nullptr);
  SetGraphicsTextFont(graphics, text.get());
}
void SetGraphicsTextSize(REALgraphicsStruct* graphics, int32_t points) {
  REALSetPropValueInt32(graphics, "TextSize", points);
}
void SetGraphicsPenHeight(REALgraphicsStruct* graphics, int32_t pixels) {
  REALSetPropValueInt32(graphics, "PenHeight", pixels);
}
void SetGraphicsPenWidth(REALgraphicsStruct* graphics, int32_t pixels) {
  REALSetPropValueInt32(graphics, "PenWidth", pixels);
}
void SetGraphicsUnderline(REALgraphicsStruct* graphics, bool on) {
  REALSetPropValueBoolean(graphics, "Underline", on);
}
void SetGraphicsItalic(REALgraphicsStruct* graphics, bool on) {
  REALSetPropValueBoolean(graphics, "Italic", on);
}
void SetGraphicsBold(REALgraphicsStruct* graphics, bool on) { REALSetPropValueBoolean(graphics, "Bold", on); }
void SetGraphicsForeColor(REALgraphicsStruct* graphics, RBColor color) {
  REALSetPropValueUInt32(graphics, "ForeColor", color);
}
RBColor GetGraphicsForeColor(REALgraphicsStruct* graphics) {
  RBColor color = 0;
  return REALGetPropValueUInt32(graphics, "ForeColor", &color) ? color : 0;
}

// The host matches the declarations byte for byte.

void GraphicsDrawRoundRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t arcWidth, int32_t arcHeight) {
  draw(graphics,
       "DrawRoundRect( x as Integer, y as Integer, width as Integer, height as Integer, ArcWidth as integer, "
       "ArcHeight as integer )",
       x, y, width, height, arcWidth, arcHeight);
}
void GraphicsFillRoundRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height,
                           int32_t arcWidth, int32_t arcHeight) {
  draw(graphics,
       "FillRoundRect( x as Integer, y as Integer, width as Integer, height as Integer, ArcWidth as integer, "
       "ArcHeight as integer )",
       x, y, width, height, arcWidth, arcHeight);
}
void GraphicsDrawOval(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height) {
  draw(graphics, "DrawOval( x as Integer, y as Integer, width as Integer, height as Integer )", x, y, width,
       height);
}
void GraphicsFillOval(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height) {
  draw(graphics, "FillOval( x as Integer, y as Integer, width as Integer, height as Integer )", x, y, width,
       height);
}
void GraphicsDrawRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height) {
  draw(graphics, "DrawRect( x as Integer, y as Integer, width as Integer, height as Integer )", x, y, width,
       height);
}
void GraphicsFillRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height) {
  draw(graphics, "FillRect( x as Integer, y as Integer, width as Integer, height as Integer )", x, y, width,
       height);
}
void GraphicsClearRect(REALgraphicsStruct* graphics, int32_t x, int32_t y, int32_t width, int32_t height) {
  draw(graphics, "ClearRect( x as Integer, y as Integer, width as Integer, height as Integer )", x, y, width,
       height);
}
