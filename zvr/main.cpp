// zvr: shows what the plug-in's methods do, from the command line.

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <sstream>

#include "zvr/commands/commands.h"
#include "zvr/commands/completion.h"
#include "zvr/commands/help.h"
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

// `zvr help` and `zvr version`.
void addAnswers(CLI::App& program, const Options& options, Run& run) {
  CLI::App* help = program.add_subcommand("help", "Explain a command, or what zvr show explains");
  const auto topic = std::make_shared<std::string>();
  help->add_option("NAME", *topic, "Of a command, a method, a class or a topic");
  help->callback([&, topic] {
    run = [&, topic] {
      const CLI::App* command = topic->empty() ? &program : findCommand(program, *topic);
      if (!command) return show(options, *topic);
      std::fputs(command->help().c_str(), stdout);
      return kDone;
    };
  });
  program.add_subcommand("version", "Print the version")->callback([&run] {
    run = [] {
      terminal::print("zvr " ZVR_VERSION);
      return kDone;
    };
  });
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
  program.formatter_fn(
      [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
  program.set_help_flag("-h,--help", "This help");
  program.fallthrough();
  addOptions(program, options);
  addApply(program, options, run);
  addGallery(program, options, run);
  addList(program, options, run);
  addShow(program, options, run);
  addAnswers(program, options, run);
  // For the package and for shells, not for people.
  if (words == std::vector<std::string>{"--man-page"}) {
    std::fputs(manualPage(program).c_str(), stdout);
    return kDone;
  }
  if (!words.empty() && words[0] == "--complete") {
    terminal::printLines(completions(program, {words.begin() + 1, words.end()}));
    return kDone;
  }
  const CommandLine line = readCommandLine(program, words);
  try {
    std::vector<std::string> sorted = sortedWords(program, line);
    std::reverse(sorted.begin(), sorted.end());
    program.parse(sorted);
  } catch (const CLI::Success& help) {
    return program.exit(help);
  } catch (const CLI::ParseError& error) {
    const std::string command = line.command ? line.command->get_name() + ' ' : "";
    terminal::complain(explained(error, line) + "; see `zvr " + command + "--help`");
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
