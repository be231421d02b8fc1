#include "zvr/terminal/manual.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>

#include "zvr/terminal/markdown.h"
#include "zvr/terminal/terminal.h"

namespace zvr {

// docs/manual/*.md one after another, from the build.
extern const char* const kManual;

namespace {

using markdown::Section;

const std::vector<Section>& manual() {
  static const std::vector<Section> sections = markdown::sections(kManual);
  return sections;
}

std::string asTyped(std::string heading) {
  std::transform(heading.begin(), heading.end(), heading.begin(),
                 [](unsigned char c) { return c == ' ' ? '-' : static_cast<char>(std::tolower(c)); });
  return heading;
}

// Without the first block of code: the declarations, which are told as registered.
std::string withoutDeclarations(std::string text) {
  const std::string begin = "\n```basic\n", end = "\n```\n";
  const size_t at = text.find("\n```");
  if (text.compare(std::min(at, text.size()), begin.size(), begin) == 0)
    text.erase(at, text.find(end, at + begin.size()) + end.size() - at);
  return text;
}

// The page's words on all its methods: what follows its first paragraph.
std::string sharedRules(const Section& title) {
  const size_t end = title.body.find("\n\n", 1);
  return end == std::string::npos ? "" : title.body.substr(end);
}

// The topics of the manual's first page that the text refers to.
std::string topicsIn(const std::string& text) {
  const std::regex link(R"(\(README\.md#([^)]*)\))");
  std::set<std::string> topics;
  for (std::sregex_iterator i(text.begin(), text.end(), link), end; i != end; ++i) topics.insert(i->str(1));
  std::string line;
  for (const std::string& topic : topics)
    line += (line.empty() ? "\nSee also `zvr show " : "`, `zvr show ") + topic;
  return line.empty() ? line : line + "`.\n";
}

}  // namespace

std::string manualText(const std::string& heading) {
  const auto& sections = manual();
  const auto title = std::find_if(sections.begin(), sections.end(), [&](const Section& section) {
    return asTyped(section.title) == asTyped(heading);
  });
  if (title == sections.end()) return "";
  std::string text = title->body;
  auto next = title + 1;
  for (; next != sections.end() && next->level > title->level; ++next)
    text += std::string(next->level, '#') + ' ' + next->title + '\n' + next->body;
  if (title->level == 2) {
    const auto page = std::find_if(std::make_reverse_iterator(title), sections.rend(),
                                   [](const Section& section) { return section.level == 1; });
    text = withoutDeclarations(text) + sharedRules(*page);
  }
  const std::string wayBack = "[All methods](README.md)";  // leads nowhere in a terminal
  for (size_t at; (at = text.find(wayBack)) != std::string::npos;) text.erase(at, wayBack.size());
  return text + topicsIn(text);
}

std::vector<std::string> manualLines(const std::string& heading, size_t width) {
  return markdown::rendered(manualText(heading), width);
}

std::vector<std::string> manualTopics() {
  const auto isMember = [](const std::string& title) {
    return title.size() > 3 && title.compare(title.size() - 3, 3, "ZVR") == 0;
  };
  std::vector<std::string> topics;
  bool isClass = false;  // what the page is about
  for (const Section& section : manual()) {
    if (section.level == 1) isClass = isMember(section.title);
    const bool isCommand = section.title.compare(0, 4, "zvr ") == 0;
    if (!isClass && !isCommand && !isMember(section.title)) topics.push_back(asTyped(section.title));
  }
  return topics;
}

std::vector<std::string> manualNotes(const std::string& kind) {
  const std::string begin = "<!-- " + kind + ' ', end = " -->";
  std::vector<std::string> notes;
  for (const std::string& line : terminal::split(kManual, '\n')) {
    if (line.compare(0, begin.size(), begin) == 0 && line.size() >= begin.size() + end.size())
      notes.push_back(line.substr(begin.size(), line.size() - begin.size() - end.size()));
  }
  return notes;
}

}  // namespace zvr
