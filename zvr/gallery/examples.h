// The gallery's examples: for each registered member a call with its arguments, and a sentence. They stand in
// the manual's sections:
//   <!-- gallery PLACE FAMILY: WORDS | SENTENCE -->
//   <!-- gallery PLACE FAMILY (LABEL): WORDS | SENTENCE -->
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zvr::gallery {

struct Example {
  int place;           // a number that orders the page; those of one ten are forms of one card
  std::string family;  // members that belong together; the heading of a group
  std::string label;   // tells forms of one card apart
  // Words of `zvr apply`, the input first; the last step is shown. {photo}, {scan}, {cutout}, {other},
  // {part}, {table}, {samples} and {look} are files, {common} is a colour of the photograph, {x25} a quarter
  // of its width and {y25} of its height.
  std::string words, says;
};
// By their places.
std::vector<Example> examples();

// The words of an example. Names in braces are replaced from `fields`, or by shares of `width` and `height`.
std::vector<std::string> filledWords(const std::string& words,
                                     const std::map<std::string, std::string>& fields, int width, int height);

}  // namespace zvr::gallery
