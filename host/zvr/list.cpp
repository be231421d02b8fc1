// zvr list: everything that the plug-in registered.

#include <CLI/CLI.hpp>

#include "host/zvr/program.h"
#include "host/zvr/signatures.h"
#include "host/zvr/terminal.h"

namespace zvr {
namespace {

void printAll(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) terminal::print(line);
  terminal::print("");
}

void printGroup(const std::string& title, const std::vector<host::Method>& methods) {
  std::vector<const host::Method*> pointers;
  for (const host::Method& method : methods) pointers.push_back(&method);
  terminal::print(terminal::styled(terminal::Style::heading, title));
  printAll(methodLines(pointers));
}

int list(const Options& options) {
  const Session session(options);
  printGroup("Global methods", host::members().globals);
  printGroup("Methods of Picture", host::members().pictureMethods);
  for (const host::Class& type : host::members().classes) printAll(classLines(type));
  terminal::print("c: console-safe, usable in console and web applications too");
  return kDone;
}

}  // namespace

void addList(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand("list", "Every method and class as registered");
  command->footer(
      "Examples:\n"
      "  zvr list\n"
      "  zvr list --host-version 2009     what a host of 2009 is told\n");
  command->callback([&] { run = [&] { return list(options); }; });
}

}  // namespace zvr
