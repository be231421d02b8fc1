// The manual, as it is in docs/manual, for reading in a terminal.
#pragma once

#include <string>
#include <vector>

namespace zvr {

// The manual's Markdown under a heading (a method's name, or a topic such as "rectangles"; any case, with -
// for spaces); for a page's title the whole page. The declarations that open a method's section are left
// out. Empty for a heading that the manual lacks.
std::string manualText(const std::string& heading);
// The same as lines for a terminal of `width` characters.
std::vector<std::string> manualLines(const std::string& heading, size_t width);
// Headings that are no member's, as one types them: "pictures-in-and-out".
std::vector<std::string> manualTopics();

// The texts of the manual's comments of a kind, each in a line of its own: <!-- KIND TEXT -->. They are not
// part of the text for a terminal.
std::vector<std::string> manualNotes(const std::string& kind);

}  // namespace zvr
