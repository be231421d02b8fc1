// Creates, copies and draws host pictures and their masks. The caller owns one reference on each returned
// picture. Failure is null or false; nothing raises a host exception.
#pragma once

#include "frame/entry_points.h"
#include "frame/graphics.h"

// The largest width and height of pictures that the plug-in creates.
constexpr int32_t kLargestPictureSide = 32767;

// A new 32-bit picture, with an alpha channel if requested and available. Sides from 1 to 32767.
REALpictureStruct* NewPicture(int32_t width, int32_t height, bool alpha);
// Null on hosts before version 2011.04, which have no pictures with alpha.
REALpictureStruct* NewPictureWithAlphaChannel(int32_t width, int32_t height);
bool PictureHasAlphaChannel(REALpictureStruct* picture);

// A new picture of the given size (or the picture's own) with the picture drawn at its top left, without or
// with its mask.
REALpictureStruct* ClonePicture(REALpictureStruct* picture, int32_t width, int32_t height);
REALpictureStruct* ClonePicture(REALpictureStruct* picture);
REALpictureStruct* ClonePictureWithMask(REALpictureStruct* picture, int32_t width, int32_t height);
REALpictureStruct* ClonePictureWithMask(REALpictureStruct* picture);
// The same, with a mask that the host creates from the picture's alpha channel.
REALpictureStruct* ConvertToPictureWithMask(REALpictureStruct* picture, int32_t width, int32_t height);

// A copy of the picture's mask, made by the host; null on hosts without the method.
REALpictureStruct* CopyMask(REALpictureStruct* picture);
// Sets the picture's mask. False only for null arguments: on a host without the method this is a no-op.
bool AssignMask(REALpictureStruct* picture, REALpictureStruct* mask);
// The same picture, with one more reference.
REALpictureStruct* BitmapPicture(REALpictureStruct* picture);

// Draws the part (sx, sy, sw, sh) of `source` into (x, y, w, h) of `destination` through its graphics object;
// falls back to OwnCopy on hosts without the method.
bool GraphicsDrawPicture(REALgraphicsStruct* graphics, REALpictureStruct* destination,
                         REALpictureStruct* source, int32_t x, int32_t y, int32_t w, int32_t h, int32_t sx,
                         int32_t sy, int32_t sw, int32_t sh);
bool GraphicsDrawPicture(REALpictureStruct* destination, REALpictureStruct* source, int32_t x, int32_t y,
                         int32_t w, int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh);
// Copies the rows of a console bitmap to another of the same size. False if anything would be moved or
// scaled.
bool OwnCopy(REALpictureStruct* destination, REALpictureStruct* source, int32_t x, int32_t y, int32_t w,
             int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh);
