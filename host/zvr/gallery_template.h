// The gallery's page as a data file: pieces of HTML with places to fill.
#pragma once

#include <map>
#include <string>

namespace zvr::gallery {

// Contents for the places of a piece, by name. {{name}} in a piece takes them as text, {{&name}} as HTML.
using Fields = std::map<std::string, std::string>;

// A piece of gallery.html, filled. Throws std::logic_error for a piece or a field that is missing.
std::string fill(const std::string& piece, const Fields& fields);
// The text with entities for the characters that mean something in HTML.
std::string escaped(const std::string& text);

}  // namespace zvr::gallery
