// Replacing one colour of a picture, or telling it from all others. Colours match exactly or not at all.

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
      [&](kernels::Pixel* out, const kernels::Pixel* in, size_t count, uint32_t top) {
        replace(out, in, count, top, searched, replacement);
      },
      source);
  return result.RenderPictureWriter();
}

// The result has no alpha channel, whatever the source has.
REALpictureStruct* ExtractColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement,
                                   RBColor background) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  const auto extract = kernels::best().extractColor;
  mapRegion(
      result, Region::whole(source),
      [&](kernels::Pixel* out, const kernels::Pixel* in, size_t count, uint32_t top) {
        extract(out, in, count, top, searched, replacement, background);
      },
      source);
  return result.RenderPictureWriter();
}
