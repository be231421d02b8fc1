// Declarations as a person writes them.
#pragma once

#include <utility>

#include "host/declarations.h"

inline std::string written(const host::Declaration& declaration) {
  std::string text = declaration.name, separator = "(";
  for (const host::Parameter& p : declaration.parameters) {
    text += std::exchange(separator, ", ") + (p.byRef ? "byref " : "byval ") + p.name + " as " +
            host::typeName(p.type) + (p.hasDefault ? " = " + p.defaultText : "");
  }
  if (!declaration.parameters.empty()) text += ")";
  return text + (declaration.result == host::Type::none ? "" : " as " + host::typeName(declaration.result));
}
