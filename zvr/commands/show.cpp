// zvr show and zvr help: a command, a method or class as registered with what the manual says about it, or a
// topic of the manual.

#include <CLI/CLI.hpp>

#include "zvr/commands/commands.h"
#include "zvr/language/command_line.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/manual.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using terminal::print;
using terminal::printLines;

void printSignature(const host::Method& method) {
  printLines(signatureLines(method.declaration, terminal::width()));
  print(std::string("  ") + (host::takesReceiver(method) ? "method of Picture" : "global method") +
        (method.consoleSafe() ? ", console-safe" : ", not console-safe") +
        (method.setter ? ", can be assigned to" : ""));
}

[[noreturn]] void refuse(const std::string& name) {
  const std::vector<std::string> topics = manualTopics();
  std::vector<std::string> names = memberNames();
  names.insert(names.end(), topics.begin(), topics.end());
  throw UsageError("no command, method, class or topic '" + name + "'" + terminal::didYouMean(name, names),
                   {"Topics: " + CLI::detail::join(topics, ", ")});
}

int show(const Options& options, const std::string& name) {
  const Session session(forMembersOnly(options));
  bool isMember = false;
  for (const host::Class& type : host::members().classes) {
    if (!host::equalNames(type.name, name)) continue;
    isMember = true;
    print(classTitle(type));  // the manual has its members
  }
  for (const host::Method* method : host::findMethods(name)) {
    isMember = true;
    printSignature(*method);
  }
  const std::vector<std::string> text = manualLines(name, terminal::width());
  if (isMember) print(text.empty() ? "\nThe manual has nothing about it yet." : "");
  if (!isMember && text.empty()) refuse(name);
  printLines(text);
  return kDone;
}

}  // namespace

void addShow(CLI::App& program, const Options& options, Run& run) {
  const auto name = std::make_shared<std::string>();
  for (const std::string word : {"show", "help"}) {
    const std::string purpose = word == "show" ? "Explain a method, a class or a topic of the manual"
                                               : "Explain a command, or what zvr show explains";
    CLI::App* added = program.add_subcommand(word, purpose + ":\n  zvr " + word + " NAME");
    added->add_option("NAME", *name);
    added->callback([&, name] {
      run = [&, name] {
        const CLI::App* command = name->empty() ? &program : findCommand(program, *name);
        if (!command) return show(options, *name);
        std::fputs(helpText(*command).c_str(), stdout);
        return kDone;
      };
    });
  }
}

}  // namespace zvr
