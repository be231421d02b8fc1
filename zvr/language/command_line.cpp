#include "zvr/language/command_line.h"

#include <CLI/CLI.hpp>

#include <charconv>

#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using Words = std::vector<std::string>;

bool isNumber(const std::string& word) {
  double number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  return error != std::errc::invalid_argument && stop == end;
}

// --quality=85 and -oout.png have their value in the same word; -output is no -o.
GivenOption optionIn(const std::string& word, const CLI::App& program, const CLI::App* command) {
  const bool isShort = word[1] != '-';
  const size_t end = isShort ? 2 : std::min(word.find('='), word.size());
  GivenOption given{word, nullptr, {}};
  if (isShort && word.size() > 3 && findOption(program, command, '-' + word)) return given;
  given.option = findOption(program, command, word.substr(0, end));
  if (!given.lacksValue()) return given;
  given.typed = word.substr(0, end);
  if (end < word.size()) given.value = word.substr(isShort ? end : end + 1);
  return given;
}

[[noreturn]] void refuse(const GivenOption& given, const CLI::App& program, const CLI::App* command) {
  const std::string near = terminal::didYouMean(given.typed, optionNames(program, command));
  const std::string help = command ? command->get_name() + " --help`" : "--help`";
  throw UsageError("no option " + given.typed + (near.empty() ? "; see `zvr " + help : near));
}

[[noreturn]] void refuseCommand(const CLI::App& program, const std::string& name) {
  Words names;
  for (const CLI::App* command : program.get_subcommands({})) names.push_back(command->get_name());
  std::string near = terminal::didYouMean(name, names);
  if (near.empty()) {
    for (const std::string& one : names) near += (near.empty() ? "; there are " : ", ") + one;
  }
  throw UsageError("no command '" + name + "'" + near);
}

}  // namespace

bool GivenOption::lacksValue() const { return option && !value && !valuesOf(*option).empty(); }

bool readsAsOption(const std::string& word) { return word.size() > 1 && word[0] == '-' && !isNumber(word); }

const CLI::App* findCommand(const CLI::App& program, const std::string& name) {
  const std::vector<const CLI::App*> commands =
      program.get_subcommands([&](const CLI::App* one) { return one->get_name() == name; });
  return commands.empty() ? nullptr : commands[0];
}

const CLI::Option* findOption(const CLI::App& program, const CLI::App* command, const std::string& name) {
  const CLI::Option* option = command ? command->get_option_no_throw(name) : nullptr;
  return option ? option : program.get_option_no_throw(name);
}

CommandLine readCommandLine(const CLI::App& program, const std::vector<std::string>& words) {
  CommandLine line;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--") {
      line.words.insert(line.words.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
      break;
    }
    if (!readsAsOption(words[i])) {
      if (!line.command && line.words.empty() && (line.command = findCommand(program, words[i]))) continue;
      line.words.push_back(words[i]);
      continue;
    }
    GivenOption given = optionIn(words[i], program, line.command);
    if (given.lacksValue() && i + 1 < words.size()) given.value = words[++i];
    line.options.push_back(given);
  }
  return line;
}

std::vector<std::string> sortedWords(const CLI::App& program, const CommandLine& line) {
  if (!line.command && !line.words.empty()) refuseCommand(program, line.words[0]);
  Words sorted;
  if (line.command) sorted.push_back(line.command->get_name());
  for (const GivenOption& given : line.options) {
    if (!given.option) refuse(given, program, line.command);
    if (given.lacksValue())
      throw UsageError(given.typed + ": the value is missing; expected " + valuesOf(*given.option));
    sorted.push_back(given.typed);
    if (given.value) sorted.push_back(*given.value);
  }
  if (!line.words.empty()) sorted.emplace_back("--");
  sorted.insert(sorted.end(), line.words.begin(), line.words.end());
  return sorted;
}

std::vector<std::string> optionNames(const CLI::App& program, const CLI::App* command) {
  Words names;
  for (const CLI::App* app : {command, &program}) {
    if (!app) continue;
    for (const CLI::Option* option : app->get_options({})) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

std::string valuesOf(const CLI::Option& option) {
  if (option.get_expected_min() == 0) return "";
  std::string values = option.get_type_name();
  const size_t set = values.find('{');
  if (set == std::string::npos) return values == "TEXT" ? "FILE" : values;
  values = values.substr(set + 1, values.find('}') - set - 1);
  std::replace(values.begin(), values.end(), ',', '|');
  return values;
}

std::string explained(const CLI::ParseError& error, const CommandLine& line) {
  const std::string text = error.what();
  const auto isOf = [&](CLI::ExitCodes kind) { return error.get_exit_code() == static_cast<int>(kind); };
  if (isOf(CLI::ExitCodes::ExtrasError)) return "unexpected: " + text.substr(text.find(": ") + 2);
  for (const GivenOption& given : line.options) {
    if (!given.value || text.find(given.option->get_name()) == std::string::npos) continue;
    if (isOf(CLI::ExitCodes::ArgumentMismatch)) return given.typed + " is given twice";
    return given.typed + ": '" + *given.value + "' given, expected " + valuesOf(*given.option);
  }
  return text;
}

}  // namespace zvr
