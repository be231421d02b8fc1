// Sound files in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zvr {

// The samples of a sound file, its channels mixed down to one, as signed 16-bit numbers (Bits 15 in the terms
// of RenderSamplesZVR). Reads any format that libsndfile knows. Throws Failure with "PATH: what is wrong".
std::vector<uint8_t> loadSound(const std::string& path);

}  // namespace zvr
