// The words of `zvr apply`: inputs, and steps one after another with their arguments.
#pragma once

#include <string>
#include <vector>

#include "zvr/language/step.h"

namespace zvr {

// A memory block by reference that goes to a file.
struct BlockOutput {
  size_t step = 0, parameter = 0;  // indexes
  std::string pattern;             // as planned by OutputPlan
};

// The kind of @. An input is a file of either kind until a step takes it as one.
enum class Kind { input, picture, data };

struct Chain {
  std::vector<std::string> inputs;  // - is standard input
  std::vector<Step> steps;
  std::vector<BlockOutput> blocks;
  Kind left = Kind::input;  // of what the last step leaves
};

// Every file that a chain reads: its inputs, looks, and those among the arguments.
std::vector<std::string> filesRead(const Chain& chain);
// Whether a step is about transparency or masks.
bool concernsTransparency(const Chain& chain);
// Whether a word begins a step: a method's or class's name in any case, or a look.
bool beginsStep(const std::string& word);
// A path as a word among the inputs, which a step or a + would end.
std::string inputWord(const std::string& path);

// Reads the words. The first that begins a step ends the inputs; + stands between steps. A word NAME=VALUE
// gives the argument of that name, or a class's property; others fill the rest in order, but for parameters
// by reference. `outs` (words NAME=PATH) name the blocks by reference that go to files. Of overloads the
// first, in registered order, whose number and types fit is taken. Looks are read. Throws UsageError with
// what is expected, and Failure for a look.
Chain parseChain(const std::vector<std::string>& words, const std::vector<std::string>& outs);

}  // namespace zvr
