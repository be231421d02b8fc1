// One input on its way through a chain.
#pragma once

#include <string>
#include <vector>

#include "zvr/language/arguments.h"
#include "zvr/language/chain.h"
#include "zvr/language/original.h"

namespace zvr {

class Walk {
 public:
  // `data` are the input's bytes, `path` is for messages. `asOnHost` as for Original.
  Walk(std::string path, Bytes data, const PictureOptions& options, bool asOnHost)
      : path_(std::move(path)), data_(std::move(data)), options_(options), asOnHost_(asOnHost) {}

  // Takes one step; its result becomes @ where it is a picture or string. Throws Failure.
  host::Outcome take(const Step& step);

  // Whether the last step answered a picture or string, or changed the picture in place.
  bool hasResult() const { return hasResult_; }
  // The picture, with what the input adds to it.
  Image picture() const { return original_.finished(fromPicture(picture_.get())); }
  const Bytes& data() const { return data_; }

 private:
  host::PictureRef currentPicture();
  host::Value valueOf(const Argument& argument, host::Type type);
  void become(const host::Value& result);

  std::string path_;
  Bytes data_;  // of the input until a step takes it as a picture, then of the string that a step answered
  host::PictureRef picture_;
  PictureOptions options_;
  bool asOnHost_, hasResult_ = false;
  Original original_;  // the input, once it was taken as a picture
};

}  // namespace zvr
