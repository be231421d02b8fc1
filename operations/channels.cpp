// Replaces one channel of a picture by that of another.

#include "frame/errors.h"
#include "operations/operations.h"
#include "picture/rows.h"

namespace {

// `channel` masks the bits of the pixel word to take from the channel picture.
REALpictureStruct* replaceChannel(REALpictureStruct* picture, REALpictureStruct* channelPicture,
                                  uint32_t channel) {
  if (!channelPicture) {
    RaiseException(kNilObjectException, "The channel picture is nil.");
    return nullptr;
  }
  PictureReader source, replacement;
  if (!source.GetPictureReader(picture) || !replacement.GetPictureReader(channelPicture)) return nullptr;
  if (source.height > replacement.height || source.width > replacement.width) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  mapRegion(
      result, Region::whole(source),
      [channel, kernel = kernels::best().replaceBits](
          kernels::Output out, const kernels::Pixel* in, const kernels::Pixel* from, size_t count,
          uint32_t top) { kernel(out, in, from, count, top, channel); },
      source, replacement);
  return result.RenderPictureWriter();
}

}  // namespace

REALpictureStruct* ReplaceRedChannel(REALpictureStruct* picture, REALpictureStruct* redChannel) {
  return replaceChannel(picture, redChannel, 0xFF0000);
}

REALpictureStruct* ReplaceGreenChannel(REALpictureStruct* picture, REALpictureStruct* greenChannel) {
  return replaceChannel(picture, greenChannel, 0xFF00);
}

REALpictureStruct* ReplaceBlueChannel(REALpictureStruct* picture, REALpictureStruct* blueChannel) {
  return replaceChannel(picture, blueChannel, 0xFF);
}
