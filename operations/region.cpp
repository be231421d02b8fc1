// Tests whether a rectangle is all black, white or gray, and how colourful a picture is.

#include "operations/operations.h"
#include "picture/rows.h"

namespace {

// Whether every pixel of the rectangle passes a kernel's test; true for an empty one.
template <typename Parameter>
RBBoolean testRegion(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height,
                     bool (*test)(const kernels::Pixel*, size_t, Parameter), Parameter parameter) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return false;
  if (width < 0) width = source.width;
  if (height < 0) height = source.height;
  return scanRegion(source, Region::cut(left, top, width, height, source),
                    [=](const kernels::Pixel* in, size_t count) { return test(in, count, parameter); });
}

// Channels differ by at most 255, so a larger tolerance changes nothing.
constexpr int32_t kLargestDifference = 255;

int32_t magnitude(int32_t tolerance) {
  const int64_t positive = tolerance < 0 ? -int64_t{tolerance} : tolerance;
  return positive < kLargestDifference ? static_cast<int32_t>(positive) : kLargestDifference;
}

}  // namespace

RBBoolean isBlack(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height) {
  return testRegion(picture, left, top, width, height, kernels::best().isAllColor, 0x000000U);
}

RBBoolean isBlack2(REALpictureStruct* picture) { return isBlack(picture, 0, 0, -1, -1); }

RBBoolean isWhite(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height) {
  return testRegion(picture, left, top, width, height, kernels::best().isAllColor, 0xFFFFFFU);
}

RBBoolean isWhite2(REALpictureStruct* picture) { return isWhite(picture, 0, 0, -1, -1); }

RBBoolean isGray(REALpictureStruct* picture, int32_t tolerance, int32_t left, int32_t top, int32_t width,
                 int32_t height) {
  return testRegion(picture, left, top, width, height, kernels::best().isAllGray, magnitude(tolerance));
}

RBBoolean isGray2(REALpictureStruct* picture, int32_t tolerance) {
  return isGray(picture, tolerance, 0, 0, -1, -1);
}

double ColornessZVR(REALpictureStruct* picture, int32_t threshold) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return 0;
  // The threshold's sign counts, on purpose: below 0 every pixel that isn't dark passes.
  const int32_t limit = threshold < 0 ? -1 : magnitude(threshold);
  uint32_t colorful = 0;
  scanRegion(source, Region::whole(source), [&](const kernels::Pixel* in, size_t count) {
    colorful += kernels::best().countColorful(in, count, limit);
    return true;
  });
  // The product wraps at 32 bits, on purpose; a picture without pixels gives NaN.
  const uint32_t pixels = static_cast<uint32_t>(source.width) * static_cast<uint32_t>(source.height);
  return static_cast<double>(colorful) / static_cast<int32_t>(pixels);
}
