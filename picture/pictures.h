// Making, copying and drawing host pictures, and their masks. A picture that is returned carries one
// reference for the caller. Failure is null or false; nothing raises.
#pragma once

#include "frame/entry_points.h"
#include "frame/graphics.h"

// The largest width and height of a picture that the plug-in makes.
constexpr int32_t kLargestPictureSide = 32767;

// A new 32-bit picture; with an alpha channel if that is wanted and to be had. Sizes from 1 to 32767.
REALpictureStruct* NewPicture(int32_t width, int32_t height, bool alpha);
// Null on hosts before version 2011.04, which have no such pictures.
REALpictureStruct* NewPictureWithAlphaChannel(int32_t width, int32_t height);
bool PictureHasAlphaChannel(REALpictureStruct* picture);

// A picture of the given size (or the picture's own) with the picture drawn at its top left; without its
// mask, or with it.
REALpictureStruct* ClonePicture(REALpictureStruct* picture, int32_t width, int32_t height);
REALpictureStruct* ClonePicture(REALpictureStruct* picture);
REALpictureStruct* ClonePictureWithMask(REALpictureStruct* picture, int32_t width, int32_t height);
REALpictureStruct* ClonePictureWithMask(REALpictureStruct* picture);
// The same, with a mask made from the picture's alpha channel by the host.
REALpictureStruct* ConvertToPictureWithMask(REALpictureStruct* picture, int32_t width, int32_t height);

// A copy of the picture's mask made by the host; null on hosts that can't.
REALpictureStruct* CopyMask(REALpictureStruct* picture);
// Makes `mask` the picture's mask. False only for nulls: a host without the method is left alone.
bool AssignMask(REALpictureStruct* picture, REALpictureStruct* mask);
// The picture itself, with one more reference.
REALpictureStruct* BitmapPicture(REALpictureStruct* picture);

// Draws the part (sx, sy, sw, sh) of `source` into (x, y, w, h) of `destination`, through its graphics
// object; where the host can't, by OwnCopy.
bool GraphicsDrawPicture(REALgraphicsStruct* graphics, REALpictureStruct* destination,
                         REALpictureStruct* source, int32_t x, int32_t y, int32_t w, int32_t h, int32_t sx,
                         int32_t sy, int32_t sw, int32_t sh);
bool GraphicsDrawPicture(REALpictureStruct* destination, REALpictureStruct* source, int32_t x, int32_t y,
                         int32_t w, int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh);
// Copies the rows of one console bitmap to another of the same size. False unless nothing is moved or scaled.
bool OwnCopy(REALpictureStruct* destination, REALpictureStruct* source, int32_t x, int32_t y, int32_t w,
             int32_t h, int32_t sx, int32_t sy, int32_t sw, int32_t sh);
