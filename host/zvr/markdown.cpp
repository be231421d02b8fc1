// The manual's Markdown in a terminal.

#include <algorithm>

#include "host/zvr/manual.h"
#include "host/zvr/terminal.h"

namespace zvr {
namespace {

using terminal::Style;
using terminal::styled;
using Lines = std::vector<std::string>;
using Row = std::vector<std::string>;  // cells of a table, or words

// Characters that are seen of UTF-8 text without styles.
size_t widthOf(const std::string& text) {
  return static_cast<size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

struct Word {
  std::string text;  // styled
  size_t width = 0;
};

// Words of a line of Markdown: bold and code are styled, links leave their text, a backslash protects.
class Words {
 public:
  explicit Words(const std::string& line) {
    for (size_t i = 0; i < line.size(); ++i) take(line, i);
    endWord();
  }
  std::vector<Word> all;

 private:
  void take(const std::string& line, size_t& i) {
    if (line[i] == '`') {
      isCode_ = turn(isCode_);
    } else if (!isCode_ && line.compare(i, 2, "**") == 0) {
      isBold_ = turn(isBold_);
      ++i;
    } else if (!isCode_ && line.compare(i, 2, "](") == 0) {
      i = std::min(line.find(')', i), line.size() - 1);
    } else if (line[i] == ' ') {
      endWord();
    } else if (isCode_ || line[i] != '[') {
      if (!isCode_ && line[i] == '\\' && i + 1 < line.size()) ++i;
      run_ += line[i];
    }
  }
  bool turn(bool flag) {
    endRun();
    return !flag;
  }
  void endRun() {
    word_.width += widthOf(run_);
    word_.text += styled(isCode_ ? Style::type : isBold_ ? Style::name : Style::plain, run_);
    run_.clear();
  }
  void endWord() {
    endRun();
    if (word_.width > 0) all.push_back(word_);
    word_ = {};
  }

  bool isBold_ = false, isCode_ = false;
  std::string run_;
  Word word_;
};

Lines filled(const std::string& text, size_t width, const std::string& indent) {
  Lines lines;
  size_t used = 0;
  for (const Word& word : Words(text).all) {
    if (lines.empty() || used + 1 + word.width > width) {
      lines.push_back(lines.empty() ? "" : indent);
      used = lines.back().size();
    } else {
      lines.back() += ' ';
      ++used;
    }
    lines.back() += word.text;
    used += word.width;
  }
  return lines;
}

Row cellsOf(const std::string& line) {
  Row cells;
  std::string cell;
  for (size_t i = 1; i < line.size(); ++i) {
    if (line[i] == '|' && line[i - 1] != '\\') {
      const size_t begin = cell.find_first_not_of(' '), end = cell.find_last_not_of(' ');
      cells.push_back(begin == std::string::npos ? "" : cell.substr(begin, end - begin + 1));
      cell.clear();
    } else {
      cell += line[i];
    }
  }
  return cells;
}

size_t shownWidth(const std::string& cell) {
  size_t width = 0;
  for (const Word& word : Words(cell).all) width += word.width + 1;
  return width == 0 ? 0 : width - 1;
}

// Columns side by side, the last one filled. Tables of pictures have nothing to show here.
void addTable(const Lines& lines, size_t width, Lines& to) {
  std::vector<Row> rows;
  std::vector<size_t> widths;
  for (const std::string& line : lines) {
    if (line.find("![") != std::string::npos) return;
    if (line.find_first_not_of("|- ") == std::string::npos) continue;
    rows.push_back(cellsOf(line));
    widths.resize(std::max(widths.size(), rows.back().size()));
    for (size_t i = 0; i < rows.back().size(); ++i)
      widths[i] = std::max(widths[i], shownWidth(rows.back()[i]));
  }
  for (const Row& row : rows) {
    std::string line = "  ";
    size_t column = 2;
    for (size_t i = 0; i + 1 < row.size(); ++i) {
      for (const std::string& text : filled(row[i], std::string::npos / 2, "")) line += text;
      line += std::string(widths[i] - shownWidth(row[i]) + 2, ' ');
      column += widths[i] + 2;
    }
    const size_t room = std::max<size_t>(width - std::min(width, column), 30);
    Lines last = filled(row.empty() ? "" : row.back(), room, "");
    to.push_back(line + (last.empty() ? "" : last[0]));
    for (size_t i = 1; i < last.size(); ++i) to.push_back(std::string(column, ' ') + last[i]);
  }
}

bool isItem(const std::string& line) { return line.compare(0, 2, "- ") == 0; }
bool isTable(const std::string& line) { return line.compare(0, 1, "|") == 0; }
bool isFence(const std::string& line) { return line.compare(0, 3, "```") == 0; }
bool isHeading(const std::string& line) { return line.compare(0, 1, "#") == 0; }
bool endsParagraph(const std::string& line) {
  return line.empty() || isItem(line) || isTable(line) || isFence(line) || isHeading(line);
}

// A block that begins at a line, and the line behind it.
size_t addBlock(const Lines& lines, size_t i, size_t width, Lines& to) {
  if (isFence(lines[i])) {
    for (++i; i < lines.size() && !isFence(lines[i]); ++i) to.push_back("    " + lines[i]);
    return i + 1;
  }
  if (isTable(lines[i])) {
    const auto begin = lines.begin() + static_cast<std::ptrdiff_t>(i);
    const auto end = std::find_if_not(begin, lines.end(), isTable);
    addTable(Lines(begin, end), width, to);
    return i + static_cast<size_t>(end - begin);
  }
  if (isHeading(lines[i])) {
    to.push_back(styled(Style::heading, lines[i].substr(lines[i].find(' ') + 1)));
    return i + 1;
  }
  std::string text = lines[i];
  size_t next = i + 1;
  for (; next < lines.size() && !endsParagraph(lines[next]); ++next) text += " " + lines[next];
  const Lines paragraph = filled(text, width, isItem(text) ? "  " : "");
  to.insert(to.end(), paragraph.begin(), paragraph.end());
  return next;
}

}  // namespace

std::vector<std::string> renderMarkdown(const std::vector<std::string>& lines, size_t width) {
  Lines rendered;
  for (size_t i = 0; i < lines.size();) {
    if (lines[i].empty()) {
      if (!rendered.empty() && !rendered.back().empty()) rendered.emplace_back();
      ++i;
    } else {
      i = addBlock(lines, i, width, rendered);
    }
  }
  while (!rendered.empty() && rendered.back().empty()) rendered.pop_back();
  return rendered;
}

}  // namespace zvr
