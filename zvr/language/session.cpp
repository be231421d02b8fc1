// Starting the host that the options ask for.

#include <unistd.h>

#include <charconv>
#include <climits>
#include <filesystem>

#include "zvr/language/session.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

namespace fs = std::filesystem;
constexpr const char* kPluginName = "libpicturezvr.so";

host::Settings settingsOf(const Options& options) {
  host::Settings settings;
  if (options.host == "gdk") {
    settings.road = host::Road::gdk;
  } else if (options.host == "console") {
    settings.road = host::Road::console;
  } else if (options.host != "cairo" && !options.host.empty()) {
    throw UsageError("--host: '" + options.host + "' is not a host (cairo, gdk or console)");
  }
  if (options.hostVersion == "none") {
    settings.version.reset();
    return settings;
  }
  double version = 0;
  const char* end = options.hostVersion.data() + options.hostVersion.size();
  const auto [stop, error] = std::from_chars(options.hostVersion.data(), end, version);
  if (error != std::errc{} || stop != end) {
    throw UsageError("--host-version: '" + options.hostVersion +
                     "' is not a version (a number such as 2013.03, or none)");
  }
  settings.version = version;
  return settings;
}

// Beside the program, as in a build folder, or where it is installed with the program.
std::string findPlugin() {
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = folder.parent_path() / ZVR_PLUGIN_FOLDER;
  for (const fs::path& candidate : {folder / kPluginName, installed / kPluginName}) {
    if (fs::exists(candidate, error)) return candidate;
  }
  throw Failure(std::string(kPluginName) + " is neither in " + folder.string() + " nor in " +
                installed.string() + "; name it with --plugin PATH");
}

// How to install a road's toolkit, by Debian's package names. The system is most likely a 64-bit one.
std::string howToInstall(const Options& options) {
  const std::string package = options.host == "gdk" ? "libgtk2.0-0" : "libcairo2";
  return "; install it (on Debian and Ubuntu, as root: dpkg --add-architecture i386 && apt update && "
         "apt install " +
         package + ":i386), or add --host console, which needs none";
}

// A console host where cairo is missing and was not asked for.
void startHost(host::Settings& settings, const Options& options) {
  try {
    host::start(settings);
  } catch (const host::MissingLibrary&) {
    if (!options.host.empty()) throw;
    terminal::note("no cairo here, so a console host is played; --host cairo says what to install");
    settings.road = host::Road::console;
    host::start(settings);
  }
}

}  // namespace

Options forMembersOnly(Options options) {
  if (options.host.empty()) options.host = "console";
  return options;
}

const char* Session::host() const {
  switch (host::settings().road) {
    case host::Road::gdk:
      return "gdk";
    case host::Road::console:
      return "console";
    case host::Road::cairo:
      break;
  }
  return "cairo";
}

Session::Session(const Options& options) {
  host::Settings settings = settingsOf(options);
  const std::string path = options.plugin.empty() ? findPlugin() : fs::absolute(options.plugin).string();
  try {
    startHost(settings, options);
    plugin_.emplace(path);
  } catch (const host::MissingLibrary& error) {
    throw Failure(error.what() + howToInstall(options));
  } catch (const std::runtime_error& error) {
    throw Failure(error.what());
  }
}

}  // namespace zvr
