#include "zvr/gallery/words.h"

#include <algorithm>
#include <filesystem>

#include "zvr/language/command_line.h"
#include "zvr/language/signatures.h"

namespace zvr::gallery {
namespace {

std::string shellWord(const std::string& word) {
  constexpr const char* kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./=@+-,:";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string variable(const Argument& argument, const host::Parameter& parameter) {
  if (parameter.byRef) return parameter.name;
  if (const auto* file = std::get_if<ArgumentFile>(&argument)) {
    return std::filesystem::path(file->path).stem();
  }
  if (std::holds_alternative<Current>(argument)) {
    if (parameter.type == host::Type::picture) return "photo";
    return parameter.type == host::Type::string ? "data" : "samples";
  }
  return valueText(std::get<host::Value>(argument));
}

bool isLeftOut(const Argument& argument, const host::Parameter& parameter) {
  return parameter.hasDefault && std::holds_alternative<host::Value>(argument) &&
         valueText(std::get<host::Value>(argument)) ==
             valueText(host::parseValue(parameter, parameter.defaultText));
}

std::string basicCall(const Step& step) {
  const host::Declaration& declaration = step.declaration;
  size_t count = step.arguments.size();
  while (count > 0 && isLeftOut(step.arguments[count - 1], declaration.parameters[count - 1])) --count;
  std::string text = std::string(step.takesReceiver() ? "photo." : "") + declaration.name;
  for (size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "(" : ", ") + variable(step.arguments[i], declaration.parameters[i]);
  }
  return text + (count > 0 ? ")" : "");
}

// Of a filter class.
void addFilter(const Step& step, std::vector<std::string>& lines) {
  lines.insert(lines.end(), {"Dim filter As New " + step.type->name, "filter.SourcePicture = photo"});
  for (size_t i = 0; i < step.arguments.size(); ++i) {
    const host::Parameter& property = step.declaration.parameters[i];
    lines.push_back("filter." + property.name + " = " + variable(step.arguments[i], property));
  }
  if (step.hasTable())
    lines.emplace_back("// filter.Table(r, g, b, channel) = …, for r, g and b from 0 to 15");
  lines.emplace_back("If filter.Run Then photo = filter.DestinationPicture");
}

void addStatements(const Step& step, bool isLast, std::vector<std::string>& lines) {
  const host::Declaration& declaration = step.declaration;
  for (const host::Parameter& parameter : declaration.parameters) {
    if (parameter.byRef) lines.push_back("Dim " + parameter.name + " As " + host::typeName(parameter.type));
  }
  host::Parameter value;
  value.type = declaration.result;
  if (step.assigned) {
    lines.push_back(basicCall(step) + " = " + variable(*step.assigned, value));
  } else if (declaration.result == host::Type::none) {
    lines.push_back(basicCall(step));
  } else {
    const std::string name = isLast ? "result" : variable(Current{}, value);
    lines.push_back("Dim " + name + " As " + host::typeName(declaration.result) + " = " + basicCall(step));
  }
}

}  // namespace

std::string shellLine(const std::vector<std::string>& words, const std::string& output) {
  const std::string option = output.empty() ? "" : " -o " + shellWord(output);
  const bool needsMark = std::any_of(words.begin(), words.end(), readsAsOption);
  std::string line = std::string("zvr apply") + (needsMark ? option + " --" : "");
  for (const std::string& word : words) line += " " + shellWord(word);
  return needsMark ? line : line + option;
}

std::string basicText(const Chain& chain) {
  std::vector<std::string> lines;
  for (const Step& step : chain.steps) {
    if (step.type) {
      addFilter(step, lines);
    } else {
      addStatements(step, &step == &chain.steps.back(), lines);
    }
  }
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return text;
}

}  // namespace zvr::gallery
