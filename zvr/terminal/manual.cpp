#include "zvr/terminal/manual.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string_view>

#include "host/declarations.h"

namespace zvr {

// docs/manual/*.md one after another, from the build.
extern const char* const kManual;

namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view kCommentBegin = "<!-- ", kCommentEnd = " -->";

bool isComment(const std::string& line) { return line.compare(0, kCommentBegin.size(), kCommentBegin) == 0; }

Lines manualText() {
  Lines lines;
  std::istringstream text(kManual);
  const std::string wayBack = "[All methods](README.md)";  // a link that leads nowhere in a terminal
  for (std::string line; std::getline(text, line);) {
    if (isComment(line)) continue;
    if (const size_t at = line.find(wayBack); at != std::string::npos) line.erase(at, wayBack.size());
    lines.push_back(line);
  }
  return lines;
}

bool isFence(const std::string& line) { return line.compare(0, 3, "```") == 0; }

size_t levelOf(const std::string& line) {
  const size_t level = line.find_first_not_of('#');
  return level != std::string::npos && line[level] == ' ' ? level : 0;
}

// The line of the next heading of at most this level; code may hold comments that look like one.
size_t endOf(const Lines& lines, size_t from, size_t level) {
  bool isCode = false;
  for (size_t i = from; i < lines.size(); ++i) {
    if (isFence(lines[i])) isCode = !isCode;
    const size_t other = isCode ? 0 : levelOf(lines[i]);
    if (other > 0 && other <= level) return i;
  }
  return lines.size();
}

std::string asAnchor(std::string heading) {
  std::replace(heading.begin(), heading.end(), ' ', '-');
  return heading;
}

Lines slice(const Lines& lines, size_t begin, size_t end) {
  return {lines.begin() + static_cast<std::ptrdiff_t>(begin),
          lines.begin() + static_cast<std::ptrdiff_t>(end)};
}

// The page's words on all its methods: what follows its first paragraph.
Lines sharedRules(const Lines& lines, size_t title) {
  const size_t end = endOf(lines, title + 1, 2);
  size_t i = title + 2;
  while (i < end && !lines[i].empty()) ++i;
  return slice(lines, std::min(i, end), end);
}

// Without the first block of code: the declarations, which are told as registered.
Lines withoutDeclarations(const Lines& lines) {
  const auto begin = std::find_if(lines.begin(), lines.end(), isFence);
  if (begin == lines.end() || *begin != "```basic") return lines;
  const auto end = std::find_if(begin + 1, lines.end(), isFence);
  Lines rest(lines.begin(), begin);
  rest.insert(rest.end(), end == lines.end() ? end : end + 1, lines.end());
  return rest;
}

// The topics of the manual's first page that the text refers to.
std::string topicsIn(const Lines& lines) {
  const std::string link = "(README.md#";
  std::set<std::string> topics;
  for (const std::string& line : lines) {
    for (size_t at = 0; (at = line.find(link, at)) != std::string::npos;) {
      at += link.size();
      topics.insert(line.substr(at, line.find(')', at) - at));
    }
  }
  std::string text;
  for (const std::string& topic : topics)
    text += (text.empty() ? "See also `zvr show " : "`, `zvr show ") + topic;
  return text.empty() ? text : text + "`.";
}

}  // namespace

std::vector<std::string> manualLines(const std::string& heading, size_t width) {
  const Lines lines = manualText();
  size_t title = 0;
  for (size_t i = 0; i < lines.size(); i = endOf(lines, i + 1, 6)) {
    const size_t level = levelOf(lines[i]);
    if (level == 0) continue;
    if (level == 1) title = i;
    if (!host::equalNames(asAnchor(lines[i].substr(level + 1)), asAnchor(heading))) continue;
    Lines text = slice(lines, i + 1, endOf(lines, i + 1, level));
    if (level == 2) {
      text = withoutDeclarations(text);
      const Lines shared = sharedRules(lines, title);
      text.insert(text.end(), shared.begin(), shared.end());
    }
    if (const std::string topics = topicsIn(text); !topics.empty()) text.insert(text.end(), {"", topics});
    return renderMarkdown(text, width);
  }
  return {};
}

std::vector<std::string> manualNotes(const std::string& kind) {
  Lines notes;
  std::istringstream text(kManual);
  const size_t before = kCommentBegin.size() + kind.size() + 1, around = before + kCommentEnd.size();
  for (std::string line; std::getline(text, line);) {
    const bool isOfKind = isComment(line) && line.size() >= around &&
                          line.compare(kCommentBegin.size(), kind.size() + 1, kind + ' ') == 0;
    if (isOfKind) notes.push_back(line.substr(before, line.size() - around));
  }
  return notes;
}

}  // namespace zvr
