// Fuzzes our host's parser of declarations, its parser of typed values, and the search for similar names.

#include <stdexcept>
#include <string>
#include <utility>

#include "fuzz/played_host.h"
#include "host/declarations.h"

namespace {

// Writes a declaration from its parts, as a person would.
std::string written(const host::Declaration& declaration) {
  std::string text = declaration.name, separator = "(";
  for (const host::Parameter& parameter : declaration.parameters) {
    text += std::exchange(separator, ", ");
    text +=
        (parameter.byRef ? "byref " : "byval ") + parameter.name + " as " + host::typeName(parameter.type);
    if (parameter.hasDefault) text += " = " + parameter.defaultText;
  }
  if (!declaration.parameters.empty()) text += ")";
  if (declaration.result != host::Type::none) text += " as " + host::typeName(declaration.result);
  return text;
}

bool isSame(const host::Parameter& a, const host::Parameter& b) {
  return a.name == b.name && a.type == b.type && a.byRef == b.byRef && a.hasDefault == b.hasDefault &&
         a.defaultText == b.defaultText;
}

void parse(const std::string& text) {
  const host::Declaration declaration = host::parseDeclaration(text);
  const host::Declaration again = host::parseDeclaration(written(declaration));
  if (again.name != declaration.name || again.result != declaration.result ||
      again.parameters.size() != declaration.parameters.size()) {
    fuzz::fail("a declaration reads differently when it is written out");
  }
  for (size_t i = 0; i < declaration.parameters.size(); ++i) {
    if (!isSame(declaration.parameters[i], again.parameters[i])) fuzz::fail("a parameter reads differently");
  }
  for (const host::Parameter& parameter : declaration.parameters) {
    try {
      host::parseValue(parameter, parameter.defaultText);
    } catch (const std::invalid_argument&) {
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  host::nameDistance(text.substr(0, 64), "ChangeContrastBrightnessLinearZVR");
  try {
    parse(text);
  } catch (const std::invalid_argument& problem) {
    if (!*problem.what()) fuzz::fail("an error without words");
  }
  return 0;
}
