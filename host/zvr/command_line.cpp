#include "host/zvr/command_line.h"

#include <CLI/CLI.hpp>

#include <charconv>

#include "host/zvr/program.h"

namespace zvr {
namespace {

bool isNumber(const std::string& word) {
  double number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return error != std::errc::invalid_argument && stop == end;
}

const CLI::App* findCommand(const CLI::App& program, const std::string& name) {
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    if (command->get_name() == name) return command;
  }
  return nullptr;
}

[[noreturn]] void refuseCommand(const CLI::App& program, const std::string& name) {
  std::string names;
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    names += (names.empty() ? "" : ", ") + command->get_name();
  }
  throw UsageError("no subcommand '" + name + "'; there are " + names);
}

// Does the next word belong to this option?
bool takesNextWord(const CLI::App& program, const CLI::App* command, const std::string& word) {
  const bool isShort = word[1] != '-';
  if (isShort ? word.size() > 2 : word.find('=') != std::string::npos) return false;
  const CLI::Option* option = command ? command->get_option_no_throw(word) : nullptr;
  if (!option) option = program.get_option_no_throw(word);
  return option && option->get_expected_min() > 0;
}

}  // namespace

bool readsAsOption(const std::string& word) { return word.size() > 1 && word[0] == '-' && !isNumber(word); }

std::vector<std::string> sortWords(const CLI::App& program, const std::vector<std::string>& words) {
  std::vector<std::string> sorted, plain;
  const CLI::App* command = nullptr;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--") {
      plain.insert(plain.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
      break;
    }
    if (readsAsOption(words[i])) {
      sorted.push_back(words[i]);
      if (!takesNextWord(program, command, words[i])) continue;
      if (i + 1 == words.size()) throw UsageError(words[i] + ": the value is missing");
      sorted.push_back(words[++i]);
    } else if (!command) {
      command = findCommand(program, words[i]);
      if (!command) refuseCommand(program, words[i]);
      sorted.push_back(words[i]);
    } else {
      plain.push_back(words[i]);
    }
  }
  if (!plain.empty()) sorted.emplace_back("--");
  sorted.insert(sorted.end(), plain.begin(), plain.end());
  return sorted;
}

}  // namespace zvr
