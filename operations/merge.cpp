// Combines several pictures of one size.

#include "operations/operations.h"
#include "picture/rows.h"

namespace {

bool sameSize(const PictureEditor& one, const PictureEditor& other) {
  return one.width == other.width && one.height == other.height;
}

}  // namespace

REALpictureStruct* MergePicture(REALpictureStruct* source1, REALpictureStruct* source2) {
  if (!source1 || !source2) return nullptr;  // before either is opened
  PictureReader first, second;
  if (!first.GetPictureReader(source1) || !second.GetPictureReader(source2)) return nullptr;
  PictureWriter result;
  if (!sameSize(first, second) || !result.NewPictureWriter(first.width, first.height)) return nullptr;
  const BothFormats brighter{kernels::best().max, kernels::best().maxRGB24};
  mapRegion(result, Region::whole(result), brighter, first, second);
  return result.RenderPictureWriter();
}

// Blue comes before green in the parameters, on purpose; the pictures are opened as red, green, blue.
REALpictureStruct* CombinePicturesZVR(REALpictureStruct* red, REALpictureStruct* blue,
                                      REALpictureStruct* green) {
  PictureReader reds, greens, blues;
  if (!reds.GetPictureReader(red) || !greens.GetPictureReader(green) || !blues.GetPictureReader(blue)) {
    return nullptr;
  }
  PictureWriter result;
  if (!sameSize(reds, greens) || !sameSize(reds, blues) ||
      !result.NewPictureWriter(reds.width, reds.height)) {
    return nullptr;
  }
  const BothFormats combine{kernels::best().combineChannels, kernels::best().combineRGB24};
  mapRegion(result, Region::whole(result), combine, reds, greens, blues);
  return result.RenderPictureWriter();
}
