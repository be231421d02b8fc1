// The subcommands of zvr.
#pragma once

#include <functional>

#include "zvr/language/session.h"

namespace CLI {
class App;
}

namespace zvr {

// A subcommand adds itself to the program; when it is chosen it leaves what to run, which answers the exit
// status.
using Run = std::function<int()>;
void addList(CLI::App& program, const Options& options, Run& run);
void addShow(CLI::App& program, const Options& options, Run& run);
// apply, and the short words for it: run, lut and wave.
void addApply(CLI::App& program, const Options& options, Run& run);
void addGallery(CLI::App& program, const Options& options, Run& run);

// `zvr show NAME`. Throws UsageError for a name of nothing.
int show(const Options& options, const std::string& name);

}  // namespace zvr
