// Sorting a command line so that numbers are never taken for options.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zvr {

// Whether a word begins as an option does, and is no number.
bool readsAsOption(const std::string& word);

// The words of the command line with the options of a subcommand moved before its other words and -- between
// them, so that "apply photo.png ChangeBrightnessLinearZVR -5 -o out.png" reads as meant: what reads as a
// number is a word, and so is everything after a -- that was given. Throws UsageError for a subcommand that
// is unknown and for an option that lacks its value.
std::vector<std::string> sortWords(const CLI::App& program, const std::vector<std::string>& words);

}  // namespace zvr
