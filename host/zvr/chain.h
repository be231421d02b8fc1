// The words of `zvr apply`: inputs, and methods one after another with their arguments.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/calls.h"

namespace zvr {

// The picture as the step before left it, written @.
struct CurrentPicture {};
struct PictureFile {
  std::string path;
};
using Argument = std::variant<host::Value, CurrentPicture, PictureFile>;

struct Step {
  const host::Method* method = nullptr;
  std::vector<Argument> arguments;  // one for each parameter up to the last that was given
};

struct Chain {
  std::vector<std::string> inputs;
  std::vector<Step> steps;
};

// Reads the words. The first word that names a registered method, in any case, ends the inputs; + stands
// between steps. Parameters by reference take no word. Of overloads the first, in registered order, whose
// number and types fit is taken. Throws UsageError with what is expected.
Chain parseChain(const std::vector<std::string>& words);

}  // namespace zvr
