// The manual, as it is in docs/manual, for reading in a terminal.
#pragma once

#include <string>
#include <vector>

namespace zvr {

// The manual's text under a heading (a method's name, or a topic such as "rectangles"; any case, with -
// for spaces), as lines for a terminal of `width` characters; for a page's title the whole page. The
// declarations that open a method's section are left out. Nothing for a heading that the manual lacks.
std::vector<std::string> manualLines(const std::string& heading, size_t width);

// The texts of the manual's comments of a kind, each in a line of its own: <!-- KIND TEXT -->. They are not
// part of the text for a terminal.
std::vector<std::string> manualNotes(const std::string& kind);

// Markdown as lines for a terminal: paragraphs filled to `width`, tables in columns, code as it is; without
// images.
std::vector<std::string> renderMarkdown(const std::vector<std::string>& lines, size_t width);

}  // namespace zvr
