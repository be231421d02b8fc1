// Draws sound samples as a waveform. All arithmetic is in extended precision; a column's values are rounded
// to double between steps, the moving average and the scale are not.

#include "frame/errors.h"
#include "frame/graphics.h"
#include "frame/held.h"
#include "frame/text.h"
#include "kernels/convert.h"
#include "operations/memory_blocks.h"
#include "operations/operations.h"
#include "operations/outline.h"
#include "picture/rows.h"

namespace {

constexpr int32_t kUsualHeight = 500;

// A sample format.
struct SampleKind {
  int32_t bits;  // the code that callers pass
  int32_t size;  // bytes
  int32_t fullScale;
  int32_t valueOfZero;  // the value of a sample of zero bytes
  kernels::SampleSums* kernels::Table::*sums;
};
constexpr SampleKind kSampleKinds[] = {
    {7, 1, 127, 0, &kernels::Table::sumInt8},
    {8, 1, 127, -128, &kernels::Table::sumUInt8},
    {15, 2, 32767, 0, &kernels::Table::sumInt16},
    {16, 2, 32767, -32768, &kernels::Table::sumUInt16},
};

const SampleKind* sampleKindOf(int32_t bits) {
  for (const SampleKind& kind : kSampleKinds) {
    if (kind.bits == bits) return &kind;
  }
  return nullptr;
}

// The samples of a block. Bytes past its end read as 0.
class Samples {
 public:
  Samples(const rbData& block, const SampleKind& kind)
      : bytes_(block.data()),
        kind_(kind),
        sums_(kernels::best().*kind.sums),
        length_(bytesWithin(block, INT64_MAX)) {}

  // The samples start .. end - 1.
  struct Range {
    int32_t start, end;
  };
  void sum(const Range (&ranges)[kernels::kSampleSpans], kernels::SpanExcursions& sums) const {
    const int64_t whole = length_ / kind_.size;
    kernels::SampleSpans spans = {};
    for (size_t k = 0; k < kernels::kSampleSpans; ++k) {
      const int64_t stop = ranges[k].end < whole ? ranges[k].end : whole;
      if (ranges[k].start < stop)
        spans[k] = {bytes_ + int64_t{ranges[k].start} * kind_.size,
                    static_cast<size_t>(stop - ranges[k].start)};
    }
    sums_(spans, sums);
    for (size_t k = 0; k < kernels::kSampleSpans; ++k) addPastEnd(ranges[k], whole, sums[k]);
  }

 private:
  void addPastEnd(const Range& range, int64_t whole, kernels::Excursions& sums) const {
    int64_t next = range.start < whole ? whole : range.start;
    if (next == whole && next < range.end && length_ % kind_.size != 0) {
      const uint8_t cut[2] = {bytes_[length_ - 1], 0};
      kernels::SpanExcursions more;
      sums_({{cut, 1}}, more);
      sums.negative += more[0].negative;
      sums.positive += more[0].positive;
      ++next;
    }
    if (next < range.end) {
      sums.negative += static_cast<uint32_t>(range.end - next) * static_cast<uint32_t>(kind_.valueOfZero);
    }
  }

  const uint8_t* bytes_;
  const SampleKind& kind_;
  kernels::SampleSums* sums_;
  int64_t length_;
};

// One value per column, with a little room after the last.
class Envelope {
 public:
  explicit Envelope(int32_t width) : width_(width), memory_(int64_t{width} * 8 + 20) {}
  explicit operator bool() const { return static_cast<bool>(memory_); }
  double& operator[](int32_t x) const { return reinterpret_cast<double*>(memory_.get())[x]; }

  // An exponential moving average.
  void smooth(long double weight) {
    long double average = (*this)[0];
    for (int32_t x = 0; x < width_; ++x) {
      average = average * (1 - weight) + (*this)[x] * weight;
      (*this)[x] = static_cast<double>(average);
    }
  }
  void scale(int32_t factor, long double divisor) {
    for (int32_t x = 0; x < width_; ++x) {
      (*this)[x] = static_cast<double>(static_cast<long double>((*this)[x]) * factor / divisor);
    }
  }
  // Distances from a row become rows. Positive ones lie below it; NaN lies far above it.
  void countFrom(int32_t row) {
    for (int32_t x = 0; x < width_; ++x) rows()[x] = toInt32(static_cast<long double>(row) + (*this)[x]);
  }
  // They take the place of the values, which are twice as wide.
  int32_t* rows() const { return reinterpret_cast<int32_t*>(memory_.get()); }

 private:
  int32_t width_;
  Scratch memory_;
};

// The means of the negative and of the positive excursions in each column's share of the samples; `fit` turns
// them into rows.
struct Waveform {
  int32_t width, height, centre;
  Envelope negative, positive;

  Waveform(int32_t w, int32_t h) : width(w), height(h), centre(h >> 1), negative(w), positive(w) {}

  // Returns the largest distance from 0.
  double measure(const Samples& samples, int32_t count) {
    double peak = 0;
    // A column of each quarter at a time: see kernels::SampleSums.
    const int32_t quarter = (width + 3) / 4;
    Samples::Range ranges[kernels::kSampleSpans] = {};
    for (int32_t i = 0; i < quarter; ++i) {
      kernels::SpanExcursions sums;
      for (int32_t q = 0; q < 4; ++q) {
        const int32_t x = q * quarter + i;
        const int32_t start = i > 0 || x >= width ? ranges[q].end : boundary(x, count);
        ranges[q] = {start, x < width ? boundary(x + 1, count) : start};
      }
      samples.sum(ranges, sums);
      for (int32_t q = 0; q < 4; ++q) {
        const int32_t x = q * quarter + i;
        if (x >= width) break;
        // A column without samples gives 0 / 0, on purpose.
        const long double half = (ranges[q].end - ranges[q].start) * 0.5L;
        negative[x] = static_cast<double>(static_cast<int32_t>(sums[q].negative) / half);
        positive[x] = static_cast<double>(static_cast<int32_t>(sums[q].positive) / half);
        if (positive[x] > peak) peak = positive[x];
        if (-negative[x] > peak) peak = -negative[x];
      }
    }
    return peak;
  }

  // The first sample of column x. The order of operations matters: another one rounds to other samples.
  int32_t boundary(int32_t x, int32_t count) const {
    return toInt32(static_cast<long double>(x) / width * count);
  }

  // Smooths the values and scales them to pixels; `fullScale` is the value of the whole height.
  void fit(int32_t smoothing, long double fullScale) {
    const long double weight = 2.0F / (static_cast<long double>(smoothing) + 1);
    if (weight > 0) {
      negative.smooth(weight);
      positive.smooth(weight);
      // Changes only the rounding, on purpose.
      fullScale = weight * fullScale + (1 - weight) * fullScale;
    }
    negative.scale(height, fullScale);
    positive.scale(height, fullScale);
    negative.countFrom(centre);
    positive.countFrom(centre);
  }
};

// In each column a bar from the end of the negative excursion, across the centre, to the end of the positive
// one. Either end may lie on the wrong side of the centre.
void drawBars(PictureWriter& result, const Waveform& wave, uint32_t foreground, uint32_t background) {
  const auto width = static_cast<size_t>(wave.width);
  result.row = result.GetRow(0);
  RowTarget target(result, Region::whole(result));
  const uint32_t top = target.topByte();
  for (int32_t y = 0; y < wave.height; ++y) {
    // Bars are drawn in row 0 even where the background is lost there.
    const uint32_t behind = y == 0 && result.losesFirstRow() ? 0 : background;
    for (size_t left = 0, count; left < width; left += count) {
      count = width - left < RowSource::kTile ? width - left : RowSource::kTile;
      kernels::best().bars(target.span(left), wave.negative.rows() + left, wave.positive.rows() + left, count,
                           y, wave.centre, foreground | top, behind | top);
      target.finish(left, count);
    }
    target.nextRow();
  }
}

// Two polylines along the ends of the bars, starting at the centre of the first column. Calls
// draw(x0, y0, x1, y1) for each segment.
template <typename Draw>
void traceOutline(const Waveform& wave, const Draw& draw) {
  int32_t fromX = 0, fromNegative = wave.centre, fromPositive = wave.centre;
  for (int32_t x = 0; x < wave.width; ++x) {
    const int32_t toNegative = wave.negative.rows()[x], toPositive = wave.positive.rows()[x];
    draw(fromX, fromNegative, x, toNegative);
    draw(fromX, fromPositive, x, toPositive);
    fromX = x;
    fromNegative = toNegative;
    fromPositive = toPositive;
  }
}

// Uses the host's line drawing.
void drawWideOutline(REALpictureStruct* picture, const Waveform& wave, int32_t penSize, RBColor color) {
  Held<REALgraphicsStruct> graphics(REALGetPictureGraphics(picture));
  if (!graphics) return;
  SetGraphicsForeColor(graphics.get(), color);
  SetGraphicsPenHeight(graphics.get(), penSize);
  SetGraphicsPenWidth(graphics.get(), penSize);
  const auto half = static_cast<uint32_t>(penSize >> 1);
  const auto shifted = [half](int32_t at) { return static_cast<int32_t>(static_cast<uint32_t>(at) - half); };
  traceOutline(wave, [&](int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    GraphicsDrawLine(graphics.get(), shifted(x0), shifted(y0), shifted(x1), shifted(y1));
  });
}

}  // namespace

REALpictureStruct* RenderSamples(REALmemoryBlockStruct* block, int32_t count, int32_t smoothing,
                                 int32_t width, int32_t height, int32_t outlineWidth, RBColor background,
                                 RBColor foreground, RBColor outline, int32_t bits, RBBoolean autoScale) {
  if (!block) {
    RaiseException(kNilObjectException, "memoryblock is nil");
    return nullptr;
  }
  setOutlineColor(outline);
  const SampleKind* kind = sampleKindOf(bits);
  const rbData data(block);
  if (!kind || !data.data()) return nullptr;
  if (count < 1) count = data.length() / kind->size;
  if (height < 1) height = kUsualHeight;
  if (width < 1) width = count;
  // No picture of this size can be created, so don't measure.
  if (width < 1 || width > kLargestPictureSide || height > kLargestPictureSide) return nullptr;

  Waveform wave(width, height);
  if (!wave.negative || !wave.positive) return nullptr;
  const double peak = wave.measure(Samples(data, *kind), count);
  wave.fit(smoothing, autoScale ? 2 * static_cast<long double>(peak) : kind->fullScale);

  PictureWriter result;
  if (!result.NewPictureWriter(width, height)) return nullptr;
  drawBars(result, wave, foreground & 0xFFFFFF, background & 0xFFFFFF);
  if (outlineWidth == 1) {
    traceOutline(wave, [&](int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
      DrawAntialiasedLine(result, x0, y0, x1, y1);
    });
  }
  Held<REALpictureStruct> picture(result.RenderPictureWriter());
  if (picture && outlineWidth > 1) drawWideOutline(picture.get(), wave, outlineWidth, outline);
  return picture.release();
}
