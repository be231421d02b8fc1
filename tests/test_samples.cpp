// Waveforms from sound samples, against a model that takes one sample and one pixel at a time.

#include <algorithm>
#include <cmath>

#include "frame/entry_points.h"
#include "tests/support.h"

namespace {

using host::MemoryBlockRef;
using Bytes = std::vector<uint8_t>;

struct Request {
  Bytes bytes;
  int count = 0, smooth = 1, width = 0, height = 0, outline = 0;
  Rgb background = 0x88B5C4, foreground = 0x274C5A, outlineColor = 0x203F4E;
  int bits = 8;
  bool autoScale = false;
};

std::ostream& operator<<(std::ostream& out, const Request& r) {
  return out << r.bytes.size() << " bytes of Bits " << r.bits << ", count " << r.count << ", smooth "
             << r.smooth << ", " << r.width << " x " << r.height << ", outline " << r.outline
             << (r.autoScale ? ", scaled" : "");
}

class Samples : public HostTest {
 protected:
  host::Outcome request(const Request& r, const MemoryBlockRef& block) {
    std::vector<host::Value> arguments = numbers({r.count, r.smooth, r.width, r.height, r.outline});
    arguments.insert(arguments.begin(), block);
    for (Rgb color : {r.background, r.foreground, r.outlineColor}) arguments.emplace_back(host::Color{color});
    arguments.emplace_back(int64_t{r.bits});
    arguments.emplace_back(r.autoScale);
    return call("RenderSamplesZVR", nullptr, arguments);
  }
  host::PictureRef render(const Request& r, const MemoryBlockRef& block) {
    const host::Outcome outcome = request(r, block);
    EXPECT_FALSE(outcome.exception) << r;
    return std::get<host::PictureRef>(outcome.result);
  }
  host::PictureRef render(const Request& r) {
    return render(r, host::newMemoryBlock(r.bytes.data(), r.bytes.size()));
  }
};

// ---- The model ----

template <typename Service>
Service* service(const char* name) {
  return reinterpret_cast<Service*>(host::resolve(name));
}

class Model {
 public:
  explicit Model(Request request) : r_(std::move(request)) {
    if (r_.count < 1) r_.count = static_cast<int>(r_.bytes.size()) / sampleSize();
    if (r_.height < 1) r_.height = 500;
    if (r_.width < 1) r_.width = r_.count;
    centre_ = r_.height >> 1;
    measure();
    drawBars();
    if (r_.outline == 1) trace([this](int a, int b, int c, int d) { line(a, b, c, d); });
  }

  Pixels pixels() const {
    if (r_.outline < 2) return pixels_;
    return withHostLines();
  }

 private:
  int sampleSize() const { return r_.bits > 8 ? 2 : 1; }

  int sample(size_t index) const {
    int bits = 0;
    for (size_t i = 0, at = index * static_cast<size_t>(sampleSize()); i < 2; ++i, ++at) {
      if (static_cast<int>(i) < sampleSize() && at < r_.bytes.size()) bits |= r_.bytes[at] << (8 * i);
    }
    switch (r_.bits) {
      case 7:
        return static_cast<int8_t>(bits);
      case 8:
        return bits - 128;
      case 15:
        return static_cast<int16_t>(bits);
      default:
        return bits - 32768;
    }
  }

  void measure() {
    using Extended = long double;
    const Extended w = r_.width, n = r_.count;
    double peak = 0;
    for (int i = 1; i <= r_.width; ++i) {
      const auto start = static_cast<int>((i - 1) / w * n), end = static_cast<int>(i / w * n);
      int negative = 0, positive = 0;
      for (int s = start; s < end; ++s) {
        const int value = sample(static_cast<size_t>(s));
        (value < 0 ? negative : positive) += value;
      }
      negative_.push_back(static_cast<double>(negative / ((end - start) * Extended(0.5))));
      positive_.push_back(static_cast<double>(positive / ((end - start) * Extended(0.5))));
      for (double value : {positive_.back(), -negative_.back()}) {
        if (value > peak) peak = value;
      }
    }
    Extended scale = r_.autoScale ? Extended(2) * peak : sampleSize() == 1 ? 127 : 32767;
    const Extended alpha = 2 / (Extended(r_.smooth) + 1);
    for (auto* values : {&negative_, &positive_}) {
      if (!(alpha > 0)) break;
      Extended y = values->front();
      for (double& value : *values) value = static_cast<double>(y = y * (1 - alpha) + value * alpha);
    }
    if (alpha > 0) scale = alpha * scale + (1 - alpha) * scale;
    for (auto* values : {&negative_, &positive_}) {
      for (double& value : *values) value = static_cast<double>(value * Extended(r_.height) / scale);
    }
  }

  int rowOf(double value) const {
    const long double row = static_cast<long double>(centre_) + value;
    return std::fabs(row) < 2147483648.0L ? static_cast<int>(row) : INT32_MIN;
  }

  void drawBars() {
    pixels_ = asWritten({r_.width, r_.height, r_.background});
    for (int x = 0; x < r_.width; ++x) {
      for (const auto* values : {&negative_, &positive_}) {
        const int y = rowOf((*values)[static_cast<size_t>(x)]);
        const int first = std::min(std::max(std::min(y, centre_), 0), r_.height - 1);
        const int last = std::min(std::max(y, centre_), r_.height - 1);
        for (int row = first; row <= last; ++row) pixels_.at(x, row) = r_.foreground;
      }
    }
  }

  template <typename Draw>
  void trace(const Draw& draw) const {
    int fromX = 0, from[2] = {centre_, centre_};
    for (int x = 0; x < r_.width; fromX = x++) {
      for (int side = 0; side < 2; ++side) {
        const int y = rowOf((side == 0 ? negative_ : positive_)[static_cast<size_t>(x)]);
        draw(fromX, from[side], x, y);
        from[side] = y;
      }
    }
  }

  void plot(int x, int y, int w) {
    if (x < 0 || y < 0 || x >= r_.width || y >= r_.height) return;
    Rgb& p = pixels_.at(x, y);
    const Rgb o = r_.outlineColor;
    const auto mix = [w](int to, int from) { return (to * (255 - w) + from * w) / 255; };
    p = rgb(mix(red(o), red(p)), mix(green(o), blue(p)), mix(blue(o), green(p)));
  }

  void line(int x0, int y0, int x1, int y1) {
    if (y0 > y1) {
      std::swap(x0, x1);
      std::swap(y0, y1);
    }
    plot(x0, y0, 0);
    const int dx = x1 - x0, dy = static_cast<int16_t>(int64_t{y1} - y0);
    const int step = dx < 0 ? -1 : 1, adx = std::abs(dx);
    ASSERT_LE(adx, 1) << "outlines go from column to column";
    if (dy == 0) {
      if (adx == 1) plot(x0 + step, y0, 0);
      return;
    }
    if (adx == 0 || dy == 1) {
      for (int i = 1; i <= dy; ++i) plot(x0 + i * step * adx, y0 + i, 0);
      return;
    }
    const int slope = dy > 1 ? 65536 / dy : 0;
    for (int i = 1; i < dy; ++i) {
      // One column in `dy` rows: the fraction never wraps.
      const int w = (i * slope) >> 8;
      plot(x0, y0 + i, w);
      plot(x0 + step, y0 + i, 255 - w);
    }
    plot(x1, y1, 0);
  }

  // The host's own lines, on a picture of the host's.
  Pixels withHostLines() const {
    const host::PictureRef picture = makePicture(pixels_);
    const auto graphics = host::Ref<REALgraphicsStruct>::adopt(
        service<decltype(REALGetPictureGraphics)::Function>("pluginPictureGraphicsGetter")(picture.get()));
    const auto setColor = service<decltype(REALSetPropValueUInt32)::Function>("REALSetPropValueUInt32");
    const auto setNumber = service<decltype(REALSetPropValueInt32)::Function>("REALSetPropValueInt");
    const auto draw = service<decltype(GraphicsDrawLine)::Function>("RuntimeGraphicsDrawLine");
    setColor(graphics.get(), "ForeColor", r_.outlineColor);
    setNumber(graphics.get(), "PenWidth", r_.outline);
    setNumber(graphics.get(), "PenHeight", r_.outline);
    const int64_t h = r_.outline >> 1;
    const auto at = [h](int value) { return static_cast<int>(static_cast<uint32_t>(value - h)); };
    trace([&](int a, int b, int c, int d) { draw(graphics.get(), at(a), at(b), at(c), at(d)); });
    return colorsOf(picture);
  }

  Request r_;
  int centre_ = 0;
  std::vector<double> negative_, positive_;
  Pixels pixels_;
};

// ---- Random requests ----

Bytes randomBytes(Random& random, size_t size) {
  Bytes bytes(size);
  const int kind = random.between(0, 4);
  const double pitch = random.between(1, 400) / 1000.0;
  constexpr uint8_t kExtremes[] = {0, 255, 128, 127};
  for (size_t i = 0; i < size; ++i) {
    const auto noise = static_cast<uint8_t>(random.word());
    const auto tone = static_cast<uint8_t>(128 + 120 * std::sin(static_cast<double>(i) * pitch));
    const uint8_t kinds[] = {noise, tone, kExtremes[noise & 3], kExtremes[i / 100 & 3],
                             noise < 20 ? noise : uint8_t{128}};
    bytes[i] = kinds[kind];
  }
  return bytes;
}

Request randomRequest(Random& random) {
  constexpr int kBits[] = {7, 8, 15, 16}, kSmooth[] = {INT32_MIN, -2, -1, 0, 1, 1, 1, 2, 3, 20, INT32_MAX};
  constexpr int kOutlines[] = {-1, 0, 0, 1, 1, 1, 2, 3, 8};
  Request r;
  r.bytes = randomBytes(random, static_cast<size_t>(random.between(2, random.chance(50) ? 40 : 5000)));
  r.bits = kBits[random.between(0, 3)];
  const int held = static_cast<int>(r.bytes.size()) / (r.bits > 8 ? 2 : 1);
  if (random.chance(40)) r.count = random.between(1, held * 2 + 1);
  r.smooth = kSmooth[random.between(0, 10)];
  // One column a sample, at times.
  r.width = held < 700 && random.chance(25) ? random.between(-1, 0) : random.side();
  r.height = random.chance(3) ? random.between(-1, 0) : random.between(1, 120);
  r.outline = kOutlines[random.between(0, 8)];
  r.background = random.color();
  r.foreground = random.color();
  r.outlineColor = random.color();
  r.autoScale = random.chance(40);
  return r;
}

TEST_F(Samples, AreDrawnAsTheModelDrawsThem) {
  Random random(20);
  for (int i = 0; i < 600; ++i) {
    const Request r = randomRequest(random);
    const host::PictureRef picture = render(r);
    ASSERT_TRUE(picture) << r;
    EXPECT_EQ(colorsOf(picture), Model(r).pixels()) << r;
    if (road() == host::Road::gdk) continue;
    for (const uint32_t word : wordsOf(picture)) ASSERT_EQ(word >> 24, opaqueTopByte()) << r;
  }
}

// ---- Cases worked out by hand ----

struct BarCase {
  const char* what;
  Request request;
  int width, height, first, last;  // the bar
  int column = 0;
};

Request requestOf(Bytes bytes, int bits, int count, int width, int height, bool autoScale = false) {
  Request r;
  r.bytes = std::move(bytes);
  r.bits = bits;
  r.count = count;
  r.width = width;
  r.height = height;
  r.autoScale = autoScale;
  return r;
}

Request smoothed(Request r, int smooth) {
  r.smooth = smooth;
  return r;
}

const BarCase kBars[] = {
    {"silence divided by its peak", requestOf(Bytes(40, 128), 8, 0, 10, 101, true), 10, 101, 0, 50},
    {"columns without samples", requestOf(Bytes(3, 128), 8, 0, 10, 20), 10, 20, 0, 10},
    {"negative is up", requestOf({255, 255, 255, 255}, 7, 0, 1, 127), 1, 127, 61, 63},
    {"positive is down", requestOf({1, 0, 1, 0}, 15, 0, 1, 32767), 1, 32767, 16383, 16385},
    {"past the end are zero bytes", requestOf({128}, 8, 2, 1, 254), 1, 254, 0, 127},
    {"half a sample", requestOf({0, 0, 3}, 15, 2, 1, 32767), 1, 32767, 16383, 16386},
    // Both end a row further down when a product or an average is rounded to double on the way.
    {"50.8 x 10 / 127", requestOf({127, 0, 0, 0, 0}, 7, 0, 1, 10), 1, 10, 5, 8},
    {"an average", smoothed(requestOf({0, 16, 8, 44}, 7, 0, 4, 54), 5), 4, 54, 27, 42, 3},
    // 100,000,000 x -128 is 84,901,888 in 32 bits.
    {"sums wrap", requestOf({0}, 8, 100000000, 1, 2000), 1, 2000, 1000, 1026},
};

TEST_F(Samples, BarsOfKnownSamples) {
  for (const BarCase& c : kBars) {
    Pixels pixels = colorsOf(render(c.request));
    ASSERT_EQ(pixels.width, c.width) << c.what;
    ASSERT_EQ(pixels.height, c.height) << c.what;
    for (int y = 0; y < c.height; ++y) {
      const bool isBar = y >= c.first && y <= c.last;
      const Rgb background = y == 0 && road() == host::Road::gdk ? 0 : c.request.background;
      ASSERT_EQ(pixels.at(c.column, y), isBar ? c.request.foreground : background) << c.what << ", row " << y;
    }
  }
}

// Two pixels up in one column: halfway the outline is blended with the pixel there, whose green and blue
// change places.
TEST_F(Samples, ASoftEdgeCrossesGreenAndBlue) {
  Request r = requestOf({0, 255}, 7, 0, 2, 127);
  r.outline = 1;
  r.background = 0x0A141E;
  r.outlineColor = 0xC86432;
  EXPECT_EQ(colorsOf(render(r)).at(0, 62), rgb(105, 65, 35));
}

// Where the host can't tell sizes; a size of 0 is 0.
TEST_F(Samples, ABlockOfUnknownSizeIsTrusted) {
  Random random(22);
  const Request r = requestOf(randomBytes(random, 300), 15, 150, 20, 60),
                silent = requestOf({}, 15, 150, 20, 60);
  for (const bool tellsSizes : {true, false}) {
    begin(settingsForRoad());
    if (!tellsSizes) host::removeEntryPoint("memoryBlockGetSize");
    const MemoryBlockRef block = host::newMemoryBlock(r.bytes.data(), r.bytes.size());
    host::setReportedSize(block.get(), 0);
    EXPECT_EQ(colorsOf(render(r, block)), Model(tellsSizes ? silent : r).pixels());
  }
}

TEST_F(Samples, WhatGivesNil) {
  const Bytes some(100, 7);
  for (int bits : {INT32_MIN, -7, -6, 0, 9, 14, 17, INT32_MAX})
    EXPECT_FALSE(render(requestOf(some, bits, 10, 10, 10))) << "Bits " << bits;
  for (const Request& r :
       {requestOf({}, 8, 10, 10, 10), requestOf({1}, 15, 0, 0, 10), requestOf(some, 8, 0, 32768, 10),
        requestOf(some, 8, 0, 10, 32768), requestOf(some, 8, INT32_MAX, 0, 0)}) {
    EXPECT_FALSE(render(r)) << r;
  }
  expectNilException(request(requestOf(some, 8, 0, 10, 10), {}), "memoryblock is nil");
}

TEST_F(Samples, WithoutGraphicsAWideOutlineIsLeftOut) {
  Random random(23);
  Request r = requestOf(randomBytes(random, 300), 8, 0, 30, 40);
  const Pixels plain = colorsOf(render(r));
  r.outline = 3;
  host::removeEntryPoint("pluginPictureGraphicsGetter");
  EXPECT_EQ(colorsOf(render(r)), plain);
}

}  // namespace
