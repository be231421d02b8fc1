#include "host/zvr/outputs.h"

#include <CLI/CLI.hpp>

#include <filesystem>

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

std::string filled(const std::string& option, const std::string& pattern, const fs::path& input,
                   const std::string& extension, size_t number) {
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
      result += extension;
    } else if (field == "{n}") {
      result += std::to_string(number);
    } else {
      throw UsageError(option + ": " + field + " is unknown (known are {name}, {ext} and {n})");
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

std::vector<std::string> OutputPlan::add(Content content, const std::vector<std::string>& inputs,
                                         const std::string& option, const std::string& pattern,
                                         const std::string& label) {
  const bool isPicture = content == Content::picture;
  std::vector<std::string> outputs;
  for (const std::string& given : inputs) {
    const fs::path input(given);
    const std::string extension = isPicture ? writableExtension(input) : "bin";
    fs::path output = pattern.empty()
                          ? input.parent_path()
                          : fs::path(filled(option, pattern, input, extension, outputs.size() + 1));
    if (pattern.empty() || isFolder(output)) {
      output /= input.stem().string() + "-" + label + (isPicture ? ".png" : ".bin");
    }
    if (isPicture) checkExtension(output);
    const auto [entry, isNew] = users_.emplace(fs::absolute(output).lexically_normal(), User{option, given});
    if (!isNew) {
      const auto& [otherOption, otherInput] = entry->second;
      if (otherInput == given && otherOption != option) {
        throw UsageError(otherOption + " and " + option + " would both be written to " + output.string());
      }
      throw UsageError(option + ": " + otherInput + " and " + given + " would both be written to " +
                       output.string() + "; use {name} or {n} in the name, or a folder");
    }
    outputs.push_back(output);
  }
  return outputs;
}

void addQuality(CLI::App& command, int& quality) {
  command.add_option("--quality", quality, "Quality of written JPEG files")
      ->type_name("1...100")
      ->check(CLI::Range(1, 100).description(""))
      ->capture_default_str();
}

std::vector<std::string> OutputPlan::pictures(const std::vector<std::string>& inputs,
                                              const std::string& option, const std::string& pattern,
                                              const std::string& label) {
  return add(Content::picture, inputs, option, pattern, label);
}

std::vector<std::string> OutputPlan::data(const std::vector<std::string>& inputs, const std::string& option,
                                          const std::string& pattern, const std::string& label) {
  return add(Content::data, inputs, option, pattern, label);
}

std::vector<std::string> planOutputs(const std::vector<std::string>& inputs, const std::string& pattern,
                                     const std::string& label) {
  return OutputPlan().pictures(inputs, "-o", pattern, label);
}

}  // namespace zvr
