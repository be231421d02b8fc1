// zvr: shows what the plug-in's methods do, from the command line.

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>

#include "zvr/commands/commands.h"
#include "zvr/language/command_line.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

void addOptions(CLI::App& program, Options& options) {
  program.set_version_flag("-V,--version", "zvr " ZVR_VERSION, "The version");
  program.add_option("--color", options.color, "Colours; auto: on a terminal, unless NO_COLOR is set")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->capture_default_str();
  program
      .add_option("--host", options.host, "Its kind; without it cairo, or console where there is no cairo")
      ->check(CLI::IsMember({"cairo", "gdk", "console"}))
      ->group(kHostOptions);
  program.add_option("--host-version", options.hostVersion, "Its version, or none for one that reports none")
      ->type_name("VERSION")
      ->capture_default_str()
      ->group(kHostOptions);
  program
      .add_option("--plugin", options.plugin,
                  "The plug-in; without it the one beside zvr, or the installed one")
      ->type_name("FILE")
      ->group(kHostOptions);
  program.add_flag("--ledger", options.ledger, "Say at the end what of its objects is still held")
      ->group(kHostOptions);
}

// zvr has released everything of its own: anything held now was lost.
void reportLedger() {
  const host::Ledger ledger = host::held();
  std::fprintf(stderr, "held: %d objects, %d strings, %d locks, %d string data; %d errors\n", ledger.objects,
               ledger.strings, ledger.descriptionLocks, ledger.stringData, ledger.errors);
  if (!(ledger == host::Ledger{})) {
    terminal::complain("warning: something is still held or was released wrongly",
                       terminal::split(host::describeHeld(), '\n'));
  }
}

// Answers the exit status.
int run(CLI::App& program, const CommandLine& line, const Options& options, const Run& chosen) {
  try {
    std::vector<std::string> words = sortedWords(program, line);
    std::reverse(words.begin(), words.end());
    program.parse(words);
    terminal::setColor(options.color);
    if (chosen) return chosen();
    std::fputs(helpText(program).c_str(), stderr);
    return kUsage;
  } catch (const CLI::Success& help) {
    return program.exit(help);
  } catch (const CLI::ParseError& error) {
    const std::string command = line.command ? line.command->get_name() + ' ' : "";
    terminal::complain(explained(error, line) + "; see `zvr " + command + "--help`");
    return kUsage;
  } catch (const UsageError& error) {
    terminal::complain(error.what(), error.further);
    return kUsage;
  } catch (const std::bad_alloc&) {
    terminal::complain("not enough memory");
  } catch (const std::exception& error) {
    terminal::complain(error.what());
  }
  return kFailed;
}

int main(const std::vector<std::string>& words) {
  Options options;
  Run chosen;
  terminal::setColor(options.color);
  CLI::App program(
      "Shows what the plug-in's picture methods do: lists them, explains them, runs them:\n"
      "  zvr COMMAND [OPTION]... [WORD]...",
      "zvr");
  program.formatter_fn(
      [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
  program.set_help_flag("-h,--help", "This help");
  program.fallthrough();
  addOptions(program, options);
  for (const auto add : {addApply, addGallery, addList, addShow}) add(program, options, chosen);
  program.add_subcommand("version", "Print the version:\n  zvr version")->callback([] {
    throw CLI::CallForVersion("zvr " ZVR_VERSION, kDone);
  });
  // For the package and for shells, not for people.
  if (words == std::vector<std::string>{"--man-page"}) {
    std::fputs(manualPage(program).c_str(), stdout);
    return kDone;
  }
  if (!words.empty() && words[0] == "--complete") {
    terminal::printLines(completions(program, {words.begin() + 1, words.end()}));
    return kDone;
  }
  const int status = run(program, readCommandLine(program, words), options, chosen);
  if (options.ledger && status != kUsage) reportLedger();
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  terminal::complain("standard output can't be written");
  return kFailed;
}

}  // namespace
}  // namespace zvr

int main(int count, char** words) {
  // Writing past a limit on file sizes then fails like any other write, instead of ending the program.
  std::signal(SIGXFSZ, SIG_IGN);
  return zvr::main({words + 1, words + count});
}
