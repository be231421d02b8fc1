// zvr: shows what the plug-in's methods do, from the command line.

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <sstream>

#include "zvr/commands/commands.h"
#include "zvr/commands/self.h"
#include "zvr/language/command_line.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

void addOptions(CLI::App& program, Options& options) {
  program
      .add_option("--host", options.host,
                  "The host that is played: cairo, gdk or console; without it cairo, or console where there "
                  "is no cairo")
      ->check(CLI::IsMember({"cairo", "gdk", "console"}));
  program.add_option("--host-version", options.hostVersion, "Its version, or none for one that reports none")
      ->capture_default_str();
  program.add_option("--plugin", options.plugin,
                     "The plug-in; without it libpicturezvr.so beside zvr, then in ../" ZVR_PLUGIN_FOLDER);
  program.add_option("--color", options.color, "auto, always or never; auto heeds NO_COLOR")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->capture_default_str();
  program.add_flag("--ledger", options.ledger, "At the end, say on standard error what is still held");
}

// The help of a subcommand lists its own options only.
void mentionSharedOptions(CLI::App& program) {
  for (CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    command->footer(command->get_footer() +
                    "\nOptions of every subcommand (--host, --host-version, --plugin, --color, --ledger):\n"
                    "`zvr --help`\n");
  }
}

// zvr has released everything of its own: anything held now was lost.
void reportLedger() {
  const host::Ledger ledger = host::held();
  std::fprintf(stderr, "held: %d objects, %d strings, %d locks, %d string data; %d errors\n", ledger.objects,
               ledger.strings, ledger.descriptionLocks, ledger.stringData, ledger.errors);
  if (!(ledger == host::Ledger{})) {
    std::vector<std::string> lines;
    std::istringstream held(host::describeHeld());
    for (std::string line; std::getline(held, line);) lines.push_back(line);
    terminal::complain("warning: something is still held or was released wrongly", lines);
  }
}

int runCommand(const Run& run, const Options& options) {
  int status = kFailed;
  try {
    status = run();
  } catch (const UsageError& error) {
    terminal::complain(error.what(), error.further);
    return kUsage;
  } catch (const std::bad_alloc&) {
    terminal::complain("not enough memory");
  } catch (const std::exception& error) {
    terminal::complain(error.what());
  }
  if (options.ledger) reportLedger();
  if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
    terminal::complain("standard output can't be written");
    return kFailed;
  }
  return status;
}

int main(const std::vector<std::string>& words) {
  Options options;
  Run run;
  terminal::setColor(options.color);
  CLI::App program("Shows what the plug-in's picture methods do: lists them, explains them, runs them.",
                   "zvr");
  program.set_version_flag("--version", "zvr " ZVR_VERSION);
  program.set_help_all_flag("--help-all", "Help for every subcommand");
  program.fallthrough();
  addOptions(program, options);
  addList(program, options, run);
  addShow(program, options, run);
  addApply(program, options, run);
  addGallery(program, options, run);
  program.footer(
      "Examples:\n"
      "  zvr list\n"
      "  zvr show InvertZVR\n"
      "  zvr apply photo.png InvertZVR -o out.png\n"
      "  zvr wave speech.wav -o wave.png\n"
      "  zvr lut photo.png film.cube -o out.png\n"
      "  zvr gallery photo.jpg -o gallery\n"
      "\n"
      "A file whose name begins with a dash is given behind --, with all options before that:\n"
      "`zvr gallery -o gallery -- -photo.jpg`.\n"
      "\n"
      "`zvr COMMAND --help` says more. Exit status: 0 done; 1 a method failed, answered nil or raised an\n"
      "exception, or a file can't be read or written; 2 the command line is wrong.\n");
  // For the package and for shells, not for people.
  if (words == std::vector<std::string>{"--man-page"}) {
    std::fputs(manualPage(program, ZVR_VERSION).c_str(), stdout);
    return kDone;
  }
  if (!words.empty() && words[0] == "--complete") {
    for (const std::string& word : completions(program, {words.begin() + 1, words.end()}))
      terminal::print(word);
    return kDone;
  }
  mentionSharedOptions(program);
  try {
    std::vector<std::string> sorted = sortWords(program, words);
    std::reverse(sorted.begin(), sorted.end());
    program.parse(sorted);
  } catch (const CLI::Success& help) {
    return program.exit(help);
  } catch (const CLI::ParseError& error) {
    const std::vector<CLI::App*> chosen = program.get_subcommands();
    const std::string command = chosen.empty() ? "" : chosen[0]->get_name() + " ";
    terminal::complain(std::string(error.what()) + "; see `zvr " + command + "--help`");
    return kUsage;
  } catch (const UsageError& error) {
    terminal::complain(error.what(), error.further);
    return kUsage;
  }
  terminal::setColor(options.color);
  if (!run) {
    std::fputs(program.help().c_str(), stderr);
    return kUsage;
  }
  return runCommand(run, options);
}

}  // namespace
}  // namespace zvr

int main(int count, char** words) {
  // Writing past a limit on file sizes then fails like any other write, instead of ending the program.
  std::signal(SIGXFSZ, SIG_IGN);
  return zvr::main({words + 1, words + count});
}
