// zvr list: everything that the plug-in registered.

#include <CLI/CLI.hpp>

#include "host/zvr/program.h"
#include "host/zvr/signatures.h"
#include "host/zvr/terminal.h"

namespace zvr {
namespace {

using terminal::print;

void printAll(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) print(line);
  print("");
}

void printGroup(const std::string& title, const std::vector<host::Method>& methods) {
  std::vector<const host::Method*> pointers;
  for (const host::Method& method : methods) pointers.push_back(&method);
  print(terminal::styled(terminal::Style::heading, title));
  printAll(methodLines(pointers));
}

// ---- JSON ----

std::string quoted(const std::string& text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string json = "\"";
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < ' ') {
      json += std::string("\\u00") + kDigits[c >> 4] + kDigits[c & 15];
      continue;
    }
    if (c == '"' || c == '\\') json += '\\';
    json += c;
  }
  return json + '"';
}

std::string truth(bool flag) { return flag ? "true" : "false"; }

template <typename Item>
std::string array(const std::vector<Item>& items, std::string (*json)(const Item&), const char* between) {
  std::string text = "[";
  for (const Item& item : items) text += (text.size() == 1 ? "" : ",") + std::string(between) + json(item);
  return text + "]";
}

std::string parameterJson(const host::Parameter& parameter) {
  return "{\"name\": " + quoted(parameter.name) + ", \"type\": " + quoted(host::typeName(parameter.type)) +
         ", \"byref\": " + truth(parameter.byRef) +
         (parameter.hasDefault ? ", \"default\": " + quoted(parameter.defaultText) : "") + "}";
}

std::string methodJson(const host::Method& method) {
  const host::Declaration& declaration = method.declaration;
  const bool hasResult = declaration.result != host::Type::none;
  return "{\"name\": " + quoted(declaration.name) + ", \"declaration\": " + quoted(method.text) +
         ", \"parameters\": " + array(declaration.parameters, parameterJson, "") +
         ", \"result\": " + (hasResult ? quoted(host::typeName(declaration.result)) : "null") +
         ", \"consoleSafe\": " + truth(method.consoleSafe()) +
         ", \"assignable\": " + truth(method.setter != nullptr) + "}";
}

std::string propertyJson(const host::Property& property) {
  return "{\"name\": " + quoted(property.name) + ", \"type\": " + quoted(property.type) +
         ", \"consoleSafe\": " + truth((property.flags & kFlagConsoleSafe) != 0) + "}";
}

std::string classJson(const host::Class& type) {
  return "{\"name\": " + quoted(type.name) +
         ", \"consoleSafe\": " + truth((type.flags & kFlagConsoleSafe) != 0) +
         ", \"properties\": " + array(type.properties, propertyJson, "\n    ") +
         ", \"methods\": " + array(type.methods, methodJson, "\n    ") + "}";
}

int list(const Options& options, bool asJson) {
  const Session session(forMembersOnly(options));
  const host::Members& members = host::members();
  if (asJson) {
    print("{\"globalMethods\": " + array(members.globals, methodJson, "\n  ") +
          ",\n\"pictureMethods\": " + array(members.pictureMethods, methodJson, "\n  ") +
          ",\n\"classes\": " + array(members.classes, classJson, "\n  ") + "}");
    return kDone;
  }
  printGroup("Global methods", members.globals);
  printGroup("Methods of Picture", members.pictureMethods);
  for (const host::Class& type : members.classes) printAll(classLines(type));
  print("c: console-safe, usable in console and web applications too");
  return kDone;
}

}  // namespace

void addList(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand("list", "Every method and class as registered");
  const auto asJson = std::make_shared<bool>(false);
  command->add_flag("--json", *asJson, "As one JSON object, for scripts");
  command->footer(
      "Examples:\n"
      "  zvr list\n"
      "  zvr list --json | jq -r '.pictureMethods[].declaration'\n"
      "  zvr list --host-version 2009     what a host of 2009 is told\n");
  command->callback(
      [&run, &options, asJson] { run = [&options, asJson] { return list(options, *asJson); }; });
}

}  // namespace zvr
