#include "zvr/language/chain.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "zvr/files/files.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

using host::Type;
using Words = std::vector<std::string>;
constexpr const char *kBetweenSteps = "+", *kAssigns = "=", *kCurrent = "@";

std::string joined(const Words& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

bool exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

// Whether arguments of this type are files.
bool isFileType(Type type) {
  return type == Type::picture || type == Type::memoryBlock || type == Type::string;
}

// NAME=VALUE taken apart.
struct Named {
  std::string name, value;
};

// Without a name when the word is not of the form.
Named namedOf(const std::string& word) {
  const size_t sign = word.find('=');
  if (sign == std::string::npos) return {"", word};
  return {word.substr(0, sign), word.substr(sign + 1)};
}

// Names of parameters that some of the steps have, each once.
Words namesIn(const std::vector<Step>& steps, const std::function<bool(const host::Parameter&)>& counts) {
  Words names;
  for (const Step& step : steps) {
    for (const host::Parameter& parameter : step.declaration.parameters) {
      const bool isNew = std::find(names.begin(), names.end(), parameter.name) == names.end();
      if (isNew && counts(parameter)) names.push_back(parameter.name);
    }
  }
  return names;
}

// The words of one step, taken apart.
class StepWords {
 public:
  explicit StepWords(const Words& words) : candidates(stepsNamed(words[0])) {
    if (candidates.empty()) throw UsageError("no method or class '" + words[0] + "'" + nearestText(words[0]));
    auto end = std::find(words.begin(), words.end(), kAssigns);
    if (end != words.end()) takeAssigned(end, words.end());
    std::for_each(words.begin() + 1, end, [&](const std::string& word) { take(word); });
  }

  std::string name() const { return candidates[0].name; }
  const std::string* valueOf(const std::string& parameter) const {
    for (const Named& given : named) {
      if (host::equalNames(given.name, parameter)) return &given.value;
    }
    return nullptr;
  }

  std::vector<Step> candidates;  // overloads, or a class
  Words plain;                   // in order
  std::vector<Named> named;
  std::optional<std::string> assigned;

 private:
  void takeAssigned(Words::const_iterator sign, Words::const_iterator end) {
    const auto isFixed = [](const Step& step) { return step.type || !step.method->setter; };
    const std::string refusal = name() + " can't be assigned to";
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isFixed), candidates.end());
    if (candidates.empty()) throw UsageError(refusal);
    if (end - sign != 2) throw UsageError(name() + ": expected one value after =");
    assigned = sign[1];
  }
  void take(const std::string& word) {
    if (beginsStep(word))
      throw UsageError(name() + ": write + before " + word +
                       (isLook(word) ? "" : ", or ./" + word + " for a file"));
    const Named given = namedOf(word);
    const auto isMeant = [&](const host::Parameter& p) { return host::equalNames(p.name, given.name); };
    const bool isClass = candidates[0].type;
    if (!namesIn(candidates, isMeant).empty()) {
      if (valueOf(given.name)) throw UsageError(name() + ": " + given.name + " is given twice");
      named.push_back(given);
    } else if (isClass && given.name.empty()) {
      throw UsageError(name() + ": '" + word + "' is not of the form PROPERTY=VALUE");
    } else if (isClass || (!given.name.empty() && !exists(word))) {
      throw UsageError(name() + " has no argument '" + given.name + "'; there are " +
                       joined(namesIn(candidates, [](const auto&) { return true; }), ", "));
    } else {
      plain.push_back(word);
    }
  }
};

Argument argumentOf(const host::Parameter& parameter, const std::string& word) {
  if (!isFileType(parameter.type)) return host::parseValue(parameter, word);
  if (host::equalNames(word, "nil")) return host::Value{};
  if (word == kCurrent) return Current{};
  if (word.empty()) throw std::invalid_argument(parameter.name + ": expected a file name");
  return ArgumentFile{word};
}

// With its arguments; nothing when it takes more words or fewer. A class keeps the properties that are given.
// Throws std::invalid_argument for a word that does not fit its type.
std::optional<Step> withArguments(Step step, const StepWords& words) {
  size_t plain = 0;
  // A global method of one picture or string means the current one when none is given.
  const bool meansCurrent = !step.takesReceiver() && step.declaration.parameters.size() == 1;
  std::vector<host::Parameter> kept;
  for (const host::Parameter& parameter : step.declaration.parameters) {
    const std::string* given = words.valueOf(parameter.name);
    if (step.type && !given) continue;
    kept.push_back(parameter);
    if (!given && !parameter.byRef && plain < words.plain.size()) given = &words.plain[plain++];
    if (given) {
      step.arguments.push_back(argumentOf(parameter, *given));
    } else if (parameter.byRef) {
      step.arguments.emplace_back(host::Value{});
    } else if (parameter.hasDefault) {
      step.arguments.emplace_back(host::parseValue(parameter, parameter.defaultText));
    } else if (meansCurrent && isFileType(parameter.type)) {
      step.arguments.emplace_back(Current{});
    } else {
      return std::nullopt;
    }
  }
  const auto isKept = [&](const Named& given) {
    return std::any_of(kept.begin(), kept.end(),
                       [&](const auto& p) { return host::equalNames(p.name, given.name); });
  };
  if (plain < words.plain.size() || !std::all_of(words.named.begin(), words.named.end(), isKept))
    return std::nullopt;
  step.declaration.parameters = std::move(kept);
  if (words.assigned) {
    host::Parameter value;
    value.name = step.name;
    value.type = step.declaration.result;
    step.assigned = argumentOf(value, *words.assigned);
  }
  return step;
}

[[noreturn]] void refuseCount(const StepWords& words) {
  const size_t count = words.plain.size() + words.named.size();
  const auto has = [&](const std::function<bool(const host::Parameter&)>& counts) {
    return !namesIn(words.candidates, counts).empty();
  };
  Words further;
  for (const Step& step : words.candidates) further.push_back("  " + signatureText(step.declaration));
  if (has([](const auto& p) { return isFileType(p.type) && !p.byRef; }))
    further.emplace_back(
        "a Picture, MemoryBlock or String is given as a file name, as @ (the current one) or as nil");
  if (has([](const auto& p) { return p.byRef; }))
    further.emplace_back(
        "a byref argument takes no word but NAME=VALUE: it is printed, or written with --out NAME=PATH");
  if (has([](const auto& p) { return p.type == Type::color && !p.hasDefault; }))
    further.emplace_back("a shell takes & for itself: quote a colour, '&cFF8000', or write it as orange");
  throw UsageError(words.name() + ": " + std::to_string(count) + (count == 1 ? " argument" : " arguments") +
                       " given, expected",
                   std::move(further));
}

Step parseStep(const Words& given) {
  if (isLook(given[0])) {
    if (given.size() > 1) throw UsageError("expected + after " + given[0] + ", found '" + given[1] + "'");
    return lookStep(given[0]);
  }
  const StepWords words(given);
  if (words.candidates[0].hasTable())
    throw UsageError(words.name() + " has a table that a look fills: write a FILE.cube instead of the class");
  std::string problem;
  for (const Step& candidate : words.candidates) {
    try {
      if (std::optional<Step> step = withArguments(candidate, words)) return *std::move(step);
    } catch (const std::invalid_argument& error) {
      if (problem.empty()) problem = words.name() + ": " + error.what();
    }
  }
  if (problem.empty()) refuseCount(words);
  throw UsageError(problem);
}

// Follows what @ is through the steps.
class KindCheck {
 public:
  void pass(const Step& step) {
    const host::Declaration& declaration = step.declaration;
    if (step.takesReceiver()) use(Type::picture, step.name + " works on a picture");
    for (size_t i = 0; i < step.arguments.size(); ++i) {
      useArgument(step.arguments[i], declaration.parameters[i].type, step.name);
    }
    if (step.assigned) useArgument(*step.assigned, declaration.result, step.name);
    if (step.makesCurrent()) kind_ = declaration.result == Type::picture ? Kind::picture : Kind::data;
  }
  Kind kind() const { return kind_; }

 private:
  void useArgument(const Argument& argument, Type type, const std::string& name) {
    if (std::holds_alternative<Current>(argument)) use(type, name + " takes a " + host::typeName(type));
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

bool isBlockByRef(const host::Parameter& parameter) {
  return parameter.byRef && parameter.type == Type::memoryBlock;
}

BlockOutput blockOutput(const std::string& word, const std::vector<Step>& steps) {
  const Named out = namedOf(word);
  const std::string option = "--out: ";
  if (out.name.empty() || out.value.empty()) {
    throw UsageError(option + "'" + word + "' is not of the form NAME=PATH; " +
                     (out.name.empty() ? "did you mean -o " + word + "?" : "the path is missing"));
  }
  std::vector<BlockOutput> found;
  for (size_t i = 0; i < steps.size(); ++i) {
    const auto& parameters = steps[i].declaration.parameters;
    for (size_t j = 0; j < parameters.size(); ++j) {
      if (isBlockByRef(parameters[j]) && host::equalNames(parameters[j].name, out.name))
        found.push_back({i, j, out.value});
    }
  }
  if (found.size() == 1) return found[0];
  const std::string names = joined(namesIn(steps, isBlockByRef), ", ");
  if (!found.empty())
    throw UsageError(option + "more than one step has an argument " + out.name + "; run them one by one");
  throw UsageError(option + out.name + " is unknown; " +
                   (names.empty() ? "no step has a block by reference" : "there are " + names));
}

// No word begins a step; the first that names no file either was probably meant to.
[[noreturn]] void refuseWithoutStep(const Words& words) {
  for (const std::string& word : words) {
    if (word != kStandardStream && !exists(word))
      throw UsageError("'" + word + "' is neither a file nor a method or class" + nearestText(word));
  }
  throw UsageError("expected a METHOD, CLASS or FILE.cube after the inputs; `zvr list` shows every method");
}

}  // namespace

std::vector<std::string> filesRead(const Chain& chain) {
  std::vector<std::string> files = chain.inputs;
  const auto add = [&](const Argument& argument) {
    if (const auto* file = std::get_if<ArgumentFile>(&argument)) files.push_back(file->path);
  };
  for (const Step& step : chain.steps) {
    if (!step.look.empty()) files.push_back(step.look);
    std::for_each(step.arguments.begin(), step.arguments.end(), add);
    if (step.assigned) add(*step.assigned);
  }
  return files;
}

bool concernsTransparency(const Chain& chain) {
  return std::any_of(chain.steps.begin(), chain.steps.end(), std::mem_fn(&Step::concernsTransparency));
}

bool beginsStep(const std::string& word) { return isLook(word) || !stepsNamed(word).empty(); }

std::string inputWord(const std::string& path) {
  return beginsStep(path) || path == kBetweenSteps || path == kStandardStream ? "./" + path : path;
}

Chain parseChain(const Words& words, const Words& outs) {
  // The word after a + begins a step and is never an input.
  const auto firstPlus = std::find(words.begin(), words.end(), kBetweenSteps);
  auto begin = std::find_if(words.begin(), firstPlus, beginsStep);
  if (begin == firstPlus) refuseWithoutStep(Words(words.begin(), firstPlus));
  Chain chain;
  chain.inputs.assign(words.begin(), begin);
  if (chain.inputs.empty()) throw UsageError("expected an INPUT before " + *begin);
  KindCheck check;
  for (;;) {
    const auto end = std::find(begin, words.end(), kBetweenSteps);
    if (begin == end) throw UsageError("expected a METHOD, CLASS or FILE.cube after +");
    chain.steps.push_back(parseStep(Words(begin, end)));
    check.pass(chain.steps.back());
    if (end == words.end()) break;
    begin = end + 1;
  }
  chain.left = check.kind();
  for (const std::string& out : outs) chain.blocks.push_back(blockOutput(out, chain.steps));
  const Words files = filesRead(chain);
  if (std::count(files.begin(), files.end(), kStandardStream) > 1)
    throw UsageError("standard input (-) can be read once only");
  return chain;
}

}  // namespace zvr
