// Whole files in and out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zvr {

// The path that means standard input where files are read, and standard output where they are written.
constexpr const char* kStandardStream = "-";

// The bytes of a file. Throws Failure with "PATH: what is wrong", and with the names that are near one that
// isn't there.
std::vector<uint8_t> readFile(const std::string& path);
// Writes a file under another name in the same folder, which is made when it is missing, and renames it when
// it is complete. A link stays, and the file that it names is written; a file that is replaced leaves its
// mode and, where that is allowed, its owner. Throws Failure with "PATH: what is wrong", and UsageError for
// standard output that is a terminal.
void writeFile(const std::string& path, const std::vector<uint8_t>& bytes);

// The same text for all paths that lead to one file, through links or not, and another for every other file.
// The file need not be there yet.
std::string fileIdentity(const std::string& path);

}  // namespace zvr
