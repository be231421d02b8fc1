#include "host/zvr/self.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "host/zvr/program.h"

namespace zvr {
namespace {

using Words = std::vector<std::string>;

std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
  return program.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option*) { return true; });
}

// ---- Manual page ----

// Text as man takes it: a backslash, a hyphen and a dot or quote at a line's start mean themselves.
std::string plain(const std::string& text) {
  std::string roff;
  for (const char c : text) {
    const bool opensLine = roff.empty() || roff.back() == '\n';
    if (opensLine && (c == '.' || c == '\'')) roff += "\\&";
    if (c == '\\') {
      roff += "\\e";
    } else if (c == '-') {
      roff += "\\-";
    } else {
      roff += c;
    }
  }
  return roff;
}

std::string asItIs(const std::string& text) { return ".nf\n" + plain(text) + "\n.fi\n"; }

std::string optionText(const CLI::Option& option) {
  std::string name = option.get_positional() ? option.get_name(true) : option.get_name(false, true);
  std::replace(name.begin(), name.end(), ',', ' ');
  const bool takesValue = !option.get_positional() && option.get_expected_min() > 0;
  const std::string standard = option.get_default_str();
  return ".TP\n.B " + plain(name) + (takesValue ? " \\fI" + plain(option.get_type_name()) + "\\fR" : "") +
         "\n" + plain(option.get_description()) +
         (standard.empty() ? "" : ". Standard: " + plain(standard) + ".") + "\n";
}

std::string optionTexts(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : optionsOf(app)) text += optionText(*option);
  return text;
}

// ---- Completion ----

Words methodNames() {
  Words names;
  for (const auto* methods : {&host::members().globals, &host::members().pictureMethods}) {
    for (const host::Method& method : *methods) names.push_back(method.declaration.name);
  }
  return names;
}

Words classNames() {
  Words names;
  for (const host::Class& type : host::members().classes) names.push_back(type.name);
  return names;
}

// The names that a subcommand takes.
Words memberNames(const std::string& command, size_t position) {
  const bool showsAll = command == "show";
  const bool takesClass = showsAll || (command == "run" && position == 0);
  const bool takesMethod = showsAll || (command == "apply" && position > 0);
  if (!takesClass && !takesMethod) return {};
  const Session session(forMembersOnly({}));
  Words names = takesMethod ? methodNames() : Words();
  if (takesClass) {
    const Words more = classNames();
    names.insert(names.end(), more.begin(), more.end());
  }
  return names;
}

Words optionNames(const CLI::App& app) {
  Words names;
  for (const CLI::Option* option : optionsOf(app)) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

Words valuesOf(const std::string& option) {
  if (option == "--host") return {"cairo", "gdk", "console"};
  if (option == "--color") return {"auto", "always", "never"};
  return {};
}

Words candidates(const CLI::App& program, const Words& words) {
  const CLI::App* command = nullptr;
  size_t position = 0;
  for (size_t i = 0; i + 1 < words.size(); ++i) {
    const bool isWord = words[i].empty() || words[i][0] != '-';
    if (command && isWord) ++position;
    for (const CLI::App* one : commandsOf(program)) {
      if (!command && one->get_name() == words[i]) command = one;
    }
  }
  if (words.size() > 1) {
    const Words values = valuesOf(words[words.size() - 2]);
    if (!values.empty()) return values;
  }
  if (!words.back().empty() && words.back()[0] == '-') {
    Words names = optionNames(program);
    const Words own = command ? optionNames(*command) : Words();
    names.insert(names.end(), own.begin(), own.end());
    return names;
  }
  if (command) return memberNames(command->get_name(), position);
  Words names;
  for (const CLI::App* one : commandsOf(program)) names.push_back(one->get_name());
  return names;
}

}  // namespace

std::string manualPage(const CLI::App& program, const std::string& version) {
  std::string page = ".TH ZVR 1 \"\" \"zvr " + version + "\" \"PictureZVR\"\n.SH NAME\nzvr \\- " +
                     "runs the picture methods of the PictureZVR plug\\-in\n.SH SYNOPSIS\n.B zvr\n" +
                     "\\fICOMMAND\\fR [\\fIOPTION\\fR...] [\\fIARGUMENT\\fR...]\n.SH DESCRIPTION\n" +
                     plain(program.get_description()) + "\n.SH OPTIONS OF EVERY COMMAND\n" +
                     optionTexts(program);
  for (const CLI::App* command : commandsOf(program)) {
    page += ".SH \"zvr " + command->get_name() + "\"\n" + asItIs(command->get_description()) +
            optionTexts(*command) + ".PP\n" + asItIs(command->get_footer());
  }
  return page + ".SH EXAMPLES AND EXIT STATUS\n" + asItIs(program.get_footer());
}

std::vector<std::string> completions(const CLI::App& program, const std::vector<std::string>& words) {
  if (words.empty()) return {};
  Words fitting;
  const std::string& begun = words.back();
  try {
    for (const std::string& name : candidates(program, words)) {
      if (host::equalNames(name.substr(0, begun.size()), begun)) fitting.push_back(name);
    }
  } catch (const std::exception&) {
    // Without the plug-in there is nothing to offer.
  }
  std::sort(fitting.begin(), fitting.end());
  fitting.erase(std::unique(fitting.begin(), fitting.end()), fitting.end());
  return fitting;
}

}  // namespace zvr
