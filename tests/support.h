// Shared by all tests: a host with the built plug-in in it, pictures from colours and back, calls by name.
//
// A case ends at its second failure, and at its first ASSERT wherever that is: loops need not look for
// failures. Programs print little; with --verbose they report as gtest does.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "host/calls.h"
#include "host/host.h"
#include "host/objects.h"

// Adds what is being worked on, for the message of a process that a signal ends.
inline void (*describeRunning)(char* text, size_t size) = nullptr;

// A colour 0xRRGGBB.
using Rgb = uint32_t;

constexpr Rgb rgb(int r, int g, int b) {
  return static_cast<Rgb>(r) << 16 | static_cast<Rgb>(g) << 8 | static_cast<Rgb>(b);
}
constexpr int red(Rgb c) { return static_cast<int>(c >> 16 & 255); }
constexpr int green(Rgb c) { return static_cast<int>(c >> 8 & 255); }
constexpr int blue(Rgb c) { return static_cast<int>(c & 255); }

// The kind of host that this process plays (--road=cairo, gdk or console).
host::Road road();
// That host at version 2013.03, with guard pages and padded rows; fresh pixels of an odd colour, so that
// unwritten ones show.
host::Settings settingsForRoad();
constexpr uint32_t kFreshPixel = 0xFF8E4D2B;
constexpr Rgb kFreshColor = kFreshPixel & 0xFFFFFF;

// A picture's colours, row after row.
struct Pixels {
  int width = 0, height = 0;
  std::vector<Rgb> colors;
  Pixels() = default;
  Pixels(int w, int h, std::vector<Rgb> c) : width(w), height(h), colors(std::move(c)) {}
  Pixels(int w, int h, Rgb color)
      : width(w), height(h), colors(static_cast<size_t>(w) * static_cast<size_t>(h), color) {}
  Rgb& at(int x, int y) {
    return colors[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  Rgb at(int x, int y) const { return const_cast<Pixels*>(this)->at(x, y); }
  bool operator==(const Pixels& o) const {
    return width == o.width && height == o.height && colors == o.colors;
  }
};
// Prints the size and the first pixels, for gtest.
void PrintTo(const Pixels& pixels, std::ostream* out);

host::PictureRef makePicture(const Pixels& pixels, bool alpha = false);
// The same with top bytes: words as the host's pictures hold them.
host::PictureRef makePictureFromWords(int width, int height, const std::vector<uint32_t>& words, bool alpha);
Pixels colorsOf(const host::PictureRef& picture);
std::vector<uint32_t> wordsOf(const host::PictureRef& picture);
// A result of NewPictureWriter as this road shows it: on the GDK road row 0 stays black.
Pixels asWritten(Pixels expected);
// The same for a result of which only some pixels were written: the others are fresh, or black on the GDK
// road.
Rgb unwrittenColor();
// The top byte of a word that was written on this road's picture (0 on the console road, else 255).
uint32_t opaqueTopByte();

// Whole numbers as arguments.
std::vector<host::Value> numbers(std::initializer_list<int64_t> values);
// The colour at (x, y) of a rectangle that begins at column `left`, in rows without padding: on RGB24 rows
// the left column is counted in steps of 4 bytes, and nothing lies past the last row's end.
std::optional<Rgb> seenInRectangle(const Pixels& source, int left, int x, int y);
// Expects a call to have answered nil and raised a NilObjectException with this message.
void expectNilException(const host::Outcome& outcome, const std::string& message);

// Random contents that find more than uniform noise does: runs and clusters of 00 and FF, grays, near misses,
// few colours.
class Random {
 public:
  explicit Random(uint32_t seed) : engine_(seed) {}
  int between(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  bool chance(int percent) { return between(1, 100) <= percent; }
  uint32_t word() { return engine_(); }
  Rgb color();
  Pixels pixels(int width, int height);
  // 1 x 1 often, else sizes around vector and tile lengths.
  int side();

 private:
  std::mt19937 engine_;
};

// A test in a host with the plug-in loaded. After each test the host must hold exactly `leaves`, by default
// nothing.
class HostTest : public ::testing::Test {
 protected:
  void SetUp() override { begin(settingsForRoad()); }
  void TearDown() override;
  // Begins the host anew with other settings and loads the plug-in afresh.
  void begin(const host::Settings& settings);
  // The same with the usual settings and another version; nullopt: a host that tells none.
  void beginAt(std::optional<double> version);
  void unloadPlugin() { plugin_.reset(); }

  // Calls a registered method; the overload is chosen by the number of arguments. A failure of the test when
  // there is none.
  host::Outcome call(const std::string& name, REALobjectStruct* receiver,
                     std::vector<host::Value> arguments = {});
  // The picture that a call answers, empty for nil; an exception that was raised fails the test.
  host::PictureRef callPicture(const std::string& name, const host::PictureRef& receiver,
                               std::vector<host::Value> arguments = {});

  host::Ledger leaves;

 private:
  std::unique_ptr<host::Plugin> plugin_;
};
