// Sound files in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zvr {

// The samples of a sound file, its channels mixed down to one.
struct Sound {
  // As RenderSamplesZVR names them: 8 (unsigned, a byte each) for files of 8 bits, else 15 (signed, two bytes
  // each).
  int bits = 0;
  std::vector<uint8_t> bytes;

  size_t count() const { return bytes.size() / (bits == 8 ? 1 : 2); }
};

// Reads any format that libsndfile knows. Throws Failure with "PATH: what is wrong".
Sound loadSound(const std::string& path);

}  // namespace zvr
