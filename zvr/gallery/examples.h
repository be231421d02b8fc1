// The gallery's examples: for each registered member a call with its arguments, and a sentence. They stand in
// the manual's sections:
//   <!-- gallery PLACE FAMILY: WORDS | SENTENCE -->
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zvr::gallery {

struct Example {
  int place;           // a number that orders the page
  std::string family;  // methods that belong together; the heading of a group
  // Words of `zvr apply`, the input first; the method is the last step's. {photo}, {other}, {part}, {table}
  // and {samples} are files, {common} is a colour of the photograph, {x25} a quarter of its width and {y25}
  // of its height. Of a class: its name and PROPERTY=VALUE, as in `zvr run`, or {look}, which fills its table
  // as in `zvr lut`.
  std::string words, says;
};
// By their places.
std::vector<Example> examples();

// The words of an example. Names in braces are replaced from `fields`, or by shares of `width` and `height`.
std::vector<std::string> filledWords(const std::string& words,
                                     const std::map<std::string, std::string>& fields, int width, int height);

}  // namespace zvr::gallery
