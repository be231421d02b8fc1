// Moves the channels of each pixel away from its gray value, or towards it.

#include "operations/operations.h"
#include "picture/rows.h"

REALpictureStruct* SaturationPicture(REALpictureStruct* picture, int32_t amount) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source)) return nullptr;
  // Wraps in 32 bits, as the products with it do.
  const auto factor = static_cast<int32_t>(static_cast<uint32_t>(amount) + 255);
  const auto saturate = kernels::best().saturate;
  mapRegion(
      result, Region::whole(source),
      [&](kernels::Output out, const kernels::Pixel* in, size_t count, uint32_t top) {
        saturate(out, in, count, top, factor);
      },
      source);
  return result.RenderPictureWriter();
}
