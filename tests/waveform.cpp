// RenderSamplesZVR by its plain definition: one sample and one pixel at a time.

#include <algorithm>
#include <cmath>

#include "tests/models.h"

namespace {

int whole(const Value& value) { return static_cast<int>(std::get<int64_t>(value)); }

class Waveform {
 public:
  explicit Waveform(const std::vector<Value>& given) : given_(given) {
    if (count_ < 1) count_ = static_cast<int>(bytes_.size()) / sampleSize();
    if (height_ < 1) height_ = 500;
    if (width_ < 1) width_ = count_;
  }

  bool isPossible() const {
    const bool isKnown = bits_ == 7 || bits_ == 8 || bits_ == 15 || bits_ == 16;
    return isKnown && !bytes_.empty() && width_ > 0 && width_ <= 32767 && height_ <= 32767;
  }

  Pixels draw() {
    centre_ = height_ >> 1;
    measure();
    drawBars();
    if (outline_ == 1) trace([this](int a, int b, int c, int d) { line(a, b, c, d); });
    const int h = outline_ >> 1;
    const auto at = [h](int value) {
      return static_cast<int32_t>(static_cast<uint32_t>(int64_t{value} - h));
    };
    if (outline_ > 1) trace([&](int a, int b, int c, int d) { stamp(at(a), at(b), at(c), at(d)); });
    for (uint32_t& word : pixels_.colors) word |= opaqueTopByte() << 24;
    return pixels_;
  }

 private:
  int sampleSize() const { return bits_ > 8 ? 2 : 1; }

  int sample(size_t index) const {
    int bits = 0;
    for (size_t i = 0, at = index * static_cast<size_t>(sampleSize()); i < 2; ++i, ++at) {
      if (static_cast<int>(i) < sampleSize() && at < bytes_.size()) bits |= bytes_[at] << (8 * i);
    }
    const int middle = sampleSize() == 1 ? 0x80 : 0x8000;
    const bool isSigned = bits_ == 7 || bits_ == 15;
    return (isSigned ? bits ^ middle : bits) - middle;
  }

  void measure() {
    using Extended = long double;
    const Extended w = width_, n = count_;
    double peak = 0;
    for (int i = 1; i <= width_; ++i) {
      const auto start = static_cast<int>((i - 1) / w * n), end = static_cast<int>(i / w * n);
      uint32_t negative = 0, positive = 0;  // which wrap
      for (int s = start; s < end; ++s) {
        const int value = sample(static_cast<size_t>(s));
        (value < 0 ? negative : positive) += static_cast<uint32_t>(value);
      }
      const Extended half = (end - start) * Extended(0.5);
      negative_.push_back(static_cast<double>(static_cast<int32_t>(negative) / half));
      positive_.push_back(static_cast<double>(static_cast<int32_t>(positive) / half));
      for (double value : {positive_.back(), -negative_.back()}) {
        if (value > peak) peak = value;
      }
    }
    Extended scale = autoScale_ ? Extended(2) * peak : sampleSize() == 1 ? 127 : 32767;
    const Extended alpha = 2 / (Extended(smooth_) + 1);
    for (auto* values : {&negative_, &positive_}) {
      if (!(alpha > 0)) break;
      Extended y = values->front();
      for (double& value : *values) value = static_cast<double>(y = y * (1 - alpha) + value * alpha);
    }
    if (alpha > 0) scale = alpha * scale + (1 - alpha) * scale;
    for (auto* values : {&negative_, &positive_}) {
      for (double& value : *values) value = static_cast<double>(value * Extended(height_) / scale);
    }
  }

  int rowOf(double value) const {
    const long double row = static_cast<long double>(centre_) + value;
    return std::fabs(row) < 2147483648.0L ? static_cast<int>(row) : INT32_MIN;
  }

  void drawBars() {
    pixels_ = asWritten({width_, height_, background_});
    for (int x = 0; x < width_; ++x) {
      for (const auto* values : {&negative_, &positive_}) {
        const int y = rowOf((*values)[static_cast<size_t>(x)]);
        const int first = std::min(std::max(std::min(y, centre_), 0), height_ - 1);
        const int last = std::min(std::max(y, centre_), height_ - 1);
        for (int row = first; row <= last; ++row) pixels_.at(x, row) = foreground_;
      }
    }
  }

  template <typename Draw>
  void trace(const Draw& draw) const {
    int fromX = 0, from[2] = {centre_, centre_};
    for (int x = 0; x < width_; fromX = x++) {
      for (int side = 0; side < 2; ++side) {
        const int y = rowOf((side == 0 ? negative_ : positive_)[static_cast<size_t>(x)]);
        draw(fromX, from[side], x, y);
        from[side] = y;
      }
    }
  }

  void plot(int x, int y, int w) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    Rgb& p = pixels_.at(x, y);
    const Rgb o = outlineColor_;
    const auto mix = [w](int to, int from) { return (to * (255 - w) + from * w) / 255; };
    p = rgb(mix(red(o), red(p)), mix(green(o), blue(p)), mix(blue(o), green(p)));
  }

  void line(int x0, int y0, int x1, int y1) {
    if (y0 > y1) {
      std::swap(x0, x1);
      std::swap(y0, y1);
    }
    plot(x0, y0, 0);
    const int dx = x1 - x0;  // at most 1 to either side: from column to column
    const int dy = static_cast<int16_t>(int64_t{y1} - y0);
    if (dx == 0 || dy == 0 || dy == 1) {
      for (int i = 1; i <= std::max(dy, std::abs(dx)); ++i) plot(x0 + i * dx, y0 + std::min(i, dy), 0);
      return;
    }
    const int slope = 65536 / std::max(dy, 1);
    for (int i = 1; i < dy; ++i) {
      // One column in `dy` rows: the fraction never wraps.
      const int w = (i * slope) >> 8;
      plot(x0, y0 + i, w);
      plot(x0 + dx, y0 + i, 255 - w);
    }
    plot(x1, y1, 0);
  }

  // As the host draws lines: the pen's rectangle at each point, however far away. Points are counted from the
  // left end, those of a steep line from the upper one.
  void stamp(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
    const bool isSteep = std::abs(y1 - y0) > std::abs(x1 - x0);
    if (isSteep ? y1 < y0 : x1 < x0) return stamp(x1, y1, x0, y0);
    const int64_t steps = std::max<int64_t>(isSteep ? y1 - y0 : x1 - x0, 1);
    const int64_t start = isSteep ? y0 : x0, extent = isSteep ? height_ : width_;
    for (int64_t i = std::max<int64_t>(-start - outline_, 0); i <= std::min(steps, extent - start); ++i) {
      const auto along = [=](int64_t from, int64_t to) {
        return from + std::llround(static_cast<double>((to - from) * i) / static_cast<double>(steps));
      };
      const int64_t left = along(x0, x1), top = along(y0, y1);
      for (int64_t y = std::max<int64_t>(top, 0); y < std::min<int64_t>(top + outline_, height_); ++y) {
        for (int64_t x = std::max<int64_t>(left, 0); x < std::min<int64_t>(left + outline_, width_); ++x)
          pixels_.at(static_cast<int>(x), static_cast<int>(y)) = outlineColor_;
      }
    }
  }

  const std::vector<Value>& given_;
  const Bytes& bytes_ = std::get<Bytes>(given_[0]);
  int count_ = whole(given_[1]), width_ = whole(given_[3]), height_ = whole(given_[4]);
  const int smooth_ = whole(given_[2]), outline_ = whole(given_[5]), bits_ = whole(given_[9]);
  const Rgb background_ = colorIn(given_[6]), foreground_ = colorIn(given_[7]),
            outlineColor_ = colorIn(given_[8]);
  const bool autoScale_ = std::get<bool>(given_[10]);
  int centre_ = 0;
  std::vector<double> negative_, positive_;
  Pixels pixels_;
};

}  // namespace

Value waveform(const std::vector<Value>& arguments) {
  if (isNil(arguments[0])) return {};
  Waveform waveform(arguments);
  return waveform.isPossible() ? Value(waveform.draw()) : Value();
}
