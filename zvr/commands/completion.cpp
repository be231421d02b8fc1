// Completion of a command line, for shells.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>

#include "zvr/commands/commands.h"
#include "zvr/language/chain.h"
#include "zvr/language/command_line.h"
#include "zvr/language/session.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/manual.h"

namespace zvr {
namespace {

using Words = std::vector<std::string>;
constexpr const char* kFiles = "@files";

void append(Words& words, const Words& more) { words.insert(words.end(), more.begin(), more.end()); }

Words valuesFor(const CLI::Option& option) {
  const std::string values = valuesOf(option);
  if (values.find('|') != std::string::npos) return CLI::detail::split(values, '|');
  return std::string("FILE NAME=PATH").find(values) == std::string::npos ? Words() : Words{kFiles};
}

Words valuesFor(host::Type type) {
  if (type == host::Type::boolean) return {"false", "true"};
  if (type == host::Type::color)
    return {"black", "blue", "brown", "gold", "gray", "green", "red", "teal", "white"};
  return isFileType(type) ? Words{"@", kFiles} : Words();
}

bool isNamed(const std::string& word) { return word.find('=') != std::string::npos; }

// In a step, after these words of it: the type of the argument that is due, or named, decides.
Words inStep(const Words& words, const std::string& begun) {
  Words found;
  bool isFull = true;
  for (const Step& form : stepsNamed(words[0])) {
    auto left =
        std::count_if(words.begin() + 1, words.end(), [](const std::string& word) { return !isNamed(word); });
    for (const host::Parameter& parameter : form.declaration.parameters) {
      const std::string name = parameter.name + '=';
      const bool isDue = form.method && !parameter.byRef && left-- == 0;
      const bool isMeant =
          isNamed(begun) ? host::equalNames(begun.substr(0, begun.find('=') + 1), name) : isDue;
      if (isMeant) append(found, valuesFor(parameter.type));
      if (!isNamed(begun) && (form.type || !begun.empty())) found.push_back(name);
      isFull = isFull && !isDue;
    }
  }
  if (isFull && !isNamed(begun)) found.push_back("+");
  return found;
}

Words inChain(const std::string& command, const Words& words, const std::string& begun) {
  const auto plus = std::find(words.rbegin(), words.rend(), "+").base();
  if (plus == words.begin() && command == "wave") return inStep({"RenderSamplesZVR"}, begun);
  const auto step = plus == words.begin() ? std::find_if(words.begin(), words.end(), beginsStep) : plus;
  if (step != words.end()) return inStep({step, words.end()}, begun);
  Words found{kFiles};
  for (const std::string& name : memberNames()) {
    const bool fits = command == "apply" || (command == "run" && host::findMethods(name).empty());
    if (plus != words.begin() || (fits && !words.empty())) found.push_back(name);
  }
  return found;
}

Words candidates(const CLI::App& program, const CommandLine& line, const std::string& begun) {
  if (!line.options.empty() && line.options.back().lacksValue())
    return valuesFor(*line.options.back().option);
  if (begun[0] == '-' && !isNamed(begun)) return optionNames(program, line.command);
  if (begun[0] == '-') {
    const CLI::Option* option = findOption(program, line.command, begun.substr(0, begun.find('=')));
    return option ? valuesFor(*option) : Words();
  }
  Words found;
  const std::string command = line.command ? line.command->get_name() : "";
  if (command.empty() || command == "help") {
    for (const CLI::App* one : program.get_subcommands({})) found.push_back(one->get_name());
  }
  if (command == "gallery") found.emplace_back(kFiles);
  if (command == "help" || command == "show") append(found, manualTopics());
  const Session session(forMembersOnly({}));
  if (command == "help" || command == "show") append(found, memberNames());
  for (const char* chain : {"apply", "run", "lut", "wave"}) {
    if (command == chain) append(found, inChain(command, line.words, begun));
  }
  return found;
}

}  // namespace

std::vector<std::string> completions(const CLI::App& program, const std::vector<std::string>& words) {
  if (words.empty()) return {};
  const std::string& begun = words.back();
  const std::string start = begun.substr(begun.find('=') + 1);
  std::set<std::string> fitting;
  bool areFiles = false;
  try {
    for (const std::string& word :
         candidates(program, readCommandLine(program, {words.begin(), words.end() - 1}), begun)) {
      if (word == kFiles)
        areFiles = true;
      else if (host::equalNames(word.substr(0, start.size()), start))
        fitting.insert(word);
    }
  } catch (const std::exception&) {
    // Without the plug-in there is nothing to offer.
  }
  Words found(fitting.begin(), fitting.end());
  if (areFiles) found.emplace_back(kFiles);
  return found;
}

}  // namespace zvr
