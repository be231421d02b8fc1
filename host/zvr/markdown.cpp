// The manual's Markdown in a terminal.

#include <algorithm>
#include <cctype>

#include "host/zvr/manual.h"
#include "host/zvr/terminal.h"

namespace zvr {
namespace {

using terminal::Style;
using terminal::styled;
using Lines = std::vector<std::string>;
using Row = std::vector<std::string>;  // cells of a table

constexpr size_t kGap = 2;  // before each column of a table

// Characters that are seen of UTF-8 text without styles.
size_t widthOf(const std::string& text) {
  return static_cast<size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// A word or a line.
struct Piece {
  std::string text;  // styled
  size_t width = 0;  // as seen
};

bool isMark(char c) { return std::ispunct(static_cast<unsigned char>(c)) != 0; }

// Words of a line of Markdown: bold and code are styled, links leave their text, a backslash protects a mark.
class Words {
 public:
  explicit Words(const std::string& line) {
    for (size_t i = 0; i < line.size(); ++i) take(line, i);
    endWord();
  }
  std::vector<Piece> all;

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
      if (!isCode_ && line[i] == '\\' && i + 1 < line.size() && isMark(line[i + 1])) ++i;
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
  Piece word_;
};

std::vector<Piece> filled(const std::string& text, size_t width, const std::string& indent) {
  std::vector<Piece> lines;
  for (const Piece& word : Words(text).all) {
    if (lines.empty() || lines.back().width + 1 + word.width > width) {
      lines.push_back(lines.empty() ? Piece() : Piece{indent, indent.size()});
    } else {
      lines.back().text += ' ';
      ++lines.back().width;
    }
    lines.back().text += word.text;
    lines.back().width += word.width;
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

// Widths of a table's column: with each cell in one line, and folded as far as its words allow.
struct Column {
  size_t width = 0, narrowest = 0;
};

std::vector<Column> columnsFor(const std::vector<Row>& rows, size_t width) {
  std::vector<Column> columns;
  for (const Row& row : rows) {
    columns.resize(std::max(columns.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) {
      Column& column = columns[i];
      for (const Piece& line : filled(row[i], std::string::npos / 2, ""))
        column.width = std::max(column.width, line.width);
      for (const Piece& word : Words(row[i]).all) column.narrowest = std::max(column.narrowest, word.width);
    }
  }
  size_t sum = kGap * columns.size();
  for (const Column& column : columns) sum += column.width;
  for (; sum > width; --sum) {
    Column* widest = nullptr;
    for (Column& column : columns) {
      if (column.width > column.narrowest && (!widest || column.width > widest->width)) widest = &column;
    }
    if (!widest) break;
    --widest->width;
  }
  return columns;
}

// Columns side by side; where there is no room the widest ones are folded. Tables of pictures are left out.
void addTable(const Lines& lines, size_t width, Lines& to) {
  std::vector<Row> rows;
  for (const std::string& line : lines) {
    if (line.find("![") != std::string::npos) return;
    if (line.find_first_not_of("|- ") != std::string::npos) rows.push_back(cellsOf(line));
  }
  const std::vector<Column> columns = columnsFor(rows, width);
  for (const Row& row : rows) {
    Lines folded;
    size_t left = 0;
    for (size_t i = 0; i < row.size(); ++i) {
      const std::vector<Piece> cell = filled(row[i], columns[i].width, "");
      if (folded.size() < cell.size()) folded.resize(cell.size(), std::string(left, ' '));
      left += kGap + columns[i].width;
      for (size_t y = 0; y < folded.size(); ++y) {
        const Piece line = y < cell.size() ? cell[y] : Piece();
        const bool isLast = i + 1 == row.size();
        folded[y] += std::string(kGap, ' ') + line.text +
                     std::string(isLast ? 0 : columns[i].width - std::min(columns[i].width, line.width), ' ');
      }
    }
    for (std::string& line : folded) to.push_back(line.erase(line.find_last_not_of(' ') + 1));
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
  for (const Piece& line : filled(text, width, isItem(text) ? "  " : "")) to.push_back(line.text);
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
