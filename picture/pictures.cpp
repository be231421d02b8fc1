// Creating, copying and drawing host pictures.

#include "picture/pictures.h"

#include <string.h>

#include "frame/held.h"
#include "frame/host_state.h"
#include "picture/description_lock.h"

namespace {

// The first host version with alpha channels.
constexpr double kAlphaVersion = 2011.04;
// Before this version the older drawing service is looked up.
constexpr double kDrawMethodVersion = 2012.0;
constexpr int32_t kPictureDepth = 32;

bool isPictureSide(int32_t side) { return side >= 1 && side <= kLargestPictureSide; }

// Draws a whole picture at the top left of another.
void drawWhole(REALpictureStruct* destination, REALpictureStruct* source, int32_t width, int32_t height) {
  GraphicsDrawPicture(destination, source, 0, 0, width, height, 0, 0, width, height);
}

}  // namespace

REALpictureStruct* NewPicture(int32_t width, int32_t height, bool alpha) {
  if (!isPictureSide(width) || !isPictureSide(height)) return nullptr;
  REALpictureStruct* made = alpha ? NewPictureWithAlphaChannel(width, height) : nullptr;
  return made ? made : REALNewPicture(width, height, kPictureDepth);
}

REALpictureStruct* NewPictureWithAlphaChannel(int32_t width, int32_t height) {
  if (width < 1 || height < 1 || !(rbversion_rbversion >= kAlphaVersion)) return nullptr;
  Held<REALobjectStruct> instance(REALnewInstance("Picture"));
  if (!instance) return nullptr;
  void* constructor =
      REALLoadObjectMethod(instance.get(), "Constructor(width as integer, height as integer)");
  if (!constructor) {
    instance.forget();  // leaked on a host without the constructor, on purpose
    return nullptr;
  }
  reinterpret_cast<void (*)(REALobjectStruct*, int32_t, int32_t)>(constructor)(instance.get(), width, height);
  return static_cast<REALpictureStruct*>(instance.release());
}

bool PictureHasAlphaChannel(REALpictureStruct* picture) {
  uint8_t has = 0;
  return picture && REALGetPropValueUInt8(picture, "HasAlphaChannel", &has) && has != 0;
}

REALpictureStruct* ClonePicture(REALpictureStruct* picture, int32_t width, int32_t height) {
  if (!picture || width < 1 || height < 1) return nullptr;
  Held<REALpictureStruct> clone(REALNewPicture(width, height, kPictureDepth));
  if (!clone) return nullptr;
  Held<REALgraphicsStruct> graphics(REALGetPictureGraphics(clone.get()));
  if (graphics)
    GraphicsDrawPicture(graphics.get(), clone.get(), picture, 0, 0, width, height, 0, 0, width, height);
  return clone.release();
}

REALpictureStruct* ClonePicture(REALpictureStruct* picture) {
  return ClonePicture(picture, GetPictureWidth(picture), GetPictureHeight(picture));
}

REALpictureStruct* ClonePictureWithMask(REALpictureStruct* picture, int32_t width, int32_t height) {
  if (!picture || width < 1 || height < 1) return nullptr;
  Held<REALpictureStruct> clone(REALNewPicture(width, height, kPictureDepth));
  if (!clone) return nullptr;
  drawWhole(clone.get(), picture, width, height);
  if (Held<REALpictureStruct> mask(REALGetPictureMask(picture, false)); mask) {
    Held<REALpictureStruct> newMask(REALGetPictureMask(clone.get(), true));
    if (newMask) drawWhole(newMask.get(), mask.get(), width, height);
  }
  return clone.release();
}

REALpictureStruct* ClonePictureWithMask(REALpictureStruct* picture) {
  return ClonePictureWithMask(picture, GetPictureWidth(picture), GetPictureHeight(picture));
}

REALpictureStruct* ConvertToPictureWithMask(REALpictureStruct* picture, int32_t width, int32_t height) {
  if (!picture) return nullptr;
  Held<REALpictureStruct> converted(REALNewPicture(width, height, kPictureDepth));
  if (!converted) return nullptr;
  drawWhole(converted.get(), picture, width, height);
  Held<REALpictureStruct> mask(CopyMask(picture));
  AssignMask(converted.get(), mask.get());
  return converted.release();
}

REALpictureStruct* CopyMask(REALpictureStruct* picture) {
  void* method = picture ? REALLoadObjectMethod(picture, "CopyMask as Picture") : nullptr;
  return method ? reinterpret_cast<REALpictureStruct* (*)(REALpictureStruct*)>(method)(picture) : nullptr;
}

bool AssignMask(REALpictureStruct* picture, REALpictureStruct* mask) {
  if (!picture || !mask) return false;
  void* method = REALLoadObjectMethod(picture, "Mask(assigns newMask As Picture)");
  if (method) reinterpret_cast<void (*)(REALpictureStruct*, REALpictureStruct*)>(method)(picture, mask);
  return true;
}

REALpictureStruct* BitmapPicture(REALpictureStruct* picture) {
  return Held<REALpictureStruct>::share(picture).release();
}

bool GraphicsDrawPicture(REALgraphicsStruct* graphics, REALpictureStruct* destination,
                         REALpictureStruct* source, int32_t x, int32_t y, int32_t w, int32_t h, int32_t sx,
                         int32_t sy, int32_t sw, int32_t sh) {
  if (graphics && source) {
    void* method = REALLoadObjectMethod(graphics,
                                        "DrawPicture(Image as Picture, x as Integer, y as Integer, w as "
                                        "Integer, h as Integer, sx as Integer = 0, sy "
                                        "as Integer = 0, sw as Integer = -10000, sh as Integer = -10000)");
    if (method) {
      using Draw = void (*)(REALgraphicsStruct*, REALpictureStruct*, int32_t, int32_t, int32_t, int32_t,
                            int32_t, int32_t, int32_t, int32_t);
      reinterpret_cast<Draw>(method)(graphics, source, x, y, w, h, sx, sy, sw, sh);
      return true;
    }
    // Looked up but not called, on purpose: older hosts see only the lookup.
    if (rbversion_rbversion < kDrawMethodVersion) HCallResolver("RuntimeGraphicsDrawPicture");
  }
  return OwnCopy(destination, source, x, y, w, h, sx, sy, sw, sh);
}

bool GraphicsDrawPicture(REALpictureStruct* destination, REALpictureStruct* source, int32_t x, int32_t y,
                         int32_t w, int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh) {
  Held<REALgraphicsStruct> graphics(REALGetPictureGraphics(destination));
  return GraphicsDrawPicture(graphics.get(), destination, source, x, y, w, h, sx, sy, sw, sh);
}

namespace {

// The locked bitmap; null if it can't be copied row by row.
const REALbitmapRecord* bitmapOf(const REALpictureDescription& description) {
  const auto* bitmap = static_cast<const REALbitmapRecord*>(description.handle);
  if (description.pictureType != kPictureTypeBitmap || !bitmap || bitmap->kind != 0 || !bitmap->rowTable ||
      bitmap->width < 0) {
    return nullptr;
  }
  for (int32_t y = 0; y < bitmap->height; ++y) {
    if (!bitmap->rowTable[y]) return nullptr;
  }
  return bitmap;
}

// Copies by the bitmaps' own sizes.
bool copyBitmap(const REALpictureDescription& destination, const REALpictureDescription& source) {
  const REALbitmapRecord *to = bitmapOf(destination), *from = bitmapOf(source);
  if (!to || !from || to->width != from->width || to->height != from->height) return false;
  for (int32_t y = 0; y < from->height; ++y) {
    memcpy(to->rowTable[y], from->rowTable[y], static_cast<size_t>(from->width) * 4);
  }
  return true;
}

}  // namespace

bool OwnCopy(REALpictureStruct* destination, REALpictureStruct* source, int32_t x, int32_t y, int32_t w,
             int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh) {
  if (!destination || !source || sw != w || sh != h || x != 0 || y != 0 || sx != 0 || sy != 0) return false;
  bool copied = false;
  {
    REALpictureDescription from = {};
    DescriptionLock sourceLock(source, &from, kPictureTypeBitmap);
    if (!sourceLock) return false;
    REALpictureDescription to = {};
    DescriptionLock destinationLock(destination, &to, kPictureTypeBitmap);
    copied = destinationLock && copyBitmap(to, from);
  }
  REALPictureClearCache(destination);
  return copied;
}
