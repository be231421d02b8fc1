#include "zvr/commands/help.h"

#include <CLI/CLI.hpp>

#include <map>

#include "zvr/language/command_line.h"
#include "zvr/terminal/manual.h"
#include "zvr/terminal/markdown.h"
#include "zvr/terminal/terminal.h"

// All help is Markdown, until it is rendered.
namespace zvr {
namespace {

// A description is the purpose and, if it has a second line, the words that the command takes.
std::string purposeOf(const CLI::App& app) {
  const std::string text = app.get_description();
  return text.substr(0, text.find(":\n"));
}

std::string usageOf(const CLI::App& app) {
  const std::string text = app.get_description();
  const size_t usage = text.find(":\n");
  if (usage != std::string::npos) return text.substr(text.find("zvr", usage));
  std::string words = "zvr " + (app.get_parent() ? app.get_name() : "COMMAND") + " [OPTION]...";
  for (const CLI::Option* option :
       app.get_options([](const CLI::Option* one) { return one->get_positional(); }))
    words += option->get_required() ? ' ' + option->get_name(true) : " [" + option->get_name(true) + ']';
  return words;
}

std::string upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), ::toupper);
  return text;
}

std::string term(const std::string& name, const std::string& meaning) {
  return "- " + name + "\\\n  " + meaning + '\n';
}

std::string optionTerm(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) names += "**-" + name + "**, ";
  names += "**--" + option.get_lnames()[0] + "**";
  const std::string values = valuesOf(option), standard = option.get_default_str();
  if (!values.empty()) names += " *" + values + '*';
  return term(names, option.get_description() + (standard.empty() ? "" : ". Default: " + standard));
}

// The options of a group, under a heading. A command's help needs no word on itself.
std::string options(const CLI::App& app, const std::string& heading, const std::string& group = "Options") {
  std::string terms;
  for (const CLI::Option* option : app.get_options({})) {
    const bool isShown = option->get_group() == group && !option->get_lnames().empty();
    if (isShown && !(app.get_parent() && option == app.get_help_ptr())) terms += optionTerm(*option);
  }
  return terms.empty() ? "" : heading + '\n' + terms + '\n';
}

std::string programOptions(const CLI::App& program, const std::string& heading) {
  return options(program, heading) + options(program, std::string("## ") + kHostOptions, kHostOptions);
}

// Of a command, with what is told of its options.
std::string commandHelp(const CLI::App& command, const std::string& optionsText) {
  return '`' + usageOf(command) + "`\n\n" + purposeOf(command) + ".\n\n" + optionsText + '\n' +
         manualText("zvr " + command.get_name());
}

}  // namespace

std::string helpText(const CLI::App& app) {
  std::string text = "**Usage:** ";
  if (app.get_parent()) {
    text += commandHelp(app, options(app, "## Options")) + "\nOptions that every command takes: `zvr --help`";
  } else {
    text += '`' + usageOf(app) + "`\n\n" + app.get_description() + "\n\n## Commands\n";
    for (const CLI::App* command : app.get_subcommands({}))
      text += term("**" + command->get_name() + "**", purposeOf(*command));
    text += '\n' + programOptions(app, "## Options") + "## Examples\n" + manualText("examples");
  }
  std::string lines;
  for (const std::string& line : markdown::rendered(text, terminal::width())) lines += line + '\n';
  return lines;
}

std::string manualPage(const CLI::App& program) {
  const std::string manual = manualText("zvr");
  std::string text =
      "# NAME\nzvr - runs the picture methods of the PictureZVR plug-in\n# SYNOPSIS\n**zvr** *COMMAND* "
      "[*OPTION*]... [*WORD*]...\n# DESCRIPTION\n" +
      manual.substr(0, manual.find("\n## ")) + "\n# COMMANDS\n";
  std::map<std::string, std::string> tellers;  // the first command that has such options
  for (const CLI::App* command : program.get_subcommands({})) {
    const std::string own = options(*command, "");
    const auto [told, isNew] = tellers.emplace(own, command->get_name());
    const std::string same = "The options are those of **zvr " + told->second + "**.\n";
    text += "## zvr " + command->get_name() + '\n' +
            commandHelp(*command, isNew || own.empty() ? own : same) + '\n';
  }
  text += programOptions(program, "# OPTIONS");
  for (const markdown::Section& section : markdown::sections(manual)) {
    if (section.title.compare(0, 4, "zvr ") != 0) text += "# " + upper(section.title) + '\n' + section.body;
  }
  return ".TH ZVR 1 \"\" \"zvr " ZVR_VERSION "\" \"PictureZVR\"\n" + markdown::manualPage(text);
}

}  // namespace zvr
