// Loops over packed pixels. A pixel is a 32-bit word: red in bits 16-23, green in bits 8-15, blue in bits
// 0-7; the top byte of an input word is ignored. Kernels know nothing about hosts or pictures, allocate
// nothing, touch exactly the words or bytes passed to them, and give bit-identical results on every
// instruction set. Results don't depend on how a row is split into spans.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace kernels {

// A packed pixel at any address, aligned or not, that may alias any type.
typedef uint32_t Pixel __attribute__((aligned(1), may_alias));

// Where a kernel writes words, and how: streaming stores go past the caches. They save reading the lines
// first, but pay only for results that no cache would hold. After the last of them comes endStreaming.
struct Output {
  Pixel* pixels;
  bool streams;

  Output(Pixel* to, bool streaming = false) : pixels(to), streams(streaming) {}
  operator Pixel*() const { return pixels; }
};
// Whether streaming stores pay for a result of so many pixels.
bool shouldStream(int64_t pixels);
// Orders streaming stores for other threads.
inline void endStreaming() { __builtin_ia32_sfence(); }

// Computes out[i] from in[i]; `out` may be `in`. `top` (0 or 0xFF000000) is the top byte of every word
// written.
using SpanMap = void(Output out, const Pixel* in, size_t count, uint32_t top);

// Kernels named …RGB24 compute the same from and to RGB24 pixels: bytes red, green, blue, at the addresses
// given for words. They don't use `top`. Streaming stores only if `out` begins a cache line.

// Converts RGB24 pixels (bytes red, green, blue) to words with a top byte, and back.
using SpanUnpack = void(Output out, const uint8_t* in, size_t count, uint32_t top);
using SpanPack = void(uint8_t* out, const Pixel* in, size_t count, bool streams);

// Sets every word to `word`.
using SpanFill = void(Output out, size_t count, uint32_t word);

// Copies part of each word of `in` into `out`, which is read and written.
using SpanMerge = void(Pixel* out, const Pixel* in, size_t count);

// Places that are needed soon, at any addresses. Memory delivers several streams faster than one.
constexpr size_t kPlaces = 4;
struct Soon {
  uintptr_t places[kPlaces];
  bool areFar;  // no cache holds them
};
// As memmove. Meanwhile fetches a part of about size / kPlaces bytes of each place into the cache, and
// advances the places past these.
using SpanMove = void(uint8_t* to, const uint8_t* from, size_t size, Soon* soon);

// As SpanMap, from two or three inputs. The inputs may alias each other; `out` may be any of them.
using SpanMap2 = void(Output out, const Pixel* in1, const Pixel* in2, size_t count, uint32_t top);
using SpanMap3 = void(Output out, const Pixel* in1, const Pixel* in2, const Pixel* in3, size_t count,
                      uint32_t top);

// A lookup table for each channel. `placed` holds the same entries shifted to their place in a pixel; fill it
// with placeEntries from kernels/channel_tables.h.
struct alignas(64) ChannelTables {
  uint8_t red[256], green[256], blue[256];
  struct {
    uint32_t red[256], green[256], blue[256];
  } placed;
};
using SpanLookup = void(Output out, const Pixel* in, size_t count, uint32_t top, const ChannelTables& tables);

// A piecewise linear map of a channel, with v its old value, or 255 - v if the line is falling:
// ((256 * v + before) * slope >> 16) + offset, clamped to 0..65535, >> shift, at most 255.
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
using SpanLinear = void(Output out, const Pixel* in, size_t count, uint32_t top, const LinearMaps& lines);

// Counts the words with `color`'s red, green and blue.
using SpanCount = uint32_t(const Pixel* in, size_t count, uint32_t color);

// A histogram per channel: the sum of its lanes. With several lanes, neighbours of the same value need not
// wait for each other.
constexpr size_t kCountingLanes = 4;
struct ChannelCounts {
  uint32_t red[kCountingLanes][256], green[kCountingLanes][256], blue[kCountingLanes][256];
};
// Adds the words to `counts`.
using SpanHistogram = void(const Pixel* in, size_t count, ChannelCounts& counts);

// Whether every pixel has `color`'s red, green and blue, or channels that differ by at most `tolerance` (0 to
// 255). May stop at the first pixel that fails.
using SpanIsColor = bool(const Pixel* in, size_t count, uint32_t color);
using SpanIsGray = bool(const Pixel* in, size_t count, int32_t tolerance);
// Counts colourful words: not all channels are below 30, and green differs from blue or from red by more than
// `threshold`, -1 to 255.
using SpanCountBeyond = uint32_t(const Pixel* in, size_t count, int32_t threshold);

// The index of the first word with `color`'s red, green and blue; `count` if there is none.
using SpanFind = size_t(const Pixel* in, size_t count, uint32_t color);
// Whether two spans have the same colours.
using SpanCompare = bool(const Pixel* in1, const Pixel* in2, size_t count);

// The index of the first pixel of `in` whose red, green and blue are not all equal, where `out` is not black;
// `count` if there is none. `out` is black and white, or `in`.
using SpanFindUncovered = size_t(const Pixel* in, const Pixel* out, size_t count);
using SpanFindUncoveredRGB24 = size_t(const uint8_t* in, const uint8_t* out, size_t count);

// Words with `searched`'s red, green and blue become `replacement`; others keep their colour, or become
// `background`. The top bytes of the three colours are ignored.
using SpanReplaceColor = void(Output out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                              uint32_t replacement);
using SpanExtractColor = void(Output out, const Pixel* in, size_t count, uint32_t top, uint32_t searched,
                              uint32_t replacement, uint32_t background);

// (v - gray) * factor / 255 + gray in each channel, with gray = (r + 2 * g + b) / 4 rounded down: the product
// wraps in 32 bits, the quotient is truncated toward zero, the sum clamped to 0..255.
using SpanSaturate = void(Output out, const Pixel* in, size_t count, uint32_t top, int32_t factor);

// The state of a tint of one picture. Start with known = {}.
struct Tint {
  uint32_t gray;   // weights of red, green and blue in the brightness, in 255ths; top byte ignored
  uint32_t sepia;  // share of the brightness in each channel, likewise
  // Cache of pixels whose results are slow to compute.
  struct Known {
    uint32_t pixel, result;
  } known[256];
  // Set by the first span.
  bool isPrepared = false;
  float lean[3] = {};
};
using SpanTint = void(Output out, const Pixel* in, size_t count, uint32_t top, Tint& tint);

// Tetrahedral interpolation in a 3D lookup table. Its entries are at the channel values 0, 17, 34 ... 255; an
// entry after those is unused. Each channel of a result is the weighted sum of four entries in 17ths, divided
// by 17, clamped to 0..255 and truncated; NaN gives 0.
constexpr size_t kCubeSide = 18;  // entries along an axis, of which the first 16 are used
// A table, with nodes in fixed point that give nearly all pixels faster. Fill it with prepareCube from
// kernels/cube.h, or set only `entries` and hasNodes = false.
struct Cube {
  // kCubeSide^3 entries of three doubles (red, green, blue), blue changing fastest, at any address. One
  // double after the last used entry may be read.
  const double* entries;
  bool hasNodes;
  int32_t shift;  // from a sum of weighted nodes to 256ths
  int32_t start;  // added to each sum
  uint8_t sure;   // the largest fraction in 256ths with which a result is sure
  struct alignas(8) Node {
    int16_t blue, green, red, unused;
  } nodes[16 * 16 * 16 + 274];  // by red, green and blue index; the last 274 are read, but have weight 0
};
using SpanCube = void(Pixel* out, const Pixel* in, size_t count, uint32_t top, const Cube& cube);

// A toned monochrome: the weights of the brightness in 1024ths, and the tone added to it in each channel, all
// signed in two's complement.
struct Sepia {
  uint32_t redWeight, greenWeight, blueWeight;
  uint32_t red, green, blue;
};
using SpanSepia = void(Output out, const Pixel* in, size_t count, uint32_t top, const Sepia& sepia);

// Sums of some spans of samples at once, each with its negative samples and the others apart, modulo 2^32.
// Samples may lie at any address; unsigned ones count from the middle of their range.
constexpr size_t kSampleSpans = 4;
struct SampleSpan {
  const uint8_t* samples;
  size_t count;
};
struct Excursions {
  uint32_t negative, positive;
};
using SampleSpans = SampleSpan[kSampleSpans];
using SpanExcursions = Excursions[kSampleSpans];
using SampleSums = void(const SampleSpans& spans, SpanExcursions& sums);
// Writes `inside` in the columns where `row` lies between the row `centre` and one of two ends, or is one of
// these; `outside` in the others.
using SpanBars = void(Pixel* out, const int32_t* end1, const int32_t* end2, size_t count, int32_t row,
                      int32_t centre, uint32_t inside, uint32_t outside);

// The one list of kernels, with the type of each. It generates the slots of a table, the declarations of each
// instruction set, and the lists that the tests and the benchmark run.
#define ZVR_KERNELS(X)                                                                        \
  X(SpanUnpack, unpackRGB24)                                                                  \
  X(SpanPack, packRGB24)                                                                      \
  X(SpanMap, invert) /* 255 - v in each channel */                                            \
  X(SpanMap, invertRGB24)                                                                     \
  X(SpanMap, invertGray)   /* the same where red = green = blue; other pixels stay */         \
  X(SpanMap, grayFromTop8) /* gray pixels from the top byte a */                              \
  X(SpanMap, grayFromTop7) /* the same from its lower 7 bits, as a * 2 + (a & 1) */           \
  X(SpanFill, fill)                                                                           \
  X(SpanMove, move)                                                                           \
  X(SpanMerge, redIntoBlue) /* copies the red of `in` into the blue of `out` */               \
  X(SpanMerge, invertedRedIntoBlue)                                                           \
  X(SpanMap2, max) /* the larger value in each channel */                                     \
  X(SpanMap2, maxRGB24)                                                                       \
  X(SpanMap3, combineChannels) /* red of the first, green of the second, blue of the third */ \
  X(SpanMap3, combineRGB24)                                                                   \
  X(SpanLookup, mapThroughTables)                                                             \
  X(SpanLinear, mapPiecewiseLinear)                                                           \
  X(SpanLinear, mapPiecewiseLinearRGB24)                                                      \
  X(SpanCount, countColor)                                                                    \
  X(SpanHistogram, histogram)                                                                 \
  X(SpanIsColor, isAllColor)                                                                  \
  X(SpanIsGray, isAllGray)                                                                    \
  X(SpanCountBeyond, countColorful)                                                           \
  X(SpanFind, findColor)                                                                      \
  X(SpanCompare, areEqual)                                                                    \
  X(SpanFindUncovered, findUncovered)                                                         \
  X(SpanFindUncoveredRGB24, findUncoveredRGB24)                                               \
  X(SpanReplaceColor, replaceColor)                                                           \
  X(SpanExtractColor, extractColor)                                                           \
  X(SpanSaturate, saturate)                                                                   \
  X(SpanTint, tint)                                                                           \
  X(SpanCube, mapThroughCube)                                                                 \
  X(SpanSepia, sepia)                                                                         \
  X(SampleSums, sumInt8)                                                                      \
  X(SampleSums, sumUInt8)                                                                     \
  X(SampleSums, sumInt16)                                                                     \
  X(SampleSums, sumUInt16)                                                                    \
  X(SpanBars, bars)

// The kernels of one instruction set.
struct Table {
  const char* name;  // "sse2"
#define ZVR_SLOT(type, kernel) type* kernel;
  ZVR_KERNELS(ZVR_SLOT)
#undef ZVR_SLOT
};

// Lists the kernels of the enclosing namespace in the order of a table's slots.
#define ZVR_ADDRESS(type, kernel) kernel,

// The fastest table for this processor; chosen once.
const Table& best();

// The tables that this processor can run, slowest first (tests and the benchmark compare them).
struct Tables {
  const Table* table[3];
  int count;
};
Tables supported();

}  // namespace kernels
