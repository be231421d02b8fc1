#include "host/zvr/chain.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "host/zvr/program.h"
#include "host/zvr/signatures.h"

namespace zvr {
namespace {

using Words = std::vector<std::string>;
constexpr const char* kBetweenSteps = "+";

bool namesMethod(const std::string& word) { return !host::findMethods(word).empty(); }

Argument argumentOf(const host::Parameter& parameter, const std::string& word) {
  if (parameter.type == host::Type::picture && !host::equalNames(word, "nil")) {
    if (word == "@") return CurrentPicture{};
    return PictureFile{word};
  }
  return host::parseValue(parameter, word);
}

// How many words a method takes, at least and at most.
struct WordCount {
  size_t least = 0, most = 0;
  bool admits(size_t count) const { return count >= least && count <= most; }
};
WordCount wordCount(const host::Declaration& declaration) {
  WordCount count;
  for (size_t i = 0; i < declaration.parameters.size(); ++i) {
    if (declaration.parameters[i].byRef) continue;
    ++count.most;
    if (i < declaration.required()) ++count.least;
  }
  return count;
}

// Throws std::invalid_argument for a word that does not fit its type.
Step stepOf(const host::Method& method, const Words& words) {
  Step step{&method, {}};
  auto word = words.begin();
  for (const host::Parameter& parameter : method.declaration.parameters) {
    if (parameter.byRef) {
      step.arguments.emplace_back(host::Value{});
    } else if (word != words.end()) {
      step.arguments.push_back(argumentOf(parameter, *word++));
    } else {
      break;
    }
  }
  return step;
}

[[noreturn]] void refuseCount(const std::vector<const host::Method*>& methods, size_t count) {
  const std::string& name = methods[0]->declaration.name;
  std::string text =
      name + ": " + std::to_string(count) + (count == 1 ? " argument" : " arguments") + " given, expected";
  bool takesPicture = false;
  for (const host::Method* method : methods) {
    const auto& parameters = method->declaration.parameters;
    text += "\n  " + signatureText(method->declaration);
    takesPicture = takesPicture ||
                   std::any_of(parameters.begin(), parameters.end(),
                               [](const auto& parameter) { return parameter.type == host::Type::picture; });
  }
  if (takesPicture) text += "\na Picture is given as @ (the current picture), as a file name or as nil";
  throw UsageError(text);
}

Step parseStep(const Words& words) {
  const std::vector<const host::Method*> methods = host::findMethods(words[0]);
  if (methods.empty()) throw UsageError("no method '" + words[0] + "'" + nearestText(words[0]));
  const Words arguments(words.begin() + 1, words.end());
  std::string problem;
  for (const host::Method* method : methods) {
    if (!wordCount(method->declaration).admits(arguments.size())) continue;
    try {
      return stepOf(*method, arguments);
    } catch (const std::invalid_argument& error) {
      if (problem.empty()) problem = method->declaration.name + ": " + error.what();
    }
  }
  if (problem.empty()) refuseCount(methods, arguments.size());
  throw UsageError(problem);
}

// No word names a method: the first that is no file either was most likely meant to.
[[noreturn]] void refuseWithoutMethod(const Words& words) {
  for (const std::string& word : words) {
    std::error_code error;
    if (!std::filesystem::exists(word, error)) {
      throw UsageError("'" + word + "' is neither a file nor a method" + nearestText(word));
    }
  }
  throw UsageError("expected a METHOD after the inputs; `zvr list` shows every method");
}

}  // namespace

Chain parseChain(const Words& words) {
  // What follows a + is a method's name, never an input.
  const auto firstPlus = std::find(words.begin(), words.end(), kBetweenSteps);
  const auto first = std::find_if(words.begin(), firstPlus, namesMethod);
  if (first == firstPlus) refuseWithoutMethod(Words(words.begin(), firstPlus));
  Chain chain{Words(words.begin(), first), {}};
  if (chain.inputs.empty()) throw UsageError("expected an INPUT picture before " + *first);
  for (auto begin = first;;) {
    const auto end = std::find(begin, words.end(), kBetweenSteps);
    if (begin == end) throw UsageError("expected a METHOD after +");
    chain.steps.push_back(parseStep(Words(begin, end)));
    if (end == words.end()) return chain;
    begin = end + 1;
  }
}

}  // namespace zvr
