// One input on its way through a chain.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "zvr/language/arguments.h"
#include "zvr/language/chain.h"
#include "zvr/language/original.h"

namespace zvr {

class Walk {
 public:
  // `label` begins every line that is printed. `asOnHost` as for Original. Throws Failure for an input that
  // can't be read.
  Walk(const std::string& input, std::string label, const PictureOptions& options, bool asOnHost);

  // Calls the method and prints its answer, except pictures and strings, and the arguments by
  // reference. Blocks whose parameter index is in `kept` are handed back instead. Throws Failure.
  std::map<size_t, Bytes> take(const Step& step, const std::vector<size_t>& kept);

  // Whether a step has answered a picture or string, or changed the picture in place.
  bool hasResult() const;
  // The picture, with what the input adds to it.
  Image picture() const { return original_.finished(fromPicture(picture_.get())); }
  const Bytes& data() const { return data_; }

 private:
  host::PictureRef currentPicture();
  host::Value valueOf(const Argument& argument, host::Type type);
  std::map<size_t, Bytes> report(const host::Declaration& declaration,
                                 const std::vector<host::Value>& arguments,
                                 const std::vector<size_t>& kept) const;
  void become(const host::Declaration& declaration, const host::PictureRef& receiver,
              const host::Outcome& outcome);
  void print(const std::string& name, const host::Value& value) const;

  std::string input_, label_;
  Bytes data_;  // of the input until a step takes it as a picture, then of the string that a step answered
  host::PictureRef picture_;
  PictureOptions options_;
  bool asOnHost_;
  Original original_;  // the input, once it was taken as a picture
  size_t before_ = 0;  // its fingerprint
  bool hasAnswered_ = false;
};

}  // namespace zvr
