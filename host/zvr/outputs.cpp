#include "host/zvr/outputs.h"

#include <filesystem>
#include <map>

#include "host/zvr/images.h"
#include "host/zvr/program.h"

namespace zvr {
namespace {

namespace fs = std::filesystem;

std::string writableExtension(const fs::path& input) {
  const std::string extension = input.extension();
  try {
    checkExtension(input);
    return extension.substr(1);
  } catch (const UsageError&) {
    return "png";
  }
}

std::string filled(const std::string& pattern, const fs::path& input, size_t number) {
  std::string result;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const size_t end = pattern[i] == '{' ? pattern.find('}', i) : std::string::npos;
    if (end == std::string::npos) {
      result += pattern[i];
      continue;
    }
    const std::string field = pattern.substr(i, end - i + 1);
    if (field == "{name}") {
      result += input.stem();
    } else if (field == "{ext}") {
      result += writableExtension(input);
    } else if (field == "{n}") {
      result += std::to_string(number);
    } else {
      throw UsageError("-o: " + field + " is unknown (known are {name}, {ext} and {n})");
    }
    i = end;
  }
  return result;
}

bool isFolder(const std::string& path) {
  std::error_code error;
  return path.back() == '/' || fs::is_directory(path, error);
}

}  // namespace

std::vector<std::string> planOutputs(const std::vector<std::string>& inputs, const std::string& pattern,
                                     const std::string& label) {
  std::vector<std::string> outputs;
  std::map<fs::path, std::string> users;
  for (const std::string& given : inputs) {
    const fs::path input(given);
    fs::path output =
        pattern.empty() ? input.parent_path() : fs::path(filled(pattern, input, outputs.size() + 1));
    if (pattern.empty() || isFolder(output)) output /= input.stem().string() + "-" + label + ".png";
    checkExtension(output);
    const auto [user, isNew] = users.emplace(output.lexically_normal(), given);
    if (!isNew) {
      throw UsageError("-o: " + user->second + " and " + given + " would both be written to " +
                       output.string() + "; use {name} or {n} in the name, or a folder");
    }
    outputs.push_back(output);
  }
  return outputs;
}

}  // namespace zvr
