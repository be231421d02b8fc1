// Markdown in a terminal and as a manual page.
#pragma once

#include <string>
#include <vector>

namespace zvr::markdown {

// Lines for a terminal of `width` characters: paragraphs are filled, tables stand in columns, code is as it
// is; links leave their text, images and comments nothing. An item of a list whose first line is broken by a
// backslash is a term with its meaning.
std::vector<std::string> rendered(const std::string& text, size_t width);
// The roff source of a manual page, without its title line.
std::string manualPage(const std::string& text);

// A heading, with all that stands before the next one, of whatever level.
struct Section {
  size_t level = 0;
  std::string title, body;  // body: Markdown
};
std::vector<Section> sections(const std::string& text);

}  // namespace zvr::markdown
