// zvr show: a method or class as registered, and what the manual says about it; or a topic of the manual.

#include <CLI/CLI.hpp>

#include "zvr/commands/commands.h"
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
  std::string text;
  for (const std::string& topic : topics) text += (text.empty() ? "Topics: " : ", ") + topic;
  if (name.empty())
    throw UsageError("expected a method, class or topic; `zvr list` shows every method", {text});
  throw UsageError("no method, class or topic '" + name + "'" + terminal::didYouMean(name, names), {text});
}

}  // namespace

int show(const Options& options, const std::string& name) {
  const Session session(forMembersOnly(options));
  const std::vector<std::string> text = manualLines(name, terminal::width());
  const std::vector<host::Class>& classes = host::members().classes;
  const auto type = std::find_if(classes.begin(), classes.end(),
                                 [&](const host::Class& one) { return host::equalNames(one.name, name); });
  const std::vector<const host::Method*> methods = host::findMethods(name);
  const bool isMember = type != classes.end() || !methods.empty();
  if (!isMember && text.empty()) refuse(name);
  if (type != classes.end()) print(classTitle(*type));  // the manual has the members
  for (const host::Method* method : methods) printSignature(*method);
  if (isMember) print("");
  printLines(text.empty() ? std::vector<std::string>{"The manual has nothing about it yet."} : text);
  return kDone;
}

void addShow(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand("show", "Explain a method, a class or a topic of the manual");
  const auto name = std::make_shared<std::string>();
  command->add_option("NAME", *name, "Of a method, a class or a topic, in any case");
  command->callback([&run, &options, name] { run = [&options, name] { return show(options, *name); }; });
}

}  // namespace zvr
