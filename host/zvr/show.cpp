// zvr show: one method or class, with examples made from its declaration.

#include <CLI/CLI.hpp>

#include <map>

#include "host/zvr/chain.h"
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

// A number that suits most parameters, and numbers for those, spelled as registered, that it does not suit.
std::string exampleInteger(const std::string& name) {
  static const std::map<std::string, std::string> kNumbers = {
      {"SampleCount", "8000"}, {"Smooth", "3"}, {"Width", "300"}, {"Height", "100"}, {"outlinewidth", "1"}};
  const auto number = kNumbers.find(name);
  return number == kNumbers.end() ? "20" : number->second;
}

// As it stands in a program; what no literal says is named as the parameter is.
std::string basicWord(const Parameter& parameter) {
  if (parameter.byRef) return parameter.name;
  if (parameter.hasDefault) return parameter.defaultText;
  switch (parameter.type) {
    case Type::integer:
    case Type::uint32:
      return exampleInteger(parameter.name);
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

std::string shellWord(const Parameter& parameter) {
  if (parameter.hasDefault || !isFileType(parameter.type)) {
    const std::string word = basicWord(parameter);
    return word[0] == '&' ? "'" + word + "'" : word;
  }
  return parameter.type == Type::picture ? "other.png" : parameter.name + ".bin";
}

// The first file of a global method is the input.
std::string commandLine(const host::Method& method) {
  const host::Declaration& declaration = method.declaration;
  std::string input = "photo.png", words, outputs;
  bool isInputUsed = host::takesReceiver(method);
  for (const Parameter& parameter : declaration.parameters) {
    if (parameter.byRef) {
      const bool isBlock = parameter.type == Type::memoryBlock;
      if (isBlock) outputs += " --out " + parameter.name + "=" + parameter.name + ".bin";
    } else if (isFileType(parameter.type) && !isInputUsed) {
      isInputUsed = true;
      if (parameter.type != Type::picture) input = shellWord(parameter);
      words += " @";
    } else {
      words += " " + shellWord(parameter);
    }
  }
  if (declaration.result == Type::picture) outputs += " -o out.png";
  if (declaration.result == Type::string) outputs += " -o out.bin";
  return "zvr apply " + input + " " + declaration.name + words + outputs;
}

// Another line for what can be assigned to.
std::string assignmentLine(const host::Method& method) {
  Parameter value;
  value.type = method.declaration.result;
  std::string line = "zvr apply photo.png " + method.declaration.name;
  for (const Parameter& parameter : method.declaration.parameters) line += " " + shellWord(parameter);
  return line + " = " + shellWord(value) + " -o out.png";
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
  if (method.setter) lines.push_back(line + " = other");
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
  print("  " + styled(Style::faint, "zvr    ") + commandLine(method));
  if (method.setter) print("  " + styled(Style::faint, "zvr    ") + assignmentLine(method));
  print("");
}

int show(const Options& options, const std::string& name) {
  const Session session(options);
  for (const host::Class& type : host::members().classes) {
    if (!host::equalNames(type.name, name)) continue;
    for (const std::string& line : classLines(type)) print(line);
    print("  " + styled(Style::faint, "zvr    ") + "zvr run " + type.name + " photo.png -o out.png");
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
