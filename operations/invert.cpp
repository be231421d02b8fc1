// Inverts a picture, or only its gray pixels.

#include "operations/operations.h"
#include "picture/rows.h"

namespace {

// A result like the source, with the rectangle written by the kernel. A width or height below `leastSide`
// means the whole picture's.
template <typename Kernel>
REALpictureStruct* invertRegion(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                int32_t height, int32_t leastSide, const Kernel& kernel) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  if (width < leastSide) width = source.width;
  if (height < leastSide) height = source.height;
  PictureWriter result;
  if (!result.NewPictureWriter(source)) return nullptr;
  mapRegion(result, Region::cut(left, top, width, height, source), kernel, source);
  return result.RenderPictureWriter();
}

}  // namespace

REALpictureStruct* InvertPicture(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                 int32_t height) {
  const BothFormats invert{kernels::best().invert, kernels::best().invertRGB24};
  return invertRegion(picture, left, top, width, height, 1, invert);
}

REALpictureStruct* InvertPicture2(REALpictureStruct* picture) { return InvertPicture(picture, 0, 0, -1, -1); }

// A width or height of 0 processes nothing here, on purpose, unlike in InvertPicture.
REALpictureStruct* InvertGrayPicture(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                     int32_t height) {
  return invertRegion(picture, left, top, width, height, 0, kernels::best().invertGray);
}

REALpictureStruct* InvertGrayPicture2(REALpictureStruct* picture) {
  return InvertGrayPicture(picture, 0, 0, -1, -1);
}
