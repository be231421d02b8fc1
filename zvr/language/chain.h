// The words of `zvr apply`: inputs, and methods one after another with their arguments.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/calls.h"

namespace zvr {

// The result of the step before, or the input; written @.
struct Current {};
// A file that becomes what the parameter is: a picture, or the bytes of a memory block or string.
struct ArgumentFile {
  std::string path;
};
using Argument = std::variant<host::Value, Current, ArgumentFile>;

struct Step {
  const host::Method* method = nullptr;
  std::vector<Argument> arguments;   // one for each parameter
  std::optional<Argument> assigned;  // the value of METHOD ... = VALUE
};

// A memory block by reference that goes to a file.
struct BlockOutput {
  size_t step = 0, parameter = 0;  // indexes
  std::string pattern;             // as planned by OutputPlan
};

// The kind of @. An input is a file of either kind until a step takes it as one.
enum class Kind { input, picture, data };

struct Chain {
  std::vector<std::string> inputs;
  std::vector<Step> steps;
  std::vector<BlockOutput> blocks;
  Kind left = Kind::input;  // of what the last step leaves
};

// Every file that a chain reads: its inputs, and those among the arguments.
std::vector<std::string> filesRead(const Chain& chain);
// Whether a step is about transparency or masks: then the picture goes through the library as a host has it.
bool concernsTransparency(const Chain& chain);
// A path as a word among the inputs, which a method's name or a + would end.
std::string inputWord(const std::string& path);

// Whether arguments of this type are files.
bool isFileType(host::Type type);

// Reads the words. The first word that names a registered method, in any case, ends the inputs; + stands
// between steps. Parameters by reference take no word, nor do those that `ins` (words NAME=PATH) names;
// `outs` names the blocks by reference that go to files. Of overloads the first, in registered order, whose
// number and types fit is taken. Throws UsageError with what is expected.
Chain parseChain(const std::vector<std::string>& words, const std::vector<std::string>& ins,
                 const std::vector<std::string>& outs);

}  // namespace zvr
