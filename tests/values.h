// The values of calls as plain data, which outlive every host; their form in words; and random ones.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "host/calls.h"
#include "host/declarations.h"

// A colour 0xRRGGBB.
using Rgb = uint32_t;

constexpr Rgb rgb(int r, int g, int b) {
  return static_cast<Rgb>(r) << 16 | static_cast<Rgb>(g) << 8 | static_cast<Rgb>(b);
}
constexpr int red(Rgb c) { return static_cast<int>(c >> 16 & 255); }
constexpr int green(Rgb c) { return static_cast<int>(c >> 8 & 255); }
constexpr int blue(Rgb c) { return static_cast<int>(c & 255); }

// A picture's colours, or its words with their top bytes, row after row.
struct Pixels {
  int width = 0, height = 0;
  std::vector<uint32_t> colors;
  bool alpha = false;
  std::shared_ptr<const Pixels> mask;

  Pixels() = default;
  Pixels(int w, int h, std::vector<uint32_t> c) : width(w), height(h), colors(std::move(c)) {}
  Pixels(int w, int h, Rgb color)
      : width(w), height(h), colors(static_cast<size_t>(w) * static_cast<size_t>(h), color) {}
  uint32_t& at(int x, int y) {
    return colors[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  uint32_t at(int x, int y) const { return const_cast<Pixels*>(this)->at(x, y); }
  Rgb color(int x, int y) const { return at(x, y) & 0xFFFFFF; }
};
bool operator==(const Pixels& a, const Pixels& b);
inline bool operator!=(const Pixels& a, const Pixels& b) { return !(a == b); }

namespace host {
inline bool operator==(const Color& a, const Color& b) { return a.rgb == b.rgb; }
inline bool operator!=(const Color& a, const Color& b) { return a.rgb != b.rgb; }
}  // namespace host

using Bytes = std::vector<uint8_t>;

// monostate stands for nil and for no value. Strings are bytes without an encoding, memory blocks are Bytes.
using Value = std::variant<std::monostate, int64_t, double, bool, host::Color, std::string, Bytes, Pixels>;

// Whether it stands for something that a host holds.
inline bool isObject(const Value& value) {
  return std::holds_alternative<Pixels>(value) || std::holds_alternative<Bytes>(value) ||
         std::holds_alternative<std::string>(value);
}
// Numbers that are none are the same as well.
bool areSame(const Value& a, const Value& b);
inline bool isNil(const Value& value) { return value.index() == 0; }

// The value that a variant holds, if the other kind can hold it too; else its first alternative.
template <typename To, typename From>
To scalarOf(const From& value) {
  return std::visit(
      [](const auto& held) -> To {
        if constexpr (std::is_constructible_v<To, decltype(held)>) return held;
        return {};
      },
      value);
}

// As case lines have them (tests/cases/README.md); long ones are cut short.
std::string written(const Value& value);
void PrintTo(const Pixels& pixels, std::ostream* out);
bool mayBeNil(host::Type type);
// Reads a word of a case line. Throws std::invalid_argument.
Value parsed(const host::Parameter& parameter, const std::string& word);

// A picture's bytes as PicturetoBinaryStringZVR writes them.
std::string encoded(const Pixels& pixels);

// Random contents that find more than uniform noise does: runs and clusters of 00 and FF, grays, near misses,
// few colours.
class Random {
 public:
  explicit Random(uint32_t seed = 0) : engine_(seed) {}
  virtual ~Random() = default;
  virtual int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  virtual uint32_t word() { return engine_(); }

  bool chance(int percent) { return between(1, 100) <= percent; }
  template <typename T, size_t count>
  T among(const T (&values)[count]) {
    return values[between(0, static_cast<int>(count) - 1)];
  }
  Rgb color();
  Pixels pixels(int width, int height);
  // The same with random top bytes.
  Pixels words(int width, int height);
  // 1 x 1 often, else sizes around vector and tile lengths.
  int side();
  Bytes bytes(int count);

 private:
  std::mt19937 engine_;
};
