#include "zvr/language/chain.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "zvr/language/named_files.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

using host::Type;
using Words = std::vector<std::string>;
constexpr const char *kBetweenSteps = "+", *kAssigns = "=", *kCurrent = "@";

bool namesMethod(const std::string& word) { return !host::findMethods(word).empty(); }

// The words of one step, taken apart.
struct StepWords {
  Overloads overloads;
  Words arguments;
  std::optional<std::string> assigned;
  std::vector<NamedFile> ins;

  const NamedFile* in(const host::Parameter& parameter) const {
    for (const NamedFile& file : ins) {
      if (host::equalNames(file.name, parameter.name)) return &file;
    }
    return nullptr;
  }
};

StepWords splitStep(const Words& words) {
  StepWords step;
  step.overloads = host::findMethods(words[0]);
  if (step.overloads.empty()) throw UsageError("no method '" + words[0] + "'" + nearestText(words[0]));
  step.arguments.assign(words.begin() + 1, words.end());
  const auto sign = std::find(step.arguments.begin(), step.arguments.end(), kAssigns);
  if (sign == step.arguments.end()) return step;
  auto& overloads = step.overloads;
  const std::string name = overloads[0]->declaration.name;
  overloads.erase(std::remove_if(overloads.begin(), overloads.end(), [](auto* m) { return !m->setter; }),
                  overloads.end());
  if (overloads.empty()) throw UsageError(name + " can't be assigned to");
  if (step.arguments.end() - sign != 2) throw UsageError(name + ": expected one value after =");
  step.assigned = step.arguments.back();
  step.arguments.erase(sign, step.arguments.end());
  return step;
}

Argument argumentOf(const host::Parameter& parameter, const std::string& word) {
  if (!isFileType(parameter.type)) return host::parseValue(parameter, word);
  if (host::equalNames(word, "nil")) return host::Value{};
  if (word == kCurrent) return Current{};
  return ArgumentFile{word};
}

// Whether a method takes as many words as are given.
bool admits(const host::Declaration& declaration, const StepWords& words) {
  size_t least = 0, most = 0;
  for (const host::Parameter& parameter : declaration.parameters) {
    if (parameter.byRef || words.in(parameter)) continue;
    ++most;
    if (!parameter.hasDefault) ++least;
  }
  return words.arguments.size() >= least && words.arguments.size() <= most;
}

// A global method of one picture or string means the current one when none is given.
bool meansCurrent(const host::Method& method, const StepWords& words) {
  const auto& parameters = method.declaration.parameters;
  return words.arguments.empty() && words.ins.empty() && !host::takesReceiver(method) &&
         parameters.size() == 1 && isFileType(parameters[0].type) && !parameters[0].byRef;
}

// Throws std::invalid_argument for a word that does not fit its type.
Step stepOf(const host::Method& method, const StepWords& words) {
  Step step{&method, {}, {}};
  auto word = words.arguments.begin();
  for (const host::Parameter& parameter : method.declaration.parameters) {
    if (const NamedFile* file = words.in(parameter)) {
      step.arguments.emplace_back(ArgumentFile{file->path});
    } else if (parameter.byRef) {
      step.arguments.emplace_back(host::Value{});
    } else if (word == words.arguments.end()) {
      step.arguments.emplace_back(host::parseValue(parameter, parameter.defaultText));
    } else {
      step.arguments.push_back(argumentOf(parameter, *word++));
    }
  }
  if (words.assigned) {
    host::Parameter value;
    value.name = method.declaration.name;
    value.type = method.declaration.result;
    step.assigned = argumentOf(value, *words.assigned);
  }
  return step;
}

[[noreturn]] void refuseCount(const StepWords& words) {
  const size_t count = words.arguments.size();
  const std::string text = words.overloads[0]->declaration.name + ": " + std::to_string(count) +
                           (count == 1 ? " argument" : " arguments") + " given, expected";
  Words further;
  bool takesFile = false, takesNoWord = false;
  for (const host::Method* method : words.overloads) {
    further.push_back("  " + signatureText(method->declaration));
    for (const host::Parameter& parameter : method->declaration.parameters) {
      takesNoWord = takesNoWord || parameter.byRef;
      takesFile = takesFile || (isFileType(parameter.type) && !parameter.byRef);
    }
  }
  if (takesFile) {
    further.emplace_back(
        "a Picture, MemoryBlock or String is given as a file name, as @ (the current one) or as nil");
  }
  if (takesNoWord) {
    further.emplace_back("a byref argument takes no word: it is printed, or written with --out NAME=PATH");
  }
  throw UsageError(text, std::move(further));
}

Step parseStep(const StepWords& words) {
  std::string problem;
  for (const host::Method* method : words.overloads) {
    if (meansCurrent(*method, words)) return {method, {Current{}}, {}};
    if (!admits(method->declaration, words)) continue;
    try {
      return stepOf(*method, words);
    } catch (const std::invalid_argument& error) {
      if (problem.empty()) problem = method->declaration.name + ": " + error.what();
    }
  }
  if (problem.empty()) refuseCount(words);
  throw UsageError(problem);
}

// Follows what @ is through the steps.
class KindCheck {
 public:
  void pass(const Step& step) {
    const host::Declaration& declaration = step.method->declaration;
    if (host::takesReceiver(*step.method)) use(Type::picture, declaration.name + " is a method of Picture");
    for (size_t i = 0; i < step.arguments.size(); ++i) {
      useArgument(step.arguments[i], declaration.parameters[i].type, declaration.name);
    }
    if (step.assigned) return useArgument(*step.assigned, declaration.result, declaration.name);
    if (declaration.result == Type::picture) kind_ = Kind::picture;
    if (declaration.result == Type::string) kind_ = Kind::data;
  }
  Kind kind() const { return kind_; }

 private:
  void useArgument(const Argument& argument, Type type, const std::string& method) {
    if (std::holds_alternative<Current>(argument)) use(type, method + " takes a " + host::typeName(type));
  }
  void use(Type type, const std::string& what) {
    const Kind wanted = type == Type::picture ? Kind::picture : Kind::data;
    if (kind_ != Kind::input && kind_ != wanted) {
      throw UsageError(what + ", but here @ is " +
                       (wanted == Kind::data ? "a picture" : "bytes, not a picture"));
    }
    kind_ = wanted;
  }

  Kind kind_ = Kind::input;
};

BlockOutput blockOutput(const NamedFile& file, const std::vector<Step>& steps) {
  std::vector<Overloads> methods;
  for (const Step& step : steps) methods.push_back({step.method});
  BlockOutput output;
  output.step = stepOf(file, methods, [](const host::Parameter& parameter) {
    return parameter.byRef && parameter.type == Type::memoryBlock;
  });
  const auto& parameters = steps[output.step].method->declaration.parameters;
  while (!host::equalNames(parameters[output.parameter].name, file.name)) ++output.parameter;
  output.pattern = file.path;
  return output;
}

// No word names a method; the first that names no file either was probably meant to.
[[noreturn]] void refuseWithoutMethod(const Words& words) {
  for (const std::string& word : words) {
    std::error_code error;
    if (!std::filesystem::exists(word, error)) {
      throw UsageError("'" + word + "' is neither a file nor a method" + nearestText(word));
    }
  }
  throw UsageError("expected a METHOD after the inputs; `zvr list` shows every method");
}

std::vector<StepWords> splitSteps(Words::const_iterator begin, Words::const_iterator end) {
  std::vector<StepWords> steps;
  for (;;) {
    const auto sign = std::find(begin, end, kBetweenSteps);
    if (begin == sign) throw UsageError("expected a METHOD after +");
    steps.push_back(splitStep(Words(begin, sign)));
    if (sign == end) return steps;
    begin = sign + 1;
  }
}

void addIns(std::vector<StepWords>& steps, const Words& ins) {
  std::vector<Overloads> methods;
  for (const StepWords& step : steps) methods.push_back(step.overloads);
  for (const NamedFile& file : parseNamedFiles("--in", ins)) {
    const auto takes = [](const host::Parameter& parameter) { return isFileType(parameter.type); };
    steps[stepOf(file, methods, takes)].ins.push_back(file);
  }
}

}  // namespace

std::vector<std::string> filesRead(const Chain& chain) {
  std::vector<std::string> files = chain.inputs;
  const auto add = [&](const Argument& argument) {
    if (const auto* file = std::get_if<ArgumentFile>(&argument)) files.push_back(file->path);
  };
  for (const Step& step : chain.steps) {
    std::for_each(step.arguments.begin(), step.arguments.end(), add);
    if (step.assigned) add(*step.assigned);
  }
  return files;
}

bool concernsTransparency(const Chain& chain) {
  return std::any_of(chain.steps.begin(), chain.steps.end(), [](const Step& step) {
    const host::Declaration& declaration = step.method->declaration;
    const auto isMaskScrolled = [](const host::Parameter& p) {
      return host::equalNames(p.name, "scrollmask");
    };
    return declaration.name == "EmbeddedMaskZVR" || declaration.name == "HasMaskZVR" ||
           std::any_of(declaration.parameters.begin(), declaration.parameters.end(), isMaskScrolled);
  });
}

std::string inputWord(const std::string& path) {
  return namesMethod(path) || path == kBetweenSteps ? "./" + path : path;
}

bool isFileType(host::Type type) {
  return type == Type::picture || type == Type::memoryBlock || type == Type::string;
}

Chain parseChain(const Words& words, const Words& ins, const Words& outs) {
  // The word after a + is a method's name, never an input.
  const auto firstPlus = std::find(words.begin(), words.end(), kBetweenSteps);
  const auto first = std::find_if(words.begin(), firstPlus, namesMethod);
  if (first == firstPlus) refuseWithoutMethod(Words(words.begin(), firstPlus));
  Chain chain;
  chain.inputs.assign(words.begin(), first);
  if (chain.inputs.empty()) throw UsageError("expected an INPUT before " + *first);
  std::vector<StepWords> steps = splitSteps(first, words.end());
  addIns(steps, ins);
  KindCheck check;
  for (const StepWords& step : steps) {
    chain.steps.push_back(parseStep(step));
    check.pass(chain.steps.back());
  }
  chain.left = check.kind();
  for (const NamedFile& file : parseNamedFiles("--out", outs)) {
    chain.blocks.push_back(blockOutput(file, chain.steps));
  }
  return chain;
}

}  // namespace zvr
