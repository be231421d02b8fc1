#include "zvr/language/outputs.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>

#include "zvr/files/files.h"
#include "zvr/files/images.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

namespace fs = std::filesystem;

// The input's own extension where such files are written, else png; or that of the wanted format.
std::string writableExtension(const fs::path& input, const std::string& format) {
  if (!format.empty()) return format == "jpeg" ? "jpg" : format == "tiff" ? "tif" : format;
  const std::string extension = input.extension();
  return extension.empty() || writtenFormat(extension.substr(1)).empty() ? "png" : extension.substr(1);
}

// The input's name without its extension. That of "...png" would be the folder above.
std::string nameOf(const fs::path& input) {
  if (input == kStandardStream) return "stdin";
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
    } else if (field.size() == 6 && field.compare(0, 4, "{n:0") == 0 && field[4] >= '1' && field[4] <= '9') {
      const std::string digits = std::to_string(number);
      const auto width = static_cast<size_t>(field[4] - '0');
      result += std::string(width - std::min(width, digits.size()), '0') + digits;
    } else {
      throw UsageError(option + ": " + field + " is unknown (known are {name}, {ext}, {n} and {n:03})");
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

OutputPlan::OutputPlan(const std::vector<std::string>& reads, const PictureOptions& options)
    : options_(options) {
  for (const std::string& path : reads) {
    if (path != kStandardStream) reads_.emplace(fileIdentity(path), path);
  }
}

void OutputPlan::claim(const std::string& output, const std::string& option, const std::string& input) {
  const std::string identity = output == kStandardStream ? output : fileIdentity(output);
  const auto read = reads_.find(identity);
  const bool isOwn = options_.isInPlace && identity == fileIdentity(input);
  if (read != reads_.end() && !isOwn) {
    throw UsageError(option + ": " + output + " would be written over the input " + read->second +
                     "; choose another name or folder, or add --in-place");
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
    const std::string& format = options_.writing.format;
    const std::string extension = isPicture ? writableExtension(input, format) : "bin";
    const bool replaces = pattern.empty() && isPicture && options_.isInPlace;
    if (pattern == kStandardStream || (pattern.empty() && given == kStandardStream)) {
      claim(kStandardStream, option, given);
      outputs.emplace_back(kStandardStream);
      continue;
    }
    fs::path output = pattern.empty()
                          ? input.parent_path()
                          : fs::path(filled(option, pattern, input, extension, outputs.size() + 1));
    if (replaces) {
      output = input;
    } else if (pattern.empty() || isFolder(output)) {
      output /= nameOf(input) + "-" + label + "." + (isPicture && format.empty() ? "png" : extension);
    }
    if (isPicture) checkExtension(output, format);
    claim(output, option, given);
    outputs.push_back(output);
  }
  return outputs;
}

void addPictureOptions(CLI::App& command, PictureOptions& options) {
  Writing& writing = options.writing;
  command
      .add_option_function<std::string>(
          "--format",
          [&writing](const std::string& word) {
            writing.format = writtenFormat(word);
            if (writing.format.empty())
              throw UsageError("--format: '" + word + "' is not a format that zvr writes");
          },
          "Of the pictures that are written; without it by the extension, png to standard output")
      ->type_name("png|jpeg|tiff|bmp|webp");
  command.add_option("--quality", writing.quality, "Quality of written JPEG and WebP files")
      ->type_name("1...100")
      ->check(CLI::Range(1, 100).description(""))
      ->capture_default_str();
  command.add_option("--subsampling", writing.subsampling, "Of JPEG files; without it by the quality")
      ->type_name("4:4:4|4:2:2|4:2:0")
      ->check(CLI::IsMember({"4:4:4", "4:2:2", "4:2:0"}).description(""));
  command.add_option("--compression", writing.compression, "Of PNG files, 9 for the smallest")
      ->type_name("0...9")
      ->check(CLI::Range(0, 9).description(""))
      ->capture_default_str();
  const std::map<std::string, Alpha> ways = {
      {"keep", Alpha::keep}, {"drop", Alpha::drop}, {"premultiplied", Alpha::premultiplied}};
  command
      .add_option("--alpha", options.alpha,
                  "The input's transparency: put back on a result of its size (keep),\n"
                  "left out (drop), or sent through the library as in a host program (premultiplied)")
      ->type_name("keep|drop|premultiplied")
      ->transform(CLI::CheckedTransformer(ways).description(""));
  command.add_flag("--strip", options.strips, "Leave out colour profile, resolution and EXIF");
  command.add_flag_callback(
      "--no-autorotate", [&options] { options.upright = false; },
      "Leave pictures turned as they lie in the file");
  command.add_flag("--in-place", options.isInPlace, "Write a result over its input");
}

}  // namespace zvr
