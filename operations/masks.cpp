// Mask pictures, and the mask embedded in a picture's pixels.

#include "frame/held.h"
#include "operations/operations.h"
#include "picture/rows.h"

RBBoolean PictureHasMask(REALpictureStruct* picture) {
  if (!picture) return false;
  Held<REALpictureStruct> mask(REALGetPictureMask(picture, false));
  return static_cast<bool>(mask);
}

REALpictureStruct* GetEmbededMask(REALpictureStruct* picture, RBBoolean swap) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  const kernels::Table& k = kernels::best();
  const bool isOpaque = source.format != kFormatHostBitmap && source.format != kFormatCairoAlpha;
  const auto gray = source.format == kFormatHostBitmap ? k.grayFromTop7 : k.grayFromTop8;
  mapRegion(
      result, Region::whole(source),
      [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
        if (isOpaque) {
          k.fill(out, count, 0xFFFFFF | top);
        } else {
          gray(out, in, count, top);
        }
        if (swap) k.invert(out, out, count, top);
      },
      source);
  return result.RenderPictureWriter();
}

void SetEmbededMask(REALpictureStruct* picture, RBBoolean swap, REALpictureStruct* mask) {
  if (!mask) return;
  // Opened for reading although its words are written, on purpose: the host keeps its cached rendering.
  PictureReader target, source;
  if (!target.GetPictureReader(picture) || !source.GetPictureReader(mask)) return;
  // Writes to a GDK copy would be lost.
  if (!target.hasWords()) return;
  const auto merge = swap ? kernels::best().invertedRedIntoBlue : kernels::best().redIntoBlue;
  // Reads the mask at the picture's size, not its own: past its last byte it counts as black.
  mapRegion(
      target, Region::whole(target),
      [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t) { merge(out, in, count); },
      source);
}
