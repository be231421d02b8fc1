// Whole files in and out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zvr {

// The bytes of a file. Throws Failure with "PATH: what is wrong".
std::vector<uint8_t> readFile(const std::string& path);
// Writes a file under another name in the same folder, which is made when it is missing, and renames it when
// it is complete. Throws Failure with "PATH: what is wrong".
void writeFile(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace zvr
