#include "zvr/language/signatures.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <numeric>

#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using terminal::Style;
using terminal::styled;

constexpr size_t kPageWidth = 100;
constexpr size_t kNameColumn = 4;

// A block by its size, and its bytes as 32-bit counts where there are four to a count.
std::string blockText(REALmemoryBlockStruct* block) {
  const size_t size = host::memoryBlockSize(block);
  std::string text = "MemoryBlock of " + std::to_string(size) + " bytes";
  std::vector<uint32_t> entries(size / sizeof(uint32_t));
  if (entries.empty() || size % sizeof(uint32_t) != 0) return text;
  std::memcpy(entries.data(), host::memoryBlockBytes(block), size);
  const auto zeros = static_cast<size_t>(std::count(entries.begin(), entries.end(), 0U));
  text += ": " + std::to_string(entries.size() - zeros) + " of " + std::to_string(entries.size()) +
          " entries are not 0";
  if (zeros == entries.size()) return text;
  const auto largest = std::max_element(entries.begin(), entries.end());
  return text + ", sum " + std::to_string(std::accumulate(entries.begin(), entries.end(), uint64_t{0})) +
         ", largest " + std::to_string(*largest) + " (entry " + std::to_string(largest - entries.begin()) +
         ")";
}

struct ToText {
  std::string operator()(std::monostate) const { return "nil"; }
  std::string operator()(int64_t number) const { return std::to_string(number); }
  std::string operator()(double number) const {
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), number).ptr};
  }
  std::string operator()(bool flag) const { return flag ? "true" : "false"; }
  std::string operator()(host::Color color) const {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "&c";
    for (int shift = 20; shift >= 0; shift -= 4) text += kDigits[color.rgb >> shift & 15];
    return text;
  }
  std::string operator()(const host::StringRef& string) const {
    constexpr size_t kShort = 200;
    if (!string) return "nil";
    const std::string bytes = host::stringBytes(string.get());
    const auto isPlain = [](char c) { return c >= ' ' && c < 0x7F; };
    if (bytes.size() <= kShort && std::all_of(bytes.begin(), bytes.end(), isPlain)) return '"' + bytes + '"';
    return "String of " + std::to_string(bytes.size()) + " bytes";
  }
  std::string operator()(const host::PictureRef& picture) const {
    if (!picture) return "nil";
    return "Picture of " + std::to_string(host::pictureWidth(picture.get())) + " x " +
           std::to_string(host::pictureHeight(picture.get()));
  }
  std::string operator()(const host::MemoryBlockRef& block) const {
    if (!block) return "nil";
    return blockText(block.get());
  }
  std::string operator()(const host::ObjectRef& object) const { return object ? "Object" : "nil"; }
};

// The column of marks, then the name (or as much room), then the signature over several lines.
void addMember(std::vector<std::string>& lines, const host::Method& method, const std::string& name,
               size_t nameWidth) {
  const size_t column = kNameColumn + nameWidth + 1;
  const std::vector<std::string> parts = signatureLines(method.declaration, kPageWidth - column);
  const std::string padding(parts[0].empty() ? 0 : nameWidth - name.size() + 1, ' ');
  const std::string mark = method.consoleSafe() ? styled(Style::good, "c") : styled(Style::faint, "-");
  lines.push_back("  " + mark + " " + styled(Style::name, name) + padding + parts[0]);
  for (size_t i = 1; i < parts.size(); ++i) lines.push_back(std::string(column, ' ') + parts[i]);
  if (method.setter) lines.push_back(std::string(column, ' ') + styled(Style::faint, "can be assigned to"));
}

}  // namespace

std::string parameterText(const host::Parameter& parameter) {
  std::string text = parameter.byRef ? "byref " : "";
  text += parameter.name + " as " + host::typeName(parameter.type);
  if (parameter.hasDefault) text += " = " + parameter.defaultText;
  return text;
}

std::vector<std::string> signatureLines(const host::Declaration& declaration, size_t width) {
  std::vector<std::string> words;
  for (const host::Parameter& parameter : declaration.parameters) {
    words.push_back((words.empty() ? "(" : "") + parameterText(parameter) + ",");
  }
  if (!words.empty()) words.back().back() = ')';
  if (declaration.result != host::Type::none) words.push_back("as " + host::typeName(declaration.result));
  std::vector<std::string> lines(1);
  for (const std::string& word : words) {
    const bool fits = lines.back().empty() || width == 0 || lines.back().size() + 1 + word.size() <= width;
    if (!fits) lines.emplace_back(" ");
    if (!lines.back().empty() && lines.back() != " ") lines.back() += ' ';
    lines.back() += word;
  }
  return lines;
}

std::string signatureText(const host::Declaration& declaration) {
  const std::string rest = signatureLines(declaration, 0)[0];
  return declaration.name + (declaration.parameters.empty() && !rest.empty() ? " " : "") + rest;
}

std::string valueText(const host::Value& value) { return std::visit(ToText{}, value); }

std::string nearestText(const std::string& name) {
  std::vector<std::string> names;
  for (const auto* methods : {&host::members().globals, &host::members().pictureMethods}) {
    for (const host::Method& method : *methods) names.push_back(method.declaration.name);
  }
  for (const host::Class& type : host::members().classes) names.push_back(type.name);
  const std::string text = terminal::didYouMean(name, names);
  return text.empty() ? "; `zvr list` shows every method" : text;
}

std::vector<std::string> methodLines(const std::vector<const host::Method*>& methods) {
  size_t width = 0;
  for (const host::Method* method : methods) width = std::max(width, method->declaration.name.size());
  std::vector<std::string> lines;
  std::vector<const host::Method*> left = methods;
  while (!left.empty()) {
    const std::string name = left.front()->declaration.name;
    const auto others = std::stable_partition(left.begin(), left.end(), [&](const host::Method* m) {
      return host::equalNames(m->declaration.name, name);
    });
    for (auto method = left.begin(); method != others; ++method) {
      addMember(lines, **method, method == left.begin() ? name : "", width);
    }
    left.erase(left.begin(), others);
  }
  return lines;
}

std::vector<std::string> classLines(const host::Class& type) {
  const bool isConsoleSafe = (type.flags & kFlagConsoleSafe) != 0;
  std::vector<std::string> lines{styled(Style::heading, "Class " + type.name) +
                                 (isConsoleSafe ? ", console-safe" : ", not console-safe")};
  for (const host::Property& property : type.properties) {
    const bool isSafe = (property.flags & kFlagConsoleSafe) != 0;
    lines.push_back("  " + (isSafe ? styled(Style::good, "c") : styled(Style::faint, "-")) + " " +
                    styled(Style::name, property.name) + " as " + property.type);
  }
  std::vector<const host::Method*> methods;
  for (const host::Method& method : type.methods) methods.push_back(&method);
  const std::vector<std::string> more = methodLines(methods);
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

}  // namespace zvr
