// The subcommands of zvr.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "zvr/language/session.h"

namespace CLI {
class App;
}

namespace zvr {

// A subcommand adds itself to the program; when it is chosen it leaves what to run, which answers the exit
// status. Its description is a purpose, a colon, and in the next line how it is used.
using Run = std::function<int()>;
// apply, and the short words for it: run, lut and wave.
void addApply(CLI::App& program, const Options& options, Run& run);
void addGallery(CLI::App& program, const Options& options, Run& run);
void addList(CLI::App& program, const Options& options, Run& run);
// show and help.
void addShow(CLI::App& program, const Options& options, Run& run);

// The group of options that are about the host that is played.
constexpr const char* kHostOptions = "The played host";
// Help on the program or a subcommand, with what the manual says about it, in lines for the terminal.
std::string helpText(const CLI::App& app);
// A manual page in man's format: the program, all subcommands, and what else the manual says about zvr.
std::string manualPage(const CLI::App& program);

// The words that the last one of a command line may become, sorted: commands, options and their values,
// members, arguments by their types; of a word NAME=VALUE the value. "@files" comes last where files may
// follow.
std::vector<std::string> completions(const CLI::App& program, const std::vector<std::string>& words);

}  // namespace zvr
