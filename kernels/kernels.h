// Loops over packed pixels. A pixel is a 32-bit word: red in bits 16-23, green in bits 8-15, blue in bits
// 0-7; what stands in the top byte of an input word is ignored. Kernels know no host and no picture, allocate
// nothing, touch exactly the words or bytes they are told of, and give the same bits on every instruction
// set. Results don't depend on how a row is split into spans.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace kernels {

// A packed pixel in memory that may lie at any address and belong to anything.
typedef uint32_t Pixel __attribute__((aligned(1), may_alias));

// One word from one: out[i] from in[i]; `out` may be `in`. `top` (0 or 0xFF000000) is the top byte of every
// word written.
using SpanMap = void(Pixel* out, const Pixel* in, size_t count, uint32_t top);

// 3-byte pixels (red, green, blue) to words with a top byte, and back.
using SpanUnpack = void(Pixel* out, const uint8_t* in, size_t count, uint32_t top);
using SpanPack = void(uint8_t* out, const Pixel* in, size_t count);

// Every word set to `word`.
using SpanFill = void(Pixel* out, size_t count, uint32_t word);

// Part of `in` into `out`, which is read and written.
using SpanMerge = void(Pixel* out, const Pixel* in, size_t count);

// The same from two or three words each. The inputs may be one another; `out` may be any of them.
using SpanMap2 = void(Pixel* out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top);
using SpanMap3 = void(Pixel* out, const Pixel* in1, const Pixel* in2, const Pixel* in3, size_t count,
                      uint32_t top);
// Part of `in`'s words, and `bits` (below the top byte) of `from`'s.
using SpanReplace = void(Pixel* out, const Pixel* in, const Pixel* from, size_t count, uint32_t top,
                         uint32_t bits);

// New values of each channel by its old ones; `placed` has the same where they stand in a pixel
// (placeEntries in kernels/channel_tables.h).
struct alignas(64) ChannelTables {
  uint8_t red[256], green[256], blue[256];
  struct {
    uint32_t red[256], green[256], blue[256];
  } placed;
};
using SpanLookup = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables);

// A piecewise linear map of a channel, with v its old value, or 255 - v if the line is falling:
// ((256 * v + before) * slope >> 16) + offset, limited to 0..65535, >> shift, at most 255.
struct LinearMap {
  bool isFalling;
  uint8_t before;
  uint16_t slope;
  int32_t offset;  // -65535 to 65535
};
struct LinearMaps {
  LinearMap red, green, blue;
  uint32_t shift;  // 1 to 8
};
using SpanLinear = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, const LinearMaps& lines);

// How many of the words have `color`'s red, green and blue.
using SpanCount = uint32_t(const Pixel* in, size_t count, uint32_t color);

// How many pixels have each value, per channel: the sum of the lanes. Several lanes, so that neighbours of
// one value need not wait for each other.
constexpr size_t kCountingLanes = 4;
struct ChannelCounts {
  uint32_t red[kCountingLanes][256], green[kCountingLanes][256], blue[kCountingLanes][256];
};
// Adds the words to `counts`.
using SpanHistogram = void(const Pixel* in, size_t count, ChannelCounts& counts);

// Whether every pixel has `color`'s red, green and blue, or channels that differ by at most `tolerance` (0 to
// 255). May stop at the first that fails.
using SpanIsColor = bool(const Pixel* in, size_t count, uint32_t color);
using SpanIsGray = bool(const Pixel* in, size_t count, int32_t tolerance);
// How many of the words are colourful: not all channels are below 30, and green differs from blue or from red
// by more than a threshold from -1 to 255.
using SpanCountBeyond = uint32_t(const Pixel* in, size_t count, int32_t threshold);

// Where the first word with `color`'s red, green and blue lies; `count` when there is none.
using SpanFind = size_t(const Pixel* in, size_t count, uint32_t color);
// Whether two spans have the same colours.
using SpanCompare = bool(const Pixel* in1, const Pixel* in2, size_t count);

// Cells of a map from pixels, and pixels from cells; one byte a cell.
using SpanMark = void(uint8_t* cells, const Pixel* in, size_t count, uint8_t colored);
using SpanDraw = void(Pixel* out, const uint8_t* cells, size_t count, uint8_t black, uint32_t top);

// Words of `searched`'s red, green and blue become `replacement`; others stay as they are, or become
// `background`. The top bytes of the three colours are ignored.
using SpanReplaceColor = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                              uint32_t replacement);
using SpanExtractColor = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                              uint32_t replacement, uint32_t background);

// (v - gray) * factor / 255 + gray in each channel, with gray = (r + 2 * g + b) / 4 rounded down: the product
// wraps in 32 bits, the quotient is truncated toward zero, the sum clamped to 0..255.
using SpanSaturate = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, int32_t factor);

// A tint of one picture. Start with known = {}.
struct Tint {
  uint32_t gray;   // weights of red, green and blue in a pixel's brightness, in 255ths; top byte ignored
  uint32_t sepia;  // a brightness's share of each channel, likewise
  // Pixels whose results took long to find.
  struct Known {
    uint32_t pixel, result;
  } known[256];
  // Found out with the first span.
  bool isPrepared = false;
  float lean[3] = {};
};
using SpanTint = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, Tint& tint);

// Tetrahedral interpolation in a colour table. Its entries stand for the channel values 0, 17, 34 ... 255;
// what lies behind counts for nothing. Each channel of a result is the sum of four entries in 17ths, divided
// by 17, limited to 0..255 and truncated; not-a-number gives 0.
constexpr size_t kCubeSide = 18;  // entries along an axis, of which the first 16 are used
// `cube`: kCubeSide^3 entries of three doubles (red, green, blue), blue changing fastest, at any address. Up
// to one double behind the last used entry is read.
using SpanCube = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, const double* cube);
// The same for whole entries from 0 to 255: kWholeCubeSide^3 words.
constexpr size_t kWholeCubeSide = 16;
using SpanWholeCube = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Pixel* cube);

// A toned monochrome: weights in 1024ths, and what is added to the brightness in each channel, all signed in
// two's complement.
struct Sepia {
  uint32_t redWeight, greenWeight, blueWeight;
  uint32_t red, green, blue;
};
using SpanSepia = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Sepia& sepia);

// The sums of the samples below 0 and of the others, modulo 2^32, for samples at any address. Unsigned
// samples count from the middle of their range.
struct Excursions {
  uint32_t negative, positive;
};
using SampleSums = Excursions(const uint8_t* samples, size_t count);
// `inside` in the columns with first <= row <= last, `outside` in the others.
using SpanBars = void(Pixel* out, const int32_t* first, const int32_t* last, size_t count, int32_t row,
                      uint32_t inside, uint32_t outside);

// Every kernel with the type of its function: the one list of them. It makes the slots of a table, what each
// instruction set declares and assigns, and what tests and benchmark run.
#define ZVR_KERNELS(X)                                                                            \
  X(SpanUnpack, unpackRGB24)                                                                      \
  X(SpanPack, packRGB24)                                                                          \
  X(SpanMap, invert)       /* 255 - v in each channel */                                          \
  X(SpanMap, invertGray)   /* the same where red = green = blue; other pixels stay */             \
  X(SpanMap, grayFromTop8) /* gray pixels from the top byte a */                                  \
  X(SpanMap, grayFromTop7) /* the same from its lower 7 bits, as a * 2 + (a & 1) */               \
  X(SpanFill, fill)                                                                               \
  X(SpanMerge, redIntoBlue) /* the red of `in` into the blue of `out`, the rest of which stays */ \
  X(SpanMerge, invertedRedIntoBlue)                                                               \
  X(SpanMap2, max)             /* the larger value in each channel */                             \
  X(SpanMap3, combineChannels) /* red of the first, green of the second, blue of the third */     \
  X(SpanReplace, replaceBits)                                                                     \
  X(SpanLookup, mapThroughTables)                                                                 \
  X(SpanLinear, mapPiecewiseLinear)                                                               \
  X(SpanCount, countColor)                                                                        \
  X(SpanHistogram, histogram)                                                                     \
  X(SpanIsColor, isAllColor)                                                                      \
  X(SpanIsGray, isAllGray)                                                                        \
  X(SpanCountBeyond, countColorful)                                                               \
  X(SpanFind, findColor)                                                                          \
  X(SpanCompare, areEqual)                                                                        \
  X(SpanMark, markColored) /* `colored` unless red = green = blue, else 0 */                      \
  X(SpanDraw, blackWhere)  /* black where a cell is `black`, else white */                        \
  X(SpanReplaceColor, replaceColor)                                                               \
  X(SpanExtractColor, extractColor)                                                               \
  X(SpanSaturate, saturate)                                                                       \
  X(SpanTint, tint)                                                                               \
  X(SpanCube, mapThroughCube)                                                                     \
  X(SpanWholeCube, mapThroughWholeCube)                                                           \
  X(SpanSepia, sepia)                                                                             \
  X(SampleSums, sumInt8)                                                                          \
  X(SampleSums, sumUInt8)                                                                         \
  X(SampleSums, sumInt16)                                                                         \
  X(SampleSums, sumUInt16)                                                                        \
  X(SpanBars, bars)

// The kernels of one instruction set.
struct Table {
  const char* name;  // "sse2"
#define ZVR_SLOT(type, kernel) type* kernel;
  ZVR_KERNELS(ZVR_SLOT)
#undef ZVR_SLOT
};

// The kernels of the namespace where it stands, in the order of a table's slots.
#define ZVR_ADDRESS(type, kernel) kernel,

// The table for the processor that this runs on; chosen once.
const Table& best();

// The tables that this processor can run, slowest first (tests and the benchmark compare them).
struct Tables {
  const Table* table[3];
  int count;
};
Tables supported();

}  // namespace kernels
