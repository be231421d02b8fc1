#include "zvr/terminal/markdown.h"

#include <cmark-gfm-core-extensions.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <regex>

#include "zvr/terminal/terminal.h"

namespace zvr::markdown {
namespace {

using terminal::filled;
using terminal::Style;
using terminal::styled;
using terminal::widthOf;
using Lines = std::vector<std::string>;
using Row = std::vector<std::string>;  // cells of a table
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

// A paragraph, a heading or a cell in one line, except where a backslash breaks it.
std::string textOf(cmark_node* node, Style style = Style::plain) {
  const std::string type = typeOf(node);
  if (type == "softbreak" || type == "linebreak") return type == "softbreak" ? " " : "\n";
  if (type == "text") return styled(style, cmark_node_get_literal(node));
  if (type == "code") return styled(Style::type, cmark_node_get_literal(node));
  if (type == "image") return "";
  std::string text;
  for (cmark_node* part : partsOf(node))
    text += textOf(part, type == "strong" ? Style::name : type == "emph" ? Style::type : style);
  return text;
}

constexpr size_t kGap = 2;  // before each column

std::string padded(const std::string& text, size_t width) {
  return text + std::string(std::max(width, widthOf(text)) - widthOf(text), ' ');
}

// The cells of a row side by side, folded to the widths of the columns.
void addRow(const Row& row, const std::vector<size_t>& columns, Lines& to) {
  Lines lines;
  size_t left = 0;
  for (size_t i = 0; i < row.size(); ++i) {
    const Lines cell = filled(row[i], columns[i]);
    lines.resize(std::max(lines.size(), cell.size()));
    for (size_t y = 0; y < cell.size(); ++y) lines[y] = padded(lines[y], left + kGap) + cell[y];
    left += kGap + columns[i];
  }
  to.insert(to.end(), lines.begin(), lines.end());
}

// The cells of a row below the first one, after their headings if there are some.
void addBelow(const Row& row, const Row& headings, size_t width, Lines& to) {
  const std::string indent(3 * kGap, ' ');
  for (size_t i = 0; i < row.size(); ++i) {
    if (row[i].empty()) continue;
    const std::string begin = i == 0 ? "  " : indent + (headings.empty() ? "" : headings[i] + ": ");
    for (const std::string& line : filled(begin + row[i], width, indent)) to.push_back(line);
  }
}

// Columns are folded as needed; where too little would be left of the last one, there are none.
Lines tableOf(const std::vector<Row>& rows, bool hasHeadings, size_t width) {
  constexpr size_t kMost = 24, kLeast = 20;
  std::vector<size_t> columns(rows[0].size());
  for (const Row& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) columns[i] = std::max(columns[i], widthOf(row[i]));
  }
  const auto sum = [&] { return std::accumulate(columns.begin(), columns.end(), kGap * columns.size()); };
  for (size_t i = 0; i + 1 < columns.size() && sum() > width; ++i) columns[i] = std::min(columns[i], kMost);
  const size_t others = sum() - columns.back();
  const bool isWide = others + std::min(columns.back(), kLeast) <= width;
  columns.back() = std::min(columns.back(), width - std::min(others, width));
  Lines lines;
  for (size_t y = hasHeadings && !isWide ? 1 : 0; y < rows.size(); ++y) {
    if (isWide) {
      addRow(rows[y], columns, lines);
    } else {
      addBelow(rows[y], hasHeadings ? rows[0] : Row(), width, lines);
    }
  }
  return lines;
}

// Lines for a shell are continued where they are too long.
Lines code(cmark_node* block, size_t width) {
  Lines lines;
  const bool isShell = cmark_node_get_fence_info(block) == std::string("sh");
  for (const std::string& line : terminal::split(cmark_node_get_literal(block), '\n')) {
    Lines parts = filled(line, isShell ? width - 2 : std::string::npos, "  ");
    for (size_t i = 0; i + 1 < parts.size(); ++i) parts[i] += " \\";
    lines.insert(lines.end(), parts.begin(), parts.end());
  }
  return lines;
}

Lines linesOf(cmark_node* block, size_t width);

// Tables of pictures are left out.
Lines table(cmark_node* block, size_t width) {
  std::vector<Row> rows;
  for (cmark_node* row : partsOf(block)) {
    const Style style = rows.empty() ? Style::name : Style::plain;
    rows.emplace_back();
    for (cmark_node* cell : partsOf(row)) {
      if (!partsOf(cell).empty() && typeOf(cmark_node_first_child(cell)) == "image") return {};
      rows.back().push_back(textOf(cell, style));
    }
  }
  return tableOf(rows, true, width);
}

// Items, or terms with their meanings.
Lines list(cmark_node* block, size_t width) {
  std::vector<Row> terms;
  Lines lines;
  for (cmark_node* item : partsOf(block)) {
    const std::string text = textOf(cmark_node_first_child(item));
    if (const size_t end = text.find('\n'); end != std::string::npos) {
      terms.push_back({text.substr(0, end), text.substr(end + 1)});
      continue;
    }
    std::string mark = "- ";
    for (cmark_node* part : partsOf(item)) {
      for (const std::string& line : linesOf(part, width - mark.size())) {
        lines.push_back(mark + line);
        mark = "  ";
      }
    }
  }
  return terms.empty() ? lines : tableOf(terms, false, width);
}

Lines linesOf(cmark_node* block, size_t width) {
  const std::string type = typeOf(block);
  if (type == "paragraph") return filled(textOf(block), width);
  if (type == "heading") return {styled(Style::heading, textOf(block))};
  if (type == "table") return table(block, width);
  if (type == "list") return list(block, width);
  Lines lines;
  if (type == "code_block") {
    for (const std::string& line : code(block, width - 4)) lines.push_back("    " + line);
  }
  bool isApart = false;
  for (cmark_node* part : partsOf(block)) {
    const Lines more = linesOf(part, width);
    if (isApart && !more.empty()) lines.emplace_back();
    lines.insert(lines.end(), more.begin(), more.end());
    isApart = !lines.empty() && typeOf(part) != "heading";
  }
  return lines;
}

}  // namespace

std::vector<std::string> rendered(const std::string& text, size_t width) {
  return linesOf(parsed(text).get(), width);
}

std::string manualPage(const std::string& text) {
  constexpr size_t kCodeWidth = 66;  // with man's margins in a terminal of 80
  const Tree tree = parsed(text);
  for (cmark_node* block : partsOf(tree.get())) {
    std::string lines;
    if (typeOf(block) != "code_block") continue;
    for (const std::string& line : code(block, kCodeWidth)) lines += line + '\n';
    cmark_node_set_literal(block, lines.c_str());
  }
  const std::unique_ptr<char, decltype(&std::free)> roff(cmark_render_man(tree.get(), CMARK_OPT_DEFAULT, 0),
                                                         std::free);
  const std::regex term(R"(\.IP \\\[bu\] 2\n(.*)\.PD 0\n\.P\n\.PD\n)");
  return std::regex_replace(roff.get(), term, ".TP\n$1\n");
}

std::vector<Section> sections(const std::string& text) {
  std::vector<Section> all;
  bool isCode = false;  // which may hold comments that look like headings
  for (const std::string& line : terminal::split(text, '\n')) {
    isCode = isCode != (line.compare(0, 3, "```") == 0);
    const size_t level = line.find_first_not_of('#');
    if (!isCode && level != std::string::npos && level > 0 && line[level] == ' ') {
      all.push_back({level, line.substr(level + 1), ""});
    } else if (!all.empty()) {
      all.back().body += line + '\n';
    }
  }
  return all;
}

}  // namespace zvr::markdown
