#include "host/zvr/outputs.h"

#include <CLI/CLI.hpp>

#include <filesystem>

#include "host/zvr/files.h"
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

// The input's name without its extension. That of "...png" would be the folder above.
std::string nameOf(const fs::path& input) {
  const std::string stem = input.stem();
  return stem == "." || stem == ".." ? input.filename() : input.stem();
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
      result += nameOf(input);
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

OutputPlan::OutputPlan(const std::vector<std::string>& reads) {
  for (const std::string& path : reads) reads_.emplace(fileIdentity(path), path);
}

void OutputPlan::claim(const std::string& output, const std::string& option, const std::string& input) {
  const std::string identity = fileIdentity(output);
  if (const auto read = reads_.find(identity); read != reads_.end()) {
    throw UsageError(option + ": " + output + " would be written over the input " + read->second +
                     "; choose another name or folder");
  }
  const auto [entry, isNew] = users_.emplace(identity, User{option, input});
  if (isNew) return;
  const auto& [otherOption, otherInput] = entry->second;
  if (otherInput == input && otherOption != option) {
    throw UsageError(otherOption + " and " + option + " would both be written to " + output);
  }
  throw UsageError(option + ": " + otherInput + " and " + input + " would both be written to " + output +
                   "; use {name} or {n} in the name, or a folder");
}

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
      output /= nameOf(input) + "-" + label + (isPicture ? ".png" : ".bin");
    }
    if (isPicture) checkExtension(output);
    claim(output, option, given);
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

std::string planOutput(const std::string& input, const std::string& pattern, const std::string& label,
                       const std::vector<std::string>& others) {
  std::vector<std::string> reads = others;
  reads.push_back(input);
  return OutputPlan(reads).pictures({input}, "-o", pattern, label)[0];
}

}  // namespace zvr
