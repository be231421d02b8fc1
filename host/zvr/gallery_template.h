// The gallery's page as a data file: pieces of HTML with places to fill.
#pragma once

#include <map>
#include <string>

namespace zvr::gallery {

// What stands in the places of a piece, by name. {{name}} in a piece takes it as text, {{&name}} as HTML.
using Fields = std::map<std::string, std::string>;

// A piece of gallery.html, filled. Throws std::logic_error for a piece or a field that is missing.
std::string fill(const std::string& piece, const Fields& fields);
// The text as it stands in HTML.
std::string escaped(const std::string& text);

}  // namespace zvr::gallery
