// Tints a picture in two steps: to brightness, and from there to shades of one colour.

#include "operations/operations.h"
#include "picture/rows.h"

REALpictureStruct* TintPicture(REALpictureStruct* picture, RBColor grayBase, RBColor sepiaBase) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source)) return nullptr;
  kernels::Tint tint = {grayBase, sepiaBase, {}};
  mapRegion(
      result, Region::whole(source),
      [&, kernel = kernels::best().tint](kernels::Output out, const kernels::Pixel* in, size_t count,
                                         uint32_t top) { kernel(out, in, count, top, tint); },
      source);
  return result.RenderPictureWriter();
}
