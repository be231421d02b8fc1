// Files for arguments by name: --in NAME=PATH and --out NAME=PATH.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/host.h"

namespace zvr {

struct NamedFile {
  std::string option;        // "--in"
  std::string method, name;  // of the parameter; without a method any that has it
  std::string path;
};

// Reads "NAME=PATH" and "METHOD.NAME=PATH". Throws UsageError.
std::vector<NamedFile> parseNamedFiles(const std::string& option, const std::vector<std::string>& words);

// The methods that a step may turn out to call.
using Overloads = std::vector<const host::Method*>;
// Which of the steps has the parameter that the file is for, of those that `takes` lets through. Throws
// UsageError, with the names that there are, when none or more than one has.
size_t stepOf(const NamedFile& file, const std::vector<Overloads>& steps,
              const std::function<bool(const host::Parameter&)>& takes);

}  // namespace zvr
