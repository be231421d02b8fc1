// The gallery as one HTML page that needs nothing beside itself.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "zvr/files/images.h"
#include "zvr/language/arguments.h"

namespace zvr::gallery {

// The longer side of pictures on the page, at most, in pixels.
constexpr int kShownSide = 640;
// The page is made with smaller and coarser pictures as long as it is larger than this, in bytes.
constexpr size_t kLargestPage = 3'000'000;

struct Swatch {
  std::string name;
  uint32_t rgb = 0;  // red in bits 16 to 23, green 8 to 15, blue 0 to 7
};

// How often each value occurs, of red, green and blue; all empty when that is not known.
using Histogram = std::array<std::vector<uint32_t>, 3>;

// A place in the photograph, in its own pixels.
struct Place {
  int64_t left = 0, top = 0, width = 0, height = 0;
};

// One call and what came of it.
struct Card {
  std::string name;       // of the method or class
  std::string call;       // the name with its arguments, short
  std::string signature;  // as registered
  std::string says;       // what the call does, a sentence
  bool isConsoleSafe = false;
  std::string zvrLine;
  std::vector<std::string> basicLines;
  std::vector<std::string> answers;  // "x = 12"
  std::vector<Swatch> swatches;
  std::vector<Bytes> curves;   // tables of 256 values, each once
  std::optional<Image> after;  // no larger than kShownSide
  bool isComparable = false;   // `after` measures as much as the photograph did
  std::optional<Place> place;
  Histogram histogram;  // of the answered picture, or what the call counted
  std::string problem;  // why there is no result; empty when there is one
};

struct Group {
  std::string title;
  std::vector<Card> cards;
};

struct Exhibition {
  std::string input;          // as given
  Image photo;                // no larger than kShownSide
  int width = 0, height = 0;  // of the photograph that the calls ran on
  std::string notes;          // sentences on what the calls ran on
  std::string host;           // "cairo, version 2013.03"
  Histogram histogram;
  std::vector<Group> groups;
};

// The page. Throws Failure when it can't be made small enough.
std::string page(const Exhibition& exhibition);

}  // namespace zvr::gallery
