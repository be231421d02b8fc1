// Help, for a terminal and as a manual page.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace zvr {

// The group of options that are about the host that is played.
constexpr const char* kHostOptions = "The played host";

// Help on zvr or on one of its commands: how it is used, its options, and what the manual says about it, in
// lines for the terminal.
std::string helpText(const CLI::App& app);
// A manual page in man's format: the program, all its commands, and the manual's other sections on zvr.
std::string manualPage(const CLI::App& program);

}  // namespace zvr
