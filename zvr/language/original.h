// A picture file between its reading and the writing of a result: all that doesn't go through the library.
#pragma once

#include <string>
#include <vector>

#include "zvr/files/host_pictures.h"
#include "zvr/language/outputs.h"

namespace zvr {

// The road of a picture's transparency. `asOnHost`: a step is about transparency, which overrules the
// options.
inline Transparent roadOf(const PictureOptions& options, bool asOnHost) {
  return asOnHost || options.alpha == Alpha::premultiplied ? Transparent::asOnHost : Transparent::beside;
}

class Original {
 public:
  Original() = default;
  // Reads the picture. `asOnHost`: its transparency goes through the library whatever the options say. Throws
  // Failure.
  Original(const std::string& path, const std::vector<uint8_t>& file, const PictureOptions& options,
           bool asOnHost);

  // The host picture; handed over once.
  host::PictureRef takePicture() { return std::move(picture_); }
  // A result with the transparency that the file had, if it measures the same, and with the file's metadata,
  // as the options want it.
  Image finished(Image result) const;

 private:
  std::string path_;
  PictureOptions options_;
  host::PictureRef picture_;
  Metadata metadata_;
  int width_ = 0, height_ = 0;
  std::vector<uint8_t> opacities_;  // by rows; empty: opaque, or gone through the library
};

}  // namespace zvr
