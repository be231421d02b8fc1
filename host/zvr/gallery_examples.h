// The gallery's examples: for each registered member a call with its arguments, and a sentence.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zvr::gallery {

// Words of `zvr apply`, the input first; the method is the last step's. {photo}, {other}, {part}, {table} and
// {samples} are files, {common} is a colour of the photograph, {x25} a quarter of its width and {y25} of its
// height.
struct Example {
  const char *words, *says;
};
// Methods that belong together, under a heading of the page.
struct Family {
  const char* title;
  std::vector<Example> examples;
};
const std::vector<Family>& families();

// Words of `zvr run CLASS {photo}` after the input: PROPERTY=VALUE. `look`: instead {look} fills its table,
// as in `zvr lut`.
struct ClassExample {
  const char *name, *settings, *says;
  bool isLook;
};
const std::vector<ClassExample>& classExamples();

// The words of an example. Names in braces are replaced from `fields`, or by shares of `width` and `height`.
std::vector<std::string> filledWords(const std::string& words,
                                     const std::map<std::string, std::string>& fields, int width, int height);

}  // namespace zvr::gallery
