// Replaces one channel of a picture by that of another.

#include "frame/errors.h"
#include "operations/operations.h"
#include "picture/rows.h"

namespace {

// `channel` is the one to take from the channel picture: 0 to 2 for red, green and blue.
REALpictureStruct* replaceChannel(REALpictureStruct* picture, REALpictureStruct* channelPicture,
                                  int channel) {
  if (!channelPicture) {
    RaiseException(kNilObjectException, "The channel picture is nil.");
    return nullptr;
  }
  PictureReader source, replacement;
  if (!source.GetPictureReader(picture) || !replacement.GetPictureReader(channelPicture)) return nullptr;
  if (source.height > replacement.height || source.width > replacement.width) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(source.width, source.height)) return nullptr;
  const auto replacing = [channel](kernels::SpanMap3* combine) {
    return [=](kernels::Output out, const kernels::Pixel* in, const kernels::Pixel* from, size_t count,
               uint32_t top) {
      combine(out, channel == 0 ? from : in, channel == 1 ? from : in, channel == 2 ? from : in, count, top);
    };
  };
  const BothFormats replace{replacing(kernels::best().combineChannels),
                            replacing(kernels::best().combineRGB24)};
  mapRegion(result, Region::whole(source), replace, source, replacement);
  return result.RenderPictureWriter();
}

}  // namespace

REALpictureStruct* ReplaceRedChannel(REALpictureStruct* picture, REALpictureStruct* redChannel) {
  return replaceChannel(picture, redChannel, 0);
}

REALpictureStruct* ReplaceGreenChannel(REALpictureStruct* picture, REALpictureStruct* greenChannel) {
  return replaceChannel(picture, greenChannel, 1);
}

REALpictureStruct* ReplaceBlueChannel(REALpictureStruct* picture, REALpictureStruct* blueChannel) {
  return replaceChannel(picture, blueChannel, 2);
}
