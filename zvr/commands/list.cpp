// zvr list: everything that the plug-in registered.

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <set>

#include "zvr/commands/commands.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using terminal::print;
using terminal::Style;
using terminal::styled;

// ---- For people ----

void printMember(const host::Flagged& member, const std::vector<std::string>& lines) {
  const std::string mark = member.consoleSafe() ? styled(Style::good, "c") : styled(Style::faint, "-");
  for (const std::string& line : lines) print((&line == &lines.front() ? "  " + mark + " " : "    ") + line);
}

// Overloads stand together.
void printMethods(const std::vector<host::Method>& methods) {
  std::set<std::string> names;
  for (const host::Method& first : methods) {
    if (!names.insert(first.declaration.name).second) continue;
    for (const host::Method& method : methods) {
      if (method.declaration.name != first.declaration.name) continue;
      printMember(method, signatureLines(method.declaration, terminal::width() - 4));
      if (method.setter) print(styled(Style::faint, "      can be assigned to"));
    }
  }
  print("");
}

void printAll(const host::Members& members) {
  print(styled(Style::heading, "Global methods"));
  printMethods(members.globals);
  print(styled(Style::heading, "Methods of Picture"));
  printMethods(members.pictureMethods);
  for (const host::Class& type : members.classes) {
    print(classTitle(type));
    for (const host::Property& property : type.properties)
      printMember(property, {styled(Style::name, property.name) + " as " + property.type});
    printMethods(type.methods);
  }
  print("c: console-safe, -: for desktops only");
}

// ---- For scripts ----

using Json = nlohmann::ordered_json;

template <typename Item>
Json array(const std::vector<Item>& items, Json (*json)(const Item&)) {
  Json all = Json::array();
  for (const Item& item : items) all.push_back(json(item));
  return all;
}

Json parameterJson(const host::Parameter& parameter) {
  Json json{{"name", parameter.name}, {"type", host::typeName(parameter.type)}, {"byref", parameter.byRef}};
  if (parameter.hasDefault) json["default"] = parameter.defaultText;
  return json;
}

Json methodJson(const host::Method& method) {
  const auto& [name, parameters, result] = method.declaration;
  return {{"name", name},
          {"declaration", method.text},
          {"parameters", array(parameters, parameterJson)},
          {"result", result == host::Type::none ? Json() : Json(host::typeName(result))},
          {"consoleSafe", method.consoleSafe()},
          {"assignable", method.setter != nullptr}};
}

Json propertyJson(const host::Property& property) {
  return {{"name", property.name}, {"type", property.type}, {"consoleSafe", property.consoleSafe()}};
}

Json classJson(const host::Class& type) {
  return {{"name", type.name},
          {"consoleSafe", type.consoleSafe()},
          {"properties", array(type.properties, propertyJson)},
          {"methods", array(type.methods, methodJson)}};
}

int list(const Options& options, bool asJson) {
  const Session session(forMembersOnly(options));
  const host::Members& members = host::members();
  if (asJson) {
    const Json json{{"globalMethods", array(members.globals, methodJson)},
                    {"pictureMethods", array(members.pictureMethods, methodJson)},
                    {"classes", array(members.classes, classJson)}};
    print(json.dump(2, ' ', false, Json::error_handler_t::replace));
  } else {
    printAll(members);
  }
  return kDone;
}

}  // namespace

void addList(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command =
      program.add_subcommand("list", "List every method and class as registered:\n  zvr list [--json]");
  const auto asJson = std::make_shared<bool>(false);
  command->add_flag("--json", *asJson, "As one JSON object, for scripts");
  command->callback(
      [&run, &options, asJson] { run = [&options, asJson] { return list(options, *asJson); }; });
}

}  // namespace zvr
