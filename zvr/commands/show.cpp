// zvr show: one method or class as registered, and what the manual says about it.

#include <CLI/CLI.hpp>

#include "zvr/commands/commands.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/manual.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using terminal::print;
using terminal::Style;
using terminal::styled;

constexpr size_t kPageWidth = 80;

void printLines(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) print(line);
}

void printManual(const std::string& name) {
  const std::vector<std::string> lines = manualLines(name, kPageWidth);
  print("");
  printLines(lines.empty() ? std::vector<std::string>{"The manual has nothing about it yet."} : lines);
}

void printSignature(const host::Method& method) {
  const std::string kind = host::takesReceiver(method) ? "method of Picture" : "global method";
  const std::string& name = method.declaration.name;
  const std::vector<std::string> lines = signatureLines(method.declaration, kPageWidth - name.size() - 1);
  print(styled(Style::name, name) + (method.declaration.parameters.empty() ? " " : "") + lines[0]);
  for (size_t i = 1; i < lines.size(); ++i) print(std::string(name.size(), ' ') + lines[i]);
  print("  " + kind + (method.consoleSafe() ? ", console-safe" : ", not console-safe") +
        (method.setter ? ", can be assigned to" : ""));
}

int show(const Options& options, const std::string& name) {
  const Session session(forMembersOnly(options));
  for (const host::Class& type : host::members().classes) {
    if (!host::equalNames(type.name, name)) continue;
    print(classLines(type)[0]);  // the manual has the others
    printManual(type.name);
    return kDone;
  }
  const std::vector<const host::Method*> methods = host::findMethods(name);
  if (methods.empty()) {
    const std::vector<std::string> topic = manualLines(name, kPageWidth);
    if (topic.empty()) throw UsageError("no method or class '" + name + "'" + nearestText(name));
    printLines(topic);
    return kDone;
  }
  for (const host::Method* method : methods) printSignature(*method);
  printManual(methods[0]->declaration.name);
  return kDone;
}

}  // namespace

void addShow(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command =
      program.add_subcommand("show", "One method or class: its signatures, and the manual's text");
  const auto name = std::make_shared<std::string>();
  command->add_option("METHOD", *name, "Name of a method, class or topic of the manual, in any case")
      ->required();
  command->footer(
      "Examples:\n"
      "  zvr show InvertZVR\n"
      "  zvr show picturesepiazvr\n"
      "  zvr show rectangles\n");
  command->callback([&run, &options, name] { run = [&options, name] { return show(options, *name); }; });
}

}  // namespace zvr
