#include "tests/models.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

namespace {

// ---- Arguments ----

using Arguments = std::vector<Value>;

const Pixels* pictureIn(const Value& value) { return std::get_if<Pixels>(&value); }
std::vector<uint32_t> wordsOf(const Pixels* picture) {
  return picture ? picture->colors : std::vector<uint32_t>();
}
int64_t number(const Value& value) { return std::get<int64_t>(value); }
double real(const Value& value) { return std::get<double>(value); }
bool flag(const Value& value) { return std::get<bool>(value); }

// ---- Results ----

// A new opaque picture of which `color(x, y)` is written.
template <typename Color>
Pixels painted(int width, int height, bool alpha, const Color& color) {
  Pixels result(width, height, Rgb{0});
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) result.at(x, y) = color(x, y) | opaqueTopByte() << 24;
  }
  result.alpha = alpha && !isGdk();
  return asWritten(result);
}

// One of that size of which nothing is written yet.
Pixels unwritten(const Pixels& source) {
  Pixels result(source.width, source.height, isGdk() ? 0 : kFreshPixel);
  result.alpha = source.alpha && !isGdk();
  return result;
}

bool isGray(Rgb p) { return red(p) == green(p) && green(p) == blue(p); }
Rgb inverted(Rgb p) { return rgb(255 - red(p), 255 - green(p), 255 - blue(p)); }
Rgb withGrayInverted(Rgb p) { return isGray(p) ? inverted(p) : p; }

// Each pixel of the first picture by a formula of its own, with the pixels of further ones that `fit` by
// size.
enum Fit { kEqual, kAtLeast };
template <typename Formula>
void mapPixels(Outcome& call, size_t sources, Fit fit, bool keepsAlpha, const Formula& formula) {
  const Pixels* source[3] = {};
  for (size_t i = 0; i < sources; ++i) {
    source[i] = pictureIn(call.arguments[i]);
    if (!source[i]) return;
    const int more = source[i]->width - source[0]->width, higher = source[i]->height - source[0]->height;
    if (more < 0 || higher < 0 || (fit == kEqual && (more != 0 || higher != 0))) return;
  }
  call.result =
      painted(source[0]->width, source[0]->height, keepsAlpha && source[0]->alpha, [&](int x, int y) {
        Rgb pixels[3];
        for (size_t i = 0; i < sources; ++i) pixels[i] = source[i]->color(x, y);
        return formula(pixels);
      });
}

template <typename Formula>
void mapEach(Outcome& call, const Formula& formula) {
  mapPixels(call, 1, kEqual, true, [&](const Rgb* p) { return formula(*p); });
}

// Each channel's value by a formula; channels are 0, 1 and 2.
template <typename Formula>
void mapChannels(Outcome& call, const Formula& formula) {
  mapEach(call, [&](Rgb p) { return rgb(formula(red(p), 0), formula(green(p), 1), formula(blue(p), 2)); });
}

// ---- Merge, combine and replace channels ----

// Pictures: red, blue, green.
void combine(Outcome& call) {
  mapPixels(call, 3, kEqual, false, [](const Rgb* p) { return rgb(red(p[0]), green(p[2]), blue(p[1])); });
}

void merge(Outcome& call) {
  mapPixels(call, 2, kEqual, false, [](const Rgb* p) {
    return rgb(std::max(red(p[0]), red(p[1])), std::max(green(p[0]), green(p[1])),
               std::max(blue(p[0]), blue(p[1])));
  });
}

template <Rgb channel>
void replaceChannel(Outcome& call) {
  if (isNil(call.arguments[1])) call.raised = "NilObjectException: The channel picture is nil.";
  mapPixels(call, 2, kAtLeast, false, [](const Rgb* p) { return (p[0] & ~channel) | (p[1] & channel); });
}

// ---- Brightness and contrast ----

// As the processor does it.
int truncated(double value) { return _mm_cvttsd_si32(_mm_set_sd(value)); }
int clamped(double value) { return std::clamp(truncated(value), 0, 255); }

double contrasted(double v, double contrast) { return 127 + (v - 127) * (1 + contrast); }
double brightened(double v, double brightness) {
  const double factor = brightness < 0 ? (255 + brightness) / 255 : (255 - brightness) / 255;
  const double offset = brightness < 0 ? 0 : brightness;
  return v * factor + offset;
}

int linear(double v, double brightness, double) { return truncated(brightened(v, brightness)) & 255; }
int absolute(double v, double brightness, double) { return clamped(v + brightness); }
int contrast(double v, double c, double) { return clamped(contrasted(v, c)); }
int contrastLinear(double v, double c, double b) { return clamped(brightened(contrasted(v, c), b)); }
int contrastAbsolute(double v, double c, double b) { return clamped(contrasted(v, c) + b); }
int custom(double v, double a, double b) { return clamped(v * a + b); }

// By a formula of one or two parameters: given once for all channels, or for red, green and blue in turn.
template <int (*formula)(double, double, double), size_t parameters>
void tone(Outcome& call) {
  const Arguments& given = call.arguments;
  mapChannels(call, [&](int v, size_t channel) {
    double parameter[2] = {};
    for (size_t i = 0; i < parameters; ++i)
      parameter[i] = real(given[1 + (given.size() == 1 + parameters ? i : i * 3 + channel)]);
    return formula(v, parameter[0], parameter[1]);
  });
}

// Products wrap.
void saturate(Outcome& call) {
  const auto factor = static_cast<uint32_t>(number(call.arguments[1]) + 255);
  mapEach(call, [=](Rgb p) {
    const int middle = (red(p) + 2 * green(p) + blue(p)) / 4;
    const auto moved = [=](int v) {
      const uint32_t product = static_cast<uint32_t>(v - middle) * factor;
      return std::clamp(static_cast<int32_t>(product) / 255 + middle, 0, 255);
    };
    return rgb(moved(red(p)), moved(green(p)), moved(blue(p)));
  });
}

void tint(Outcome& call) {
  const auto weight = [](int channel) { return channel / 255.0; };
  const Rgb gray = colorIn(call.arguments[1]), sepia = colorIn(call.arguments[2]);
  mapEach(call, [&](Rgb p) {
    const long double brightness = red(p) * static_cast<long double>(weight(red(gray))) +
                                   green(p) * static_cast<long double>(weight(green(gray))) +
                                   blue(p) * static_cast<long double>(weight(blue(gray)));
    const auto share = [=](int base) { return std::min(static_cast<int>(brightness * weight(base)), 255); };
    return rgb(share(red(sepia)), share(green(sepia)), share(blue(sepia)));
  });
}

// ---- Lookup tables ----

void transform(Outcome& call) {
  Arguments& given = call.arguments;
  const Pixels* source = pictureIn(given[0]);
  const Bytes *reds = std::get_if<Bytes>(&given[1]), *blues = std::get_if<Bytes>(&given[2]),
              *greens = std::get_if<Bytes>(&given[3]);
  const char* missing = !source   ? "picture"
                        : !reds   ? "red memoryblock"
                        : !greens ? "green memoryblock"
                        : !blues  ? "blue memoryblock"
                                  : nullptr;
  if (missing) {
    call.raised = std::string("NilObjectException: ") + missing + " is nil";
    return;
  }
  if (reds->empty() || blues->empty() || greens->empty()) return;  // which have no address
  const auto lookUp = [](const Bytes& table, int value) {
    return static_cast<size_t>(value) < table.size() ? table[static_cast<size_t>(value)] : 0;
  };
  const auto color = [&](int x, int y) {
    const Rgb p = source->color(x, y);
    return rgb(lookUp(*reds, red(p)), lookUp(*greens, green(p)), lookUp(*blues, blue(p)));
  };
  call.result = painted(source->width, source->height, false, color);
  auto* target = std::get_if<Pixels>(&given[4]);
  if (!target || isGdk() || target->width < source->width || target->height < source->height) return;
  for (int y = 0; y < source->height; ++y) {
    for (int x = 0; x < source->width; ++x) target->at(x, y) = color(x, y) | opaqueTopByte() << 24;
  }
  call.result = *target;
}

// ---- Colours ----

void replaceColor(Outcome& call) {
  mapEach(call, [&](Rgb p) { return p == colorIn(call.arguments[1]) ? colorIn(call.arguments[2]) : p; });
}

void extractColor(Outcome& call) {
  mapPixels(call, 1, kEqual, false,
            [&](const Rgb* p) { return colorIn(call.arguments[*p == colorIn(call.arguments[1]) ? 2 : 3]); });
}

void countColor(Outcome& call) {
  const Pixels* source = pictureIn(call.arguments[0]);
  int64_t count = 0;
  for (const uint32_t word : wordsOf(source)) count += (word & 0xFFFFFF) == colorIn(call.arguments[1]);
  call.result = count;
}

// Adds to the counters that a block has room for; missing blocks are made. The second is green's and the
// third blue's, on purpose.
void countColors(Outcome& call) {
  const Pixels* source = pictureIn(call.arguments[0]);
  int (*const channels[])(Rgb) = {red, green, blue};
  for (size_t block = 1; block <= 3; ++block) {
    if (isNil(call.arguments[block])) call.arguments[block] = Bytes(1024);
    auto& bytes = std::get<Bytes>(call.arguments[block]);
    const size_t size = bytes.size();
    bytes.resize(std::max<size_t>(size, 1024));
    for (const uint32_t word : wordsOf(source)) {
      uint8_t* counter = &bytes[static_cast<size_t>(channels[block - 1](word)) * 4];
      for (int byte = 0; byte < 4 && ++counter[byte] == 0; ++byte) continue;
    }
    bytes.resize(size);
  }
  call.arguments[4] = source ? int64_t{source->width} * source->height : int64_t{-1};
}

// The share of pixels that are not dark, and whose green is far from blue or red.
void colorness(Outcome& call) {
  const Pixels* source = pictureIn(call.arguments[0]);
  call.result = 0.0;
  if (!source) return;
  int colorful = 0;
  for (const Rgb p : source->colors) {
    const int far = std::max(std::abs(green(p) - blue(p)), std::abs(green(p) - red(p)));
    colorful += std::max({red(p), green(p), blue(p)}) >= 30 && far > number(call.arguments[1]);
  }
  call.result = colorful / static_cast<double>(source->colors.size());
}

// ---- Rectangles ----

// The part of a picture that a rectangle covers; the whole picture without one.
struct Part {
  const Pixels& picture;
  int left = 0, top = 0, right = picture.width, bottom = picture.height;

  // left, top, width and height, or null; sizes below `least` mean the picture's.
  Part(const Pixels& of, const Value* rectangle, int least) : picture(of) {
    if (!rectangle) return;
    const auto end = [&](int64_t first, int64_t size, int most) {
      return static_cast<int>(std::clamp<int64_t>(first + (size < least ? most : size), 0, most));
    };
    right = end(number(rectangle[0]), number(rectangle[2]), picture.width);
    bottom = end(number(rectangle[1]), number(rectangle[3]), picture.height);
    left = static_cast<int>(std::clamp<int64_t>(number(rectangle[0]), 0, right));
    top = static_cast<int>(std::clamp<int64_t>(number(rectangle[1]), 0, bottom));
  }

  // Where a pixel lies among the bytes of all colours. On RGB24 rows the left column is counted in steps of 4
  // bytes, on purpose: a rectangle lies further right and may spill into the next row.
  size_t byteAt(int x, int y) const {
    return static_cast<size_t>((y * picture.width + x - left) * 3 + left * (isGdk() ? 4 : 3));
  }
  size_t bytes() const { return picture.colors.size() * 3; }
  // Bytes past the last row's end are 0.
  Rgb colorAt(size_t at) const {
    const auto byte = [&](size_t i) {
      return i < bytes() ? picture.colors[i / 3] >> (16 - 8 * (i % 3)) & 0xFF : 0;
    };
    return byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
  }
  // Questions see only whole pixels.
  Rgb seen(int x, int y, Rgb otherwise) const {
    return byteAt(x, y) + 3 > bytes() ? otherwise : colorAt(byteAt(x, y));
  }
  template <typename Body>
  void forEach(const Body& body) const {
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) body(x, y);
    }
  }
};

// Whether a rectangle reads the padding of RGB24 rows.
bool readsPadding(const Call& call) {
  const std::vector<host::Parameter> parameters = parametersOf(call.member);
  for (size_t i = 0; i < parameters.size(); ++i) {
    const Pixels* picture = pictureIn(call.arguments[0]);
    if (parameters[i].name == "left" && picture && picture->width % 4 != 0)
      return isGdk() && number(call.arguments[i]) > 0;
  }
  return false;
}

// The rectangle is given by the last four arguments, if there are so many.
Part partOf(const Outcome& call, size_t withRectangle, int least) {
  const bool has = call.arguments.size() >= withRectangle;
  return {*pictureIn(call.arguments[0]), has ? &call.arguments[withRectangle - 4] : nullptr, least};
}

// Only the rectangle is written. Sizes below `least` mean the whole picture.
template <Rgb (*change)(Rgb), int least>
void invert(Outcome& call) {
  const Pixels* source = pictureIn(call.arguments[0]);
  if (!source) return;
  const Part part = partOf(call, 5, least);
  Pixels result = unwritten(*source);
  part.forEach([&](int x, int y) {
    const Rgb color = change(part.colorAt(part.byteAt(x, y)));
    const uint8_t bytes[] = {uint8_t(red(color)), uint8_t(green(color)), uint8_t(blue(color))};
    for (size_t i = 0; i < 3; ++i) {
      const size_t at = part.byteAt(x, y) + i, shift = 16 - 8 * (at % 3);
      if (at >= part.bytes() || (isGdk() && y == 0)) continue;  // row 0 goes nowhere
      uint32_t& word = result.colors[at / 3];
      word = (word & ~(0xFFu << shift) & 0xFFFFFF) | uint32_t{bytes[i]} << shift | opaqueTopByte() << 24;
    }
  });
  call.result = result;
}

// Whether all that is seen passes; where nothing is, `otherwise` is seen.
template <typename Passes>
void isAll(Outcome& call, size_t withRectangle, Rgb otherwise, const Passes& passes) {
  call.result = false;
  if (!pictureIn(call.arguments[0])) return;
  const Part part = partOf(call, withRectangle, 0);
  bool all = true;
  part.forEach([&](int x, int y) { all = all && passes(part.seen(x, y, otherwise)); });
  call.result = all;
}

template <Rgb color>
void isOnly(Outcome& call) {
  isAll(call, 5, color, [](Rgb p) { return p == color; });
}
void isGray(Outcome& call) {
  // One below 0 counts as its amount.
  const int64_t tolerance = std::abs(number(call.arguments[1]));
  isAll(call, 6, 0x000000, [=](Rgb p) {
    const auto [low, high] = std::minmax({red(p), green(p), blue(p)});
    return high - low <= tolerance;
  });
}

// ---- The mask of rectangles over coloured areas ----

// Which pixels are coloured; those outside are not.
struct Map {
  explicit Map(const Pixels& picture) : cells(picture.width, picture.height, Rgb{0}) {}
  bool any(int left, int top, int right, int bottom) const {
    for (int y = std::max(top, 0); y <= std::min(bottom, cells.height - 1); ++y) {
      for (int x = std::max(left, 0); x <= std::min(right, cells.width - 1); ++x) {
        if (cells.at(x, y)) return true;
      }
    }
    return false;
  }
  Pixels cells;
};

void growAndFill(Map& colored, Pixels& mask, int x, int y) {
  int left = x, right = x, top = y, bottom = y;
  for (bool moved = true; moved;) {
    moved = false;
    if (colored.any(left, top - 1, right, top - 1)) --top, moved = true;
    if (colored.any(left, bottom + 1, right, bottom + 1)) ++bottom, moved = true;
    if (colored.any(left - 1, top, left - 1, bottom)) --left, moved = true;
    if (colored.any(right + 1, top, right + 1, bottom)) ++right, moved = true;
  }
  for (int row = top; row <= bottom; ++row) {
    for (int column = left; column <= right; ++column)
      colored.cells.at(column, row) = mask.at(column, row) = 0;
  }
}

// The search starts over after every rectangle. Rows count from the picture's first, wherever the rectangle
// lies.
void colorMask(Outcome& call) {
  const Pixels* source = pictureIn(call.arguments[0]);
  if (!source) return;
  const Part part = partOf(call, 5, 0);
  Map colored(*source);
  part.forEach([&](int x, int y) { colored.cells.at(x, y) = !isGray(part.seen(x, y - part.top, 0)); });
  Pixels mask(source->width, source->height, Rgb{0xFFFFFF});
  for (size_t i = 0; i < colored.cells.colors.size(); ++i) {
    const int x = static_cast<int>(i) % source->width, y = static_cast<int>(i) / source->width;
    if (!colored.cells.at(x, y)) continue;
    growAndFill(colored, mask, x, y);
    i = static_cast<size_t>(-1);
  }
  call.result = painted(source->width, source->height, false, [&](int x, int y) { return mask.at(x, y); });
}

// ---- Finding ----

bool liesAt(const Pixels& picture, const Pixels& needle, int left, int top) {
  for (int y = 0; y < needle.height; ++y) {
    for (int x = 0; x < needle.width; ++x) {
      if (picture.color(left + x, top + y) != needle.color(x, y)) return false;
    }
  }
  return true;
}

void find(Outcome& call) {
  const Pixels *picture = pictureIn(call.arguments[0]), *needle = pictureIn(call.arguments[1]);
  call.result = false;
  call.arguments[2] = call.arguments[3] = int64_t{0};
  if (!picture || !needle) return;
  for (int y = 0; y <= picture->height - needle->height; ++y) {
    for (int x = 0; x <= picture->width - needle->width; ++x) {
      if (!liesAt(*picture, *needle, x, y)) continue;
      call.result = true;
      call.arguments[2] = int64_t{x};
      call.arguments[3] = int64_t{y};
      return;
    }
  }
}

// ---- Scrolling ----

// The place that comes to place `at` of `extent`, or -1 for white.
int64_t origin(int64_t at, int64_t delta, int64_t extent, bool wrap) {
  const int64_t from = at - delta;
  if (!wrap) return from >= 0 && from < extent ? from : -1;
  return (from % extent + extent) % extent;
}

Pixels scrolled(const Pixels& picture, int64_t deltaX, int64_t deltaY, bool wrap) {
  Pixels result = picture;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const auto fromX = static_cast<int>(origin(x, deltaX, picture.width, wrap)),
                 fromY = static_cast<int>(origin(y, deltaY, picture.height, wrap));
      result.at(x, y) = fromX < 0 || fromY < 0 ? 0xFFFFFFFF : picture.at(fromX, fromY);
    }
  }
  return result;
}

// In place. A picture that can't be scrolled is done sideways, and fails up and down unless there is nothing
// to do.
void scroll(Outcome& call, int64_t deltaX, int64_t deltaY) {
  const size_t count = call.arguments.size();
  auto* picture = std::get_if<Pixels>(&call.arguments[0]);
  call.result = (picture && !isGdk()) || deltaY == 0;
  if (!picture || isGdk()) return;
  const bool wrap = flag(call.arguments[count - 2]), withMask = flag(call.arguments[count - 1]);
  const std::shared_ptr<const Pixels> mask = picture->mask;
  *picture = scrolled(*picture, deltaX, deltaY, wrap);
  if (mask && withMask) picture->mask = std::make_shared<Pixels>(scrolled(*mask, deltaX, deltaY, wrap));
}

// ---- Masks ----

void hasMask(Outcome& call) {
  const Pixels* picture = pictureIn(call.arguments[0]);
  call.result = picture && picture->mask;
}

// The top byte as gray: all of it in a surface with alpha; its lower 7 bits as a * 2 + (a & 1) in every
// bitmap.
void embeddedMask(Outcome& call) {
  const Pixels* picture = pictureIn(call.arguments[0]);
  if (!picture) return;
  call.result = painted(picture->width, picture->height, false, [&](int x, int y) {
    const uint32_t top = picture->at(x, y) >> 24, a = top & 0x7F;
    const uint32_t gray = isConsole() ? a * 2 + (a & 1) : picture->alpha ? top : 255;
    return (flag(call.arguments[1]) ? 255 - gray : gray) * 0x10101;
  });
}

// Writes the first byte of each word, the blue one: not what the getter reads, on purpose.
bool setEmbeddedMask(Outcome& call) {
  auto* picture = std::get_if<Pixels>(&call.arguments[0]);
  const Pixels* mask = pictureIn(call.arguments[2]);
  if (!picture || !mask || isGdk()) return true;
  if (mask->width < picture->width || mask->height < picture->height) return false;
  for (int y = 0; y < picture->height; ++y) {
    for (int x = 0; x < picture->width; ++x) {
      const auto value = static_cast<uint32_t>(red(mask->at(x, y))) ^ (flag(call.arguments[1]) ? 0xFFu : 0u);
      picture->at(x, y) = (picture->at(x, y) & 0xFFFFFF00) | value;
    }
  }
  return true;
}

// ---- Strings ----

void toString(Outcome& call) {
  if (const Pixels* picture = pictureIn(call.arguments[0])) call.result = encoded(*picture);
}

// Nil for a string that is shorter or longer than it says.
void fromString(Outcome& call) {
  const auto* bytes = std::get_if<std::string>(&call.arguments[0]);
  if (!bytes || bytes->size() < 24 || bytes->compare(0, 4, "PPIC") != 0) return;
  const auto byteAt = [&](size_t at) { return static_cast<uint8_t>((*bytes)[at]); };
  const auto wordAt = [&](size_t at) {
    return uint64_t{byteAt(at)} << 24 | uint64_t{byteAt(at + 1)} << 16 | uint64_t{byteAt(at + 2)} << 8 |
           byteAt(at + 3);
  };
  const uint64_t width = wordAt(8), height = wordAt(12), offset = wordAt(20);
  if (wordAt(4) != bytes->size() || width < 1 || width > 32767 || height < 1 || height > 32767) return;
  if (offset + width * height * 3 > bytes->size()) return;
  call.result = painted(int(width), int(height), false, [&](int x, int y) {
    const auto at =
        static_cast<size_t>(offset + (static_cast<uint64_t>(y) * width + static_cast<uint64_t>(x)) * 3);
    return rgb(byteAt(at), byteAt(at + 1), byteAt(at + 2));
  });
}

void renderSamples(Outcome& call) {
  call.result = waveform(call.arguments);
  if (isNil(call.arguments[0])) call.raised = "NilObjectException: memoryblock is nil";
}

// ---- Filter classes ----

// The columns or rows within limits: always from the first on, on purpose.
int limited(int64_t most, int64_t least, int length) {
  const int64_t end = least < most && most < length ? most : length;
  return static_cast<int>(std::clamp<int64_t>(end - least, 0, length));
}

// The first arguments of both classes: source, destination, and the most and the least column and row.
template <typename Map>
void filter(Outcome& call, bool keepsAlpha, const Map& map) {
  const Arguments& given = call.arguments;
  const Pixels* source = pictureIn(given[0]);
  call.result = source != nullptr;
  if (!source) return;
  Pixels result = unwritten(*source);
  for (int y = 0; y < limited(number(given[4]), number(given[5]), source->height); ++y) {
    for (int x = 0; x < limited(number(given[2]), number(given[3]), source->width); ++x)
      result.at(x, y) = map(source->color(x, y)) | opaqueTopByte() << 24;
  }
  result.alpha &= keepsAlpha;
  call.arguments[1] = asWritten(result);
}

// Sums wrap. The factors of green and blue are crossed, on purpose.
void sepia(Outcome& call) {
  const auto factor = [&](size_t i) {
    return static_cast<uint32_t>(truncated(1024 * real(call.arguments[i])));
  };
  const auto tone = [&](size_t i) { return static_cast<uint32_t>(number(call.arguments[i])); };
  filter(call, false, [&, reds = factor(9), greens = factor(10), blues = factor(11)](Rgb p) {
    const uint32_t sum = static_cast<uint32_t>(red(p)) * reds + static_cast<uint32_t>(green(p)) * greens +
                         static_cast<uint32_t>(blue(p)) * blues;
    const auto brightness = static_cast<uint32_t>(static_cast<int32_t>(sum) / 1024);
    const auto toned = [&](size_t i) {
      return std::clamp(static_cast<int32_t>(tone(i) + brightness), 0, 255);
    };
    return rgb(toned(6), toned(7), toned(8));
  });
}

// From the lower corner the way leads along the axis of the largest share first. Of equal shares the smallest
// step in the table goes first, beginning with those that are none; that shows only where entries are
// infinite or no numbers.
void lookUpInCube(Outcome& call) {
  std::vector<double> table(kTableEntries * 3);
  if (const auto* bytes = std::get_if<Bytes>(&call.arguments[6]))
    std::memcpy(table.data(), bytes->data(), bytes->size());
  call.arguments[1] = {};
  filter(call, true, [&](Rgb p) {
    const int values[] = {red(p), green(p), blue(p)};
    const auto share = [&](size_t axis) { return values[axis] % 17; };
    const auto step = [&](size_t axis) { return values[axis] == 255 ? 0 : 3 - axis; };
    size_t axes[] = {0, 1, 2};
    std::sort(axes, axes + 3, [&](size_t a, size_t b) {
      return share(a) != share(b) ? share(a) > share(b) : step(a) < step(b);
    });
    int corner[] = {red(p) / 17, green(p) / 17, blue(p) / 17};
    double sums[3] = {};
    for (size_t i = 0; i < 4; ++i) {
      if (i > 0) corner[axes[i - 1]] = std::min(corner[axes[i - 1]] + 1, 15);
      const double weight = (i > 0 ? share(axes[i - 1]) : 17) - (i < 3 ? share(axes[i]) : 0);
      for (size_t x = 0; x < 3; ++x)
        sums[x] += weight * table[tableIndex(corner[0], corner[1], corner[2]) + x];
    }
    const auto color = [&](double sum) {
      return sum >= 17 * 255 ? 255 : sum > 0 ? static_cast<int>(sum / 17) : 0;
    };
    return rgb(color(sums[0]), color(sums[1]), color(sums[2]));
  });
}

const std::map<std::string, void (*)(Outcome&)> kModels = {
    {"PictureSepiaZVR", sepia},
    {"PictureLut3DZVR", lookUpInCube},
    {"InvertZVR", invert<inverted, 1>},
    {"InvertGrayZVR", invert<withGrayInverted, 0>},
    {"MergePictureZVR", merge},
    {"CombinePicturesZVR", combine},
    {"ReplaceRedChannelZVR", replaceChannel<0xFF0000>},
    {"ReplaceGreenChannelZVR", replaceChannel<0x00FF00>},
    {"ReplaceBlueChannelZVR", replaceChannel<0x0000FF>},
    {"TransformColorsZVR", transform},
    {"ChangeBrightnessLinearZVR", tone<linear, 1>},
    {"ChangeBrightnessAbsoluteZVR", tone<absolute, 1>},
    {"ChangeContrastZVR", tone<contrast, 1>},
    {"ChangeContrastBrightnessLinearZVR", tone<contrastLinear, 2>},
    {"ChangeContrastBrightnessAbsoluteZVR", tone<contrastAbsolute, 2>},
    {"ChangeCustomZVR", tone<custom, 2>},
    {"ReplaceColorZVR", replaceColor},
    {"ExtractColorZVR", extractColor},
    {"CountColorZVR", countColor},
    {"CountColorsZVR", countColors},
    {"ChangeSaturationZVR", saturate},
    {"TintPictureZVR", tint},
    {"ColornessZVR", colorness},
    {"isBlackZVR", isOnly<0x000000>},
    {"isWhiteZVR", isOnly<0xFFFFFF>},
    {"isGrayZVR", isGray},
    {"ExtractColorRectangleMaskZVR", colorMask},
    {"FindPictureZVR", find},
    {"ScrollHorizontalZVR", [](Outcome& call) { scroll(call, number(call.arguments[1]), 0); }},
    {"ScrollVerticalZVR", [](Outcome& call) { scroll(call, 0, number(call.arguments[1])); }},
    {"ScrollZVR", [](Outcome& call) { scroll(call, number(call.arguments[1]), number(call.arguments[2])); }},
    {"HasMaskZVR", hasMask},
    {"EmbeddedMaskZVR", embeddedMask},
    {"PicturetoBinaryStringZVR", toString},
    {"BinaryStringtoPictureZVR", fromString},
    {"RenderSamplesZVR", renderSamples},
};

}  // namespace

std::vector<std::string> modelledMethods() {
  std::vector<std::string> names;
  for (const auto& [name, model] : kModels) names.push_back(name);
  return names;
}

std::optional<Outcome> promised(const Call& call) {
  const auto model = kModels.find(call.member.definition());
  if (model == kModels.end() || readsPadding(call)) return {};
  Outcome outcome{call.arguments, {}, {}};
  for (Value& argument : outcome.arguments) {
    if (auto* picture = std::get_if<Pixels>(&argument)) *picture = asHeld(*picture);
  }
  if (call.member.assigns) return setEmbeddedMask(outcome) ? std::optional(outcome) : std::nullopt;
  model->second(outcome);
  return outcome;
}
