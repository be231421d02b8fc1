// What may follow on a command line, for shells.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zvr {

// Completions of the last word, sorted: commands, options and their values, members, arguments by their
// types. After the = of a word NAME=VALUE they are of the value. "@files" comes last where files may follow.
// None when the plug-in can't be loaded.
std::vector<std::string> completions(const CLI::App& program, const std::vector<std::string>& words);

}  // namespace zvr
