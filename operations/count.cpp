// Histograms, counts of one colour, and maps through the caller's lookup tables.

#include <string.h>

#include "frame/errors.h"
#include "operations/memory_blocks.h"
#include "operations/operations.h"
#include "operations/tables.h"

namespace {

constexpr int32_t kHistogramBytes = 256 * 4;

// The caller's block, or a new one that the caller will own.
REALmemoryBlockStruct* givenOrNew(REALmemoryBlockStruct** block) {
  if (!*block) *block = REALNewMemoryBlock(kHistogramBytes);
  return *block;
}

// Adds counts to those in a block; drops entries beyond its end.
void addCounts(REALmemoryBlockStruct* block, const uint32_t (&counts)[kernels::kCountingLanes][256]) {
  const rbData view(block);
  const auto bytes = static_cast<size_t>(bytesWithin(view, kHistogramBytes));
  if (bytes == 0) return;
  uint32_t sums[256] = {};
  memcpy(sums, view.data(), bytes);
  for (const auto& lane : counts) {
    for (size_t i = 0; i < 256; ++i) sums[i] += lane[i];
  }
  memcpy(view.data(), sums, bytes);
}

// Entries beyond the end of a short block read as 0.
void readTable(const rbData& block, uint8_t (&table)[256]) {
  const auto bytes = static_cast<size_t>(bytesWithin(block, sizeof table));
  memcpy(table, block.data(), bytes);
  memset(table + bytes, 0, sizeof table - bytes);
}

}  // namespace

int32_t CountColorZVR(REALpictureStruct* picture, RBColor color) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return 0;
  uint32_t found = 0;
  const auto kernel = kernels::best().countColor;
  scanRegion(source, Region::whole(source), [&](const kernels::Pixel* in, size_t count) {
    found += kernel(in, count, color);
    return true;
  });
  return static_cast<int32_t>(found);
}

// The second block gets the green histogram and the third the blue one, on purpose, although the parameters
// are named the other way round.
void CountColorsZVR(REALpictureStruct* picture, REALmemoryBlockStruct** red, REALmemoryBlockStruct** blue,
                    REALmemoryBlockStruct** green, int32_t* count) {
  *count = -1;
  // Creates as many of the three as possible before a missing one ends the call.
  const bool haveRed = givenOrNew(red), haveSecond = givenOrNew(blue), haveThird = givenOrNew(green);
  if (!haveRed || !haveSecond || !haveThird) return;
  PictureReader source;
  if (!source.GetPictureReader(picture)) return;
  kernels::ChannelCounts counts = {};
  size_t pixels = 0;
  const auto kernel = kernels::best().histogram;
  scanRegion(source, Region::whole(source), [&](const kernels::Pixel* in, size_t spanCount) {
    kernel(in, spanCount, counts);
    pixels += spanCount;
    return true;
  });
  addCounts(*red, counts.red);
  addCounts(*blue, counts.green);
  addCounts(*green, counts.blue);
  *count = static_cast<int32_t>(pixels);
}

REALpictureStruct* TransformColorsZVR(REALpictureStruct* picture, REALmemoryBlockStruct* red,
                                      REALmemoryBlockStruct* blue, REALmemoryBlockStruct* green,
                                      REALpictureStruct* dest) {
  const char* missing = !picture ? "picture is nil"
                        : !red   ? "red memoryblock is nil"
                        : !green ? "green memoryblock is nil"
                        : !blue  ? "blue memoryblock is nil"
                                 : nullptr;
  if (missing) {
    RaiseException(kNilObjectException, missing);
    return nullptr;
  }
  const rbData reds(red), greens(green), blues(blue);
  if (!reds.data() || !greens.data() || !blues.data()) return nullptr;
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(dest, source.width, source.height)) return nullptr;
  kernels::ChannelTables tables;
  readTable(reds, tables.red);
  readTable(greens, tables.green);
  readTable(blues, tables.blue);
  mapThroughTables(result, tables, source);
  return result.RenderPictureWriter();
}
