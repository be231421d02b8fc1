// zvr's command line described to other programs.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zvr {

struct Options;

// Its manual page, in the language of man.
std::string manualPage(const CLI::App& program, const std::string& version);

// Completions of the last word of a command line: subcommands, options, values of an option, names of methods
// and classes. None where only a file can follow, or when the plug-in can't be loaded.
std::vector<std::string> completions(const CLI::App& program, const std::vector<std::string>& words);

}  // namespace zvr
