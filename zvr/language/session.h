// Options of every subcommand, and the host that they play.
#pragma once

#include <optional>
#include <string>

#include "host/host.h"

namespace zvr {

// Options of every subcommand, as given.
struct Options {
  std::string host;  // empty: cairo, or console where cairo is not installed
  std::string hostVersion = "2013.03";
  std::string plugin;  // empty: looked for beside the program
  std::string color = "auto";
  bool ledger = false;
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

}  // namespace zvr
