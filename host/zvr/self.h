// What zvr tells other programs about its own command line.
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

// What the last of the words of a command line may become: subcommands, options, values of an option, names
// of methods and classes. Nothing where only a file can follow, or when the plug-in can't be loaded.
std::vector<std::string> completions(const CLI::App& program, const std::vector<std::string>& words);

}  // namespace zvr
