// Help, for a terminal and as a manual page. It is Markdown until it is rendered.

#include <CLI/CLI.hpp>

#include "zvr/commands/commands.h"
#include "zvr/language/command_line.h"
#include "zvr/terminal/manual.h"
#include "zvr/terminal/markdown.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

std::string purposeOf(const CLI::App& app) {
  const std::string text = app.get_description();
  return text.substr(0, text.find(":\n"));
}

std::string usageOf(const CLI::App& app) {
  const std::string text = app.get_description();
  return "`" + text.substr(text.find("zvr", text.find(":\n"))) + "`\n\n" + purposeOf(app) + ".\n\n";
}

std::string term(const std::string& name, const std::string& meaning) {
  return "- " + name + "\\\n  " + meaning + '\n';
}

// The options of a group, under a heading. A command's help needs no word on itself.
std::string options(const CLI::App& app, const std::string& heading, const std::string& group = "Options") {
  std::string terms;
  for (const CLI::Option* option : app.get_options({})) {
    const bool isOwnHelp = app.get_parent() && option == app.get_help_ptr();
    if (option->get_group() != group || option->get_lnames().empty() || isOwnHelp) continue;
    const std::string values = valuesOf(*option), standard = option->get_default_str();
    std::string name = "**--" + option->get_lnames()[0] + "**";
    if (!option->get_snames().empty()) name = "**-" + option->get_snames()[0] + "**, " + name;
    if (!values.empty()) name += " *" + values + '*';
    terms += term(name, option->get_description() + (standard.empty() ? "" : ". Default: " + standard));
  }
  return terms.empty() ? "" : heading + '\n' + terms + '\n';
}

std::string programOptions(const CLI::App& program, const std::string& heading) {
  return options(program, heading) + options(program, std::string("## ") + kHostOptions, kHostOptions);
}

}  // namespace

std::string helpText(const CLI::App& app) {
  std::string text = "**Usage:** " + usageOf(app);
  if (app.get_parent()) {
    text += options(app, "## Options") + manualText("zvr " + app.get_name()) +
            "\nOptions that every command takes: `zvr --help`";
  } else {
    text += "## Commands\n";
    for (const CLI::App* command : app.get_subcommands({}))
      text += term("**" + command->get_name() + "**", purposeOf(*command));
    text += '\n' + programOptions(app, "## Options") + "## Examples\n" + manualText("examples") +
            "\n## Topics\n" + CLI::detail::join(manualTopics(), ", ");
  }
  std::string lines;
  for (const std::string& line : markdown::rendered(text, terminal::width())) lines += line + '\n';
  return lines;
}

std::string manualPage(const CLI::App& program) {
  const std::string manual = manualText("zvr");
  std::string text = "# NAME\nzvr - runs the picture methods of the PictureZVR plug-in\n# SYNOPSIS\n" +
                     usageOf(program) + "# DESCRIPTION\n" + manual.substr(0, manual.find("\n## ")) +
                     "\n# COMMANDS\n";
  std::string told, teller;  // options, and the command that has them
  for (const CLI::App* command : program.get_subcommands({})) {
    const std::string name = "zvr " + command->get_name(), own = options(*command, "");
    const bool isTold = own == told && !own.empty();
    text += "## " + name + '\n' + usageOf(*command) + manualText(name) + '\n' +
            (isTold ? "The options are those of **" + teller + "**.\n" : own);
    if (!isTold) teller = name;
    told = own;
  }
  text += programOptions(program, "# OPTIONS");
  for (const markdown::Section& section : markdown::sections(manual)) {
    std::string title = section.title;
    std::transform(title.begin(), title.end(), title.begin(), ::toupper);
    if (title.compare(0, 4, "ZVR ") != 0) text += "# " + title + '\n' + section.body;
  }
  return ".TH ZVR 1 \"\" \"zvr " ZVR_VERSION "\" \"PictureZVR\"\n" + markdown::manualPage(text);
}

}  // namespace zvr
