// The files that the gallery's calls take.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zvr::gallery {

struct Material {
  std::string page;                           // where the page goes
  std::map<std::string, std::string> fields;  // for the words of examples
  std::vector<std::string> pictures;  // fields that calls start from, the photograph first; of one size
  int width = 0, height = 0;          // of these
  std::string notes;                  // sentences on what the calls run on
};

// Writes into `folder`/files what is made from the photograph and the sound (empty: a made-up tone).
// Photographs above 3 megapixels are scaled down first. Throws UsageError where an output is an input, and
// Failure.
Material prepare(const std::string& photo, const std::string& sound, const std::string& folder);

}  // namespace zvr::gallery
