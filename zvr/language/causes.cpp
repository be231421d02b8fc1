#include "zvr/language/causes.h"

#include "zvr/files/images.h"
#include "zvr/language/arguments.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/manual.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

std::string listed(const std::string& before, const std::string& name, const std::string& value) {
  return before + (before.empty() ? "" : ", ") + name + " = " + value;
}

// Only of arguments that must be given: nil means something where it is the default, and so do other sizes.
std::string causeOf(const host::Declaration& declaration, const host::PictureRef& receiver,
                    const std::vector<host::Value>& arguments) {
  std::string first = receiver ? valueText(receiver) : "", pictures = receiver ? listed("", "@", first) : "";
  bool doSizesDiffer = false;
  for (size_t i = 0; i < declaration.required(); ++i) {
    const auto& [name, type, isByRef, hasDefault, ignored] = declaration.parameters[i];
    if (isByRef) continue;
    const std::string text = valueText(arguments[i]);
    if (text == "nil") return name + " is nil";
    // A global method's are those of the picture that it makes; others are of rectangles, which are clipped.
    const bool isSide = !receiver && (host::equalNames(name, "width") || host::equalNames(name, "height"));
    if (isSide && std::get<int64_t>(arguments[i]) > int64_t{kLongestSide}) {
      return name + " is " + text + ", above " + std::to_string(kLongestSide);
    }
    if (type != host::Type::picture) continue;
    if (first.empty()) first = text;
    doSizesDiffer = doSizesDiffer || text != first;
    pictures = listed(pictures, name, text);
  }
  return doSizesDiffer ? "the sizes differ: " + pictures : "";
}

}  // namespace

std::string nilText(const host::Declaration& declaration, const host::PictureRef& receiver,
                    const std::vector<host::Value>& arguments) {
  const std::string cause = causeOf(declaration, receiver, arguments),
                    begin = declaration.name + " answered nil";
  if (!cause.empty()) return begin + ": " + cause;
  std::string given = receiver ? listed("", "@", valueText(receiver)) : "";
  for (size_t i = 0; i < arguments.size(); ++i) {
    std::string value = valueText(arguments[i]);
    if (!bytesOf(arguments[i]).empty()) value = value.substr(0, value.find(':'));  // a block's size is enough
    given = listed(given, declaration.parameters[i].name, value);
  }
  return begin + " for " + given + "." + manualOnFailure(declaration.name);
}

std::string manualOnFailure(const std::string& name) {
  constexpr size_t kOneLine = 10000;
  const std::string mark = "Failure. ";
  for (const std::string& styled : manualLines(name, kOneLine)) {
    const std::string line = terminal::withoutStyles(styled);
    if (const size_t at = line.find(mark); at != std::string::npos) {
      return " Memory ran out, or as the manual says: " + line.substr(at + mark.size());
    }
  }
  return "";
}

}  // namespace zvr
