// zvr show: one method or class, with examples made from its declaration.

#include <CLI/CLI.hpp>

#include "host/zvr/program.h"
#include "host/zvr/signatures.h"
#include "host/zvr/terminal.h"

namespace zvr {
namespace {

using host::Parameter;
using host::Type;
using terminal::print;
using terminal::Style;
using terminal::styled;

// A word for the command line that the parameter accepts, or nothing where no word can say it.
std::optional<std::string> exampleWord(const Parameter& parameter, bool isFirstPicture) {
  if (parameter.hasDefault && parameter.type != Type::color) return parameter.defaultText;
  switch (parameter.type) {
    case Type::integer:
    case Type::uint32:
      return "20";
    case Type::real:
      return "0.5";
    case Type::boolean:
      return "true";
    case Type::color:
      return "'" + (parameter.hasDefault ? parameter.defaultText : "&c704214") + "'";
    case Type::picture:
      return isFirstPicture ? "@" : "other.png";
    default:
      return std::nullopt;
  }
}

std::optional<std::string> commandLine(const host::Method& method) {
  std::string line = "zvr apply photo.png " + method.declaration.name;
  bool isFirstPicture = !host::takesReceiver(method);
  for (const Parameter& parameter : method.declaration.parameters) {
    if (parameter.byRef) continue;
    const auto word = exampleWord(parameter, isFirstPicture);
    if (!word) return std::nullopt;
    if (parameter.type == Type::picture) isFirstPicture = false;
    line += " " + *word;
  }
  return line + (method.declaration.result == Type::picture ? " -o out.png" : "");
}

std::string basicWord(const Parameter& parameter) {
  if (parameter.byRef) return parameter.name;
  if (parameter.hasDefault) return parameter.defaultText;
  switch (parameter.type) {
    case Type::integer:
    case Type::uint32:
      return "20";
    case Type::real:
      return "0.5";
    case Type::boolean:
      return "true";
    case Type::color:
      return "&c704214";
    default:
      return parameter.name;
  }
}

std::vector<std::string> basicLines(const host::Method& method) {
  const host::Declaration& declaration = method.declaration;
  std::vector<std::string> lines;
  std::string arguments;
  for (const Parameter& parameter : declaration.parameters) {
    if (parameter.byRef) lines.push_back("Dim " + parameter.name + " As " + host::typeName(parameter.type));
    arguments += (arguments.empty() ? "(" : ", ") + basicWord(parameter);
  }
  std::string line = (host::takesReceiver(method) ? "photo." : "") + declaration.name + arguments;
  if (!arguments.empty()) line += ")";
  const bool hasResult = declaration.result != Type::none;
  lines.push_back((hasResult ? "Dim result As " + host::typeName(declaration.result) + " = " : "") + line);
  return lines;
}

void showMethod(const host::Method& method) {
  const host::Declaration& declaration = method.declaration;
  print(styled(Style::name, signatureText(declaration)));
  const std::string kind = host::takesReceiver(method) ? "method of Picture" : "global method";
  print("  " + kind + (method.consoleSafe() ? ", console-safe" : ", not console-safe") +
        (method.setter ? ", can be assigned to" : ""));
  size_t width = 0;
  for (const Parameter& parameter : declaration.parameters) width = std::max(width, parameter.name.size());
  for (const Parameter& parameter : declaration.parameters) {
    std::string line = "    " + parameter.name + std::string(width + 2 - parameter.name.size(), ' ') +
                       styled(Style::type, host::typeName(parameter.type));
    if (parameter.hasDefault) line += ", " + parameter.defaultText + " when left out";
    if (parameter.byRef) line += ", byref: the method leaves its answer here";
    print(line);
  }
  for (const std::string& line : basicLines(method)) print("  " + styled(Style::faint, "BASIC  ") + line);
  if (const auto line = commandLine(method)) print("  " + styled(Style::faint, "zvr    ") + *line);
  print("");
}

int show(const Options& options, const std::string& name) {
  const Session session(options);
  for (const host::Class& type : host::members().classes) {
    if (!host::equalNames(type.name, name)) continue;
    for (const std::string& line : classLines(type)) print(line);
    return kDone;
  }
  const std::vector<const host::Method*> methods = host::findMethods(name);
  if (methods.empty()) throw UsageError("no method or class '" + name + "'" + nearestText(name));
  for (const host::Method* method : methods) showMethod(*method);
  return kDone;
}

}  // namespace

void addShow(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand("show", "One method: its signatures, arguments and examples");
  const auto name = std::make_shared<std::string>();
  command->add_option("METHOD", *name, "Name of a method or class, in any case")->required();
  command->footer(
      "Examples:\n"
      "  zvr show InvertZVR\n"
      "  zvr show picturesepiazvr\n");
  command->callback([&run, &options, name] { run = [&options, name] { return show(options, *name); }; });
}

}  // namespace zvr
