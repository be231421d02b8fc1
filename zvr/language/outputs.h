// The files that results are written to.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "zvr/files/images.h"

namespace CLI {
class App;
}

namespace zvr {

// How the transparency of an input reaches the result.
enum class Alpha {
  keep,           // past the library: it is put back on a result of the same size
  drop,           // not at all
  premultiplied,  // through the library, as the host that is played keeps it
};

struct PictureOptions {
  Writing writing;
  Alpha alpha = Alpha::keep;
  bool strips = false;     // metadata stays behind
  bool upright = true;     // pictures are turned as their orientation tags say
  bool isInPlace = false;  // a result may replace its input
};
// --format, --quality, --subsampling, --compression, --alpha, --strip, --no-autorotate and --in-place.
void addPictureOptions(CLI::App& command, PictureOptions& options);

// Output files that coincide neither with one another nor with what is read: files are compared, not names.
class OutputPlan {
 public:
  // `reads`: every file that is read, inputs and arguments alike. Of the options the format and isInPlace
  // count.
  OutputPlan(const std::vector<std::string>& reads, const PictureOptions& options);

  enum class Content { picture, data };
  // The output file for each input, called NAME-LABEL.png (.bin for data) when `pattern` has no file name of
  // its own: a pattern may hold {name} (the input's name without its extension), {ext} (its extension, png
  // when it has none that can be written; bin for data) and {n} (1 for the first input; {n:03} is 001), or be
  // a folder: one that exists or that ends in /. Empty: beside the input, or the input itself in place; to
  // standard output when it is standard input. `option` is what gave it. Throws UsageError for patterns that
  // make no sense, formats that can't be written, and outputs that coincide with a file that is read, with
  // one another or with those planned before.
  std::vector<std::string> add(Content content, const std::vector<std::string>& inputs,
                               const std::string& option, const std::string& pattern,
                               const std::string& label);
  // One more output, of the input, that `option` gave. Throws UsageError when it coincides with another file.
  void claim(const std::string& output, const std::string& option, const std::string& input);

 private:
  struct User {
    std::string option, input;
  };
  PictureOptions options_;
  std::map<std::string, std::string> reads_;  // names by identity
  std::map<std::string, User> users_;         // by the output's identity
};

}  // namespace zvr
