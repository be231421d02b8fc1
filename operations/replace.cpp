// Replaces or extracts one colour of a picture. Only exact matches count.

#include "operations/operations.h"
#include "picture/rows.h"

REALpictureStruct* ReplaceColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source)) return nullptr;
  const auto replace = kernels::best().replaceColor;
  mapRegion(
      result, Region::whole(source),
      [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
        replace(out, in, count, top, searched, replacement);
      },
      source);
  return result.RenderPictureWriter();
}

// The result has no alpha channel, even if the source has one.
REALpictureStruct* ExtractColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement,
                                   RBColor background) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  const auto extract = kernels::best().extractColor;
  mapRegion(
      result, Region::whole(source),
      [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
        extract(out, in, count, top, searched, replacement, background);
      },
      source);
  return result.RenderPictureWriter();
}
