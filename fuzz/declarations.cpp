// Fuzzes our host's parser of declarations, its parser of typed values, and the search for similar names.

#include <stdexcept>

#include "fuzz/played_host.h"
#include "host/declarations.h"
#include "zvr/language/signatures.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  host::nameDistance(text.substr(0, 64), "ChangeContrastBrightnessLinearZVR");
  try {
    const host::Declaration declaration = host::parseDeclaration(text);
    const std::string again = zvr::signatureText(declaration);
    if (zvr::signatureText(host::parseDeclaration(again)) != again)
      fuzz::fail("it reads differently when written out");
    for (const host::Parameter& parameter : declaration.parameters)
      host::parseValue(parameter, parameter.defaultText);
  } catch (const std::invalid_argument&) {
  }
  return 0;
}
