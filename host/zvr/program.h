// Shared by the subcommands of zvr: options, the host that they play, and how they fail.
#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/host.h"

namespace CLI {
class App;
}

namespace zvr {

// Exit statuses.
constexpr int kDone = 0, kFailed = 1, kUsage = 2;

// Options of every subcommand, as given.
struct Options {
  std::string host;  // empty: cairo, or console where cairo is not installed
  std::string hostVersion = "2013.03";
  std::string plugin;  // empty: looked for beside the program
  std::string color = "auto";
  bool ledger = false;
};

// The command line makes no sense: exit status 2.
struct UsageError : std::runtime_error {
  explicit UsageError(const std::string& problem, std::vector<std::string> more = {})
      : std::runtime_error(problem), further(std::move(more)) {}
  std::vector<std::string> further;  // lines that follow
};
// The request failed: exit status 1.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A host of the kind that the options ask for, with the plug-in loaded into it.
class Session {
 public:
  // Throws UsageError for options that make no sense and Failure when host or plug-in can't be had.
  explicit Session(const Options& options);
  // "cairo", "gdk" or "console".
  const char* host() const;

 private:
  std::optional<host::Plugin> plugin_;
};
// Options for a session that only reads the registered members: every host is told of the same, so without
// --host the console host is played, which needs no library.
Options forMembersOnly(Options options);

// A subcommand adds itself to the program; when it is chosen it leaves what to run, which answers the exit
// status.
using Run = std::function<int()>;
void addList(CLI::App& program, const Options& options, Run& run);
void addShow(CLI::App& program, const Options& options, Run& run);
void addApply(CLI::App& program, const Options& options, Run& run);
void addWave(CLI::App& program, const Options& options, Run& run);
void addRun(CLI::App& program, const Options& options, Run& run);
void addLut(CLI::App& program, const Options& options, Run& run);
void addGallery(CLI::App& program, const Options& options, Run& run);

}  // namespace zvr
