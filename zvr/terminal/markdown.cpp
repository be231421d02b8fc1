#include "zvr/terminal/markdown.h"

#include <cmark-gfm-core-extensions.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <regex>
#include <sstream>

#include "zvr/terminal/terminal.h"

namespace zvr::markdown {
namespace {

using terminal::filled;
using terminal::Style;
using terminal::widthOf;
using Lines = std::vector<std::string>;
using Words = std::vector<std::string>;  // styled; "\n" ends a line
using Tree = std::unique_ptr<cmark_node, decltype(&cmark_node_free)>;

Tree parsed(const std::string& text) {
  cmark_gfm_core_extensions_ensure_registered();
  const std::unique_ptr<cmark_parser, decltype(&cmark_parser_free)> parser(
      cmark_parser_new(CMARK_OPT_DEFAULT), cmark_parser_free);
  cmark_parser_attach_syntax_extension(parser.get(), cmark_find_syntax_extension("table"));
  cmark_parser_feed(parser.get(), text.data(), text.size());
  return {cmark_parser_finish(parser.get()), cmark_node_free};
}

std::vector<cmark_node*> partsOf(cmark_node* node) {
  std::vector<cmark_node*> parts;
  for (cmark_node* part = cmark_node_first_child(node); part; part = cmark_node_next(part))
    parts.push_back(part);
  return parts;
}

std::string typeOf(cmark_node* node) { return cmark_node_get_type_string(node); }

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The words of a paragraph, a heading or a cell.
class Text {
 public:
  Text(cmark_node* block, Style style) {
    add(block, style);
    endWord();
  }
  Words words;

 private:
  void add(cmark_node* parent, Style style) {
    for (cmark_node* node : partsOf(parent)) {
      const std::string type = typeOf(node);
      if (type == "text" || type == "code") {
        addText(cmark_node_get_literal(node), type == "code" ? Style::type : style);
      } else if (type == "softbreak" || type == "linebreak") {
        endWord();
        if (type == "linebreak") words.emplace_back("\n");
      } else if (type != "image") {
        add(node, type == "strong" ? Style::name : type == "emph" ? Style::type : style);
      }
    }
  }
  void addText(const std::string& text, Style style) {
    std::string run;
    for (const char c : text + '\0') {
      if (c != ' ' && c != '\0') {
        run += c;
        continue;
      }
      word_ += terminal::styled(style, run);
      run.clear();
      if (c == ' ') endWord();
    }
  }
  void endWord() {
    if (!word_.empty()) words.push_back(word_);
    word_.clear();
  }

  std::string word_;
};

Words wordsOf(cmark_node* block, Style style = Style::plain) { return Text(block, style).words; }

std::string inOneLine(const Words& words) {
  const Lines lines = filled(words, std::string::npos);
  return lines.empty() ? "" : lines[0];
}

// ---- Tables ----

using Row = std::vector<Words>;
constexpr size_t kGap = 2;  // before each column

// Widths of columns: with each cell in one line, else folded; none where the longest words have no room.
std::vector<size_t> columnsFor(const std::vector<Row>& rows, size_t width) {
  std::vector<size_t> columns(rows[0].size()), narrowest(columns.size());
  size_t sum = kGap * columns.size();
  for (size_t i = 0; i < columns.size(); ++i) {
    for (const Row& row : rows) {
      columns[i] = std::max(columns[i], widthOf(inOneLine(row[i])));
      for (const std::string& word : row[i]) narrowest[i] = std::max(narrowest[i], widthOf(word));
    }
    sum += columns[i];
  }
  for (; sum > width; --sum) {
    size_t widest = columns.size();
    for (size_t i = 0; i < columns.size(); ++i) {
      const bool canFold = columns[i] > narrowest[i];
      if (canFold && (widest == columns.size() || columns[i] > columns[widest])) widest = i;
    }
    if (widest == columns.size()) return {};
    --columns[widest];
  }
  return columns;
}

void addRow(const Row& cells, const std::vector<size_t>& columns, Lines& to) {
  Lines lines;
  size_t left = kGap;
  for (size_t i = 0; i < cells.size(); ++i) {
    const Lines cell = filled(cells[i], columns[i]);
    lines.resize(std::max(lines.size(), cell.size()));
    for (size_t y = 0; y < cell.size(); ++y) lines[y] += std::string(left - widthOf(lines[y]), ' ') + cell[y];
    left += columns[i] + kGap;
  }
  to.insert(to.end(), lines.begin(), lines.end());
}

// Where there is no room for columns: the first cell, and below it the others with their headings.
void addBelow(const Row& cells, const Row& headings, size_t width, Lines& to) {
  for (size_t i = 0; i < cells.size(); ++i) {
    if (cells[i].empty()) continue;
    Words words = cells[i];
    if (i > 0) words.insert(words.begin(), inOneLine(headings[i]) + ':');
    const std::string margin(i == 0 ? 2 : 4, ' ');
    for (const std::string& line : filled(words, width - margin.size(), "  ")) to.push_back(margin + line);
  }
}

// Those of pictures are left out.
Lines table(cmark_node* block, size_t width) {
  std::vector<Row> rows;
  for (cmark_node* row : partsOf(block)) {
    const Style style = rows.empty() ? Style::name : Style::plain;
    rows.emplace_back();
    for (cmark_node* cell : partsOf(row)) {
      if (cmark_node* first = cmark_node_first_child(cell); first && typeOf(first) == "image") return {};
      rows.back().push_back(wordsOf(cell, style));
    }
  }
  const std::vector<size_t> columns = columnsFor(rows, width);
  Lines lines;
  for (size_t i = columns.empty() ? 1 : 0; i < rows.size(); ++i) {
    if (columns.empty()) {
      addBelow(rows[i], rows[0], width, lines);
    } else {
      addRow(rows[i], columns, lines);
    }
  }
  return lines;
}

// ---- Other blocks ----

Lines lines(cmark_node* block, size_t width);

Lines linesOfParts(cmark_node* block, size_t width, bool isApart) {
  Lines all;
  bool isBelowHeading = false;
  for (cmark_node* part : partsOf(block)) {
    const Lines more = lines(part, width);
    if (isApart && !isBelowHeading && !all.empty() && !more.empty()) all.emplace_back();
    isBelowHeading = typeOf(part) == "heading";
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

// The meaning stands beside its term, or below where the term is long or the terminal narrow.
Lines definition(const Words& term, const Words& meaning, size_t width) {
  const size_t column = width < 60 ? 6 : 26;
  Lines all = filled(meaning, width - column);
  for (std::string& line : all) line.insert(0, column, ' ');
  const std::string name = "  " + inOneLine(term);
  if (all.empty() || widthOf(name) + kGap > column) {
    all.insert(all.begin(), name);
  } else {
    all[0].replace(0, widthOf(name), name);
  }
  return all;
}

Lines item(cmark_node* block, size_t width) {
  const Words words = wordsOf(cmark_node_first_child(block));
  const auto end = std::find(words.begin(), words.end(), "\n");
  if (end != words.end()) return definition(Words(words.begin(), end), Words(end + 1, words.end()), width);
  Lines all = linesOfParts(block, width - 2, false);
  for (size_t i = 0; i < all.size(); ++i) all[i].insert(0, i == 0 ? "- " : "  ");
  return all;
}

Lines lines(cmark_node* block, size_t width) {
  const std::string type = typeOf(block);
  if (type == "paragraph") return filled(wordsOf(block), width);
  if (type == "heading") return {terminal::styled(Style::heading, inOneLine(wordsOf(block)))};
  if (type == "item") return item(block, width);
  if (type == "table") return table(block, width);
  if (type == "list") return linesOfParts(block, width, cmark_node_get_list_tight(block) == 0);
  if (type != "code_block") return linesOfParts(block, width, true);
  Lines code = linesOf(cmark_node_get_literal(block));
  for (std::string& line : code) line.insert(0, 4, ' ');
  return code;
}

}  // namespace

std::vector<std::string> rendered(const std::string& text, size_t width) {
  return lines(parsed(text).get(), width);
}

std::string manualPage(const std::string& text) {
  const std::unique_ptr<char, decltype(&std::free)> roff(
      cmark_render_man(parsed(text).get(), CMARK_OPT_DEFAULT, 0), std::free);
  const std::regex term(R"(\.IP \\\[bu\] 2\n(.*)\.PD 0\n\.P\n\.PD\n)");
  return std::regex_replace(roff.get(), term, ".TP\n$1\n");
}

std::vector<Section> sections(const std::string& text) {
  std::vector<Section> all;
  const Lines source = linesOf(text);
  size_t next = 0;
  const auto takeUpTo = [&](size_t end) {
    for (; next < end; ++next) {
      if (!all.empty()) all.back().body += source[next] + '\n';
    }
  };
  const Tree tree = parsed(text);
  for (cmark_node* block : partsOf(tree.get())) {
    if (typeOf(block) != "heading") continue;
    const auto line = static_cast<size_t>(cmark_node_get_start_line(block));
    takeUpTo(line - 1);
    next = line;
    all.push_back(
        {cmark_node_get_heading_level(block), terminal::withoutStyles(inOneLine(wordsOf(block))), ""});
  }
  takeUpTo(source.size());
  return all;
}

}  // namespace zvr::markdown
