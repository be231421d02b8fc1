// Fuzzes sample rendering: blocks of any length and content, with any numbers.

#include "fuzz/played_host.h"
#include "operations/operations.h"

namespace {

// Larger pictures only take longer, and our host draws wide pens point by point.
constexpr int64_t kMostPixels = 1 << 14, kMostPixelsOfWidePen = 1 << 11;
constexpr int32_t kWidePen = 4;

bool isWorthwhile(int64_t columns, int64_t rows, int32_t pen) {
  constexpr int32_t kLongestSide = 32767;
  if (columns > kLongestSide || rows > kLongestSide) return true;  // rejected at once
  return columns * rows <= (pen < kWidePen ? kMostPixels : kMostPixelsOfWidePen);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  fuzz::play(fuzz::takeHostKind(data));
  constexpr int32_t kBits[] = {7, 8, 15, 16, 0};
  const int32_t bits = data.PickValueInArray(kBits);
  const int32_t count = fuzz::takeInteger(data), smoothing = fuzz::takeInteger(data);
  const int32_t width = fuzz::takeInteger(data), height = fuzz::takeInteger(data);
  const int32_t outlineWidth =
      data.ConsumeBool() ? data.ConsumeIntegralInRange(0, 3) : fuzz::takeInteger(data);
  const bool autoScale = data.ConsumeBool();
  const std::vector<uint8_t> samples = data.ConsumeRemainingBytes<uint8_t>();
  const int64_t columns = width > 0 ? width : count > 0 ? count : static_cast<int64_t>(samples.size());
  if (!isWorthwhile(columns, height > 0 ? height : 500, outlineWidth)) return -1;
  {
    const host::MemoryBlockRef block = host::newMemoryBlock(samples.data(), samples.size());
    host::PictureRef::adopt(RenderSamples(block.get(), count, smoothing, width, height, outlineWidth,
                                          0xC88B5C4, 0x274C5A, 0x203F4E, bits, autoScale));
  }
  fuzz::expectNothingHeld();
  return 0;
}
