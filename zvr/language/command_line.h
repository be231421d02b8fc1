// The words of a command line, told apart so that numbers are never taken for options.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class ParseError;
}  // namespace CLI

namespace zvr {

// Whether a word begins as an option does, and is no number.
bool readsAsOption(const std::string& word);

struct GivenOption {
  std::string typed;                    // as it was typed, without a value
  const CLI::Option* option = nullptr;  // null: there is none of that name
  std::optional<std::string> value;
  bool lacksValue() const;
};

struct CommandLine {
  const CLI::App* command = nullptr;  // null: none was given, or one that is unknown
  std::vector<GivenOption> options;
  std::vector<std::string> words;  // what is left, the command among it if unknown
};

// Null for a name of no command.
const CLI::App* findCommand(const CLI::App& program, const std::string& name);
// The same for an option of the command, if there is one, or of the program.
const CLI::Option* findOption(const CLI::App& program, const CLI::App* command, const std::string& name);

// "apply photo.png ChangeBrightnessLinearZVR -5 -o out.png" reads as meant: what reads as a number is no
// option, nor is anything after a --.
CommandLine readCommandLine(const CLI::App& program, const std::vector<std::string>& words);

// The words in an order that CLI11 takes as meant: the options first, -- between them and the others. Throws
// UsageError for a command or an option that is unknown, and for an option without its value.
std::vector<std::string> sortedWords(const CLI::App& program, const CommandLine& line);

// The long names of all options that a command takes, with their dashes, the program's own last.
std::vector<std::string> optionNames(const CLI::App& program, const CLI::App* command);

// The values that an option takes: "keep|drop", "1...100", "PATH"; empty for a flag.
std::string valuesOf(const CLI::Option& option);

// CLI11's complaint in plain words, with options as they were typed.
std::string explained(const CLI::ParseError& error, const CommandLine& line);

}  // namespace zvr
