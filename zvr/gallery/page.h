// The gallery as one HTML page that needs nothing beside itself.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zvr/files/images.h"
#include "zvr/language/arguments.h"

namespace zvr::gallery {

// The longer side of pictures on the page, at most, in pixels: for screens of double density. Others get
// half.
constexpr int kShownSide = 800;
// The same of the contact sheet.
constexpr int kThumbSide = 256;
// The page is made with coarser pictures as long as it is larger than this, in bytes.
constexpr size_t kLargestPage = 3'000'000;

// How often each value occurs, of red, green and blue; all empty when that is not known.
using Histogram = std::array<std::vector<uint32_t>, 3>;

// A place in a picture, in its own pixels.
struct Place {
  int64_t left = 0, top = 0, width = 0, height = 0;
};

// A picture that calls start from. All measure the same.
struct Before {
  std::string name;  // "photo"
  Image image;       // no larger than kShownSide
  Histogram histogram;
};

struct Swatch {
  std::string name;
  uint32_t rgb = 0;  // red in bits 16 to 23, green 8 to 15, blue 0 to 7
};

// One call and what came of it.
struct Form {
  std::string name;       // of the method or class
  std::string label;      // what tells it from the other forms on its card
  std::string signature;  // as registered
  std::string says;       // what the call does, a sentence
  bool isConsoleSafe = false;
  std::string zvrLine;
  std::vector<std::string> basicLines;
  std::vector<std::pair<std::string, std::string>> answers;  // names and values
  std::vector<Swatch> swatches;
  std::vector<std::pair<std::string, Image>> pictures;  // other files that the call took
  std::vector<Bytes> curves;                            // tables of 256 values, each once
  const Before* before = nullptr;                       // none for a call that took no picture
  std::optional<Image> after;                           // no larger than kShownSide
  bool isComparable = false;                            // `after` measures as much as `before`
  std::optional<Place> place;
  Histogram histogram;  // of the answered picture, or what the call counted
  std::string problem;  // why there is no result; empty when there is one
};

struct Card {
  int place = 0;  // tells it from the card before it
  std::vector<Form> forms;
};

struct Group {
  std::string title;
  std::vector<Card> cards;
};

struct Exhibition {
  std::string input;            // as given
  std::string notes;            // sentences on what the calls ran on
  std::string host;             // "cairo, version 2013.03"
  std::vector<Before> befores;  // the photograph first
  int width = 0, height = 0;    // of these, as the calls had them
  std::vector<Group> groups;
};

// The page. Throws Failure when it can't be made small enough.
std::string page(const Exhibition& exhibition);

}  // namespace zvr::gallery
