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

// A block by its size, and its bytes as 32-bit counts where there are four to a count.
std::string blockText(const host::MemoryBlockRef& block) {
  std::string text = "MemoryBlock of " + std::to_string(host::memoryBlockSize(block.get())) + " bytes";
  const std::vector<uint32_t> entries = countsIn(block);
  if (entries.empty()) return text;
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
    return blockText(block);
  }
  std::string operator()(const host::ObjectRef& object) const { return object ? "Object" : "nil"; }
};

// In a narrow terminal lines end within parameters, too.
std::string signature(const host::Declaration& declaration, Style nameStyle, size_t width) {
  constexpr size_t kNarrow = 70;
  std::string text, separator = "(";
  for (const host::Parameter& parameter : declaration.parameters) {
    if (text.empty() && declaration.name.size() + 1 + parameter.name.size() > width) separator = "( ";
    std::string own = (parameter.byRef ? "byref " : "") + parameter.name + " as " +
                      host::typeName(parameter.type) +
                      (parameter.hasDefault ? " = " + parameter.defaultText : "");
    if (width >= kNarrow) std::replace(own.begin(), own.end(), ' ', terminal::kHardSpace);
    text += separator + own;
    separator = ", ";
  }
  if (!text.empty()) text += ')';
  if (declaration.result != host::Type::none)
    text += std::string(" as") + terminal::kHardSpace + host::typeName(declaration.result);
  return styled(nameStyle, declaration.name) + text;
}

}  // namespace

std::vector<std::string> signatureLines(const host::Declaration& declaration, size_t width) {
  return terminal::filled(signature(declaration, Style::name, width), width, "  ");
}

std::string signatureText(const host::Declaration& declaration) {
  constexpr size_t kAny = std::string::npos;
  return terminal::filled(signature(declaration, Style::plain, kAny), kAny)[0];
}

std::string classTitle(const host::Class& type) {
  return styled(Style::heading, "Class " + type.name) +
         (type.consoleSafe() ? ", console-safe" : ", not console-safe");
}

std::vector<uint32_t> countsIn(const host::MemoryBlockRef& block) {
  const size_t size = host::memoryBlockSize(block.get());
  std::vector<uint32_t> counts(size % sizeof(uint32_t) == 0 ? size / sizeof(uint32_t) : 0);
  if (!counts.empty()) std::memcpy(counts.data(), host::memoryBlockBytes(block.get()), size);
  return counts;
}

std::string valueText(const host::Value& value) { return std::visit(ToText{}, value); }

std::vector<std::string> memberNames() {
  std::vector<std::string> names;
  for (const auto* methods : {&host::members().globals, &host::members().pictureMethods}) {
    for (const host::Method& method : *methods) names.push_back(method.declaration.name);
  }
  for (const host::Class& type : host::members().classes) names.push_back(type.name);
  return names;
}

std::string nearestText(const std::string& name) {
  const std::string text = terminal::didYouMean(name, memberNames());
  return text.empty() ? "; `zvr list` shows every method" : text;
}

}  // namespace zvr
