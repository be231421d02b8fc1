#include "host/zvr/gallery_template.h"

#include <stdexcept>
#include <string_view>

namespace zvr::gallery {

// gallery.html, from the build.
extern const char* const kGalleryHtml;

namespace {

// "page" is the part before the first "<!-- piece NAME -->".
std::string_view pieceNamed(const std::string& name) {
  const std::string_view html = kGalleryHtml;
  const std::string mark = "<!-- piece " + name + " -->\n";
  size_t begin = 0;
  if (name != "page") {
    begin = html.find(mark);
    if (begin == std::string_view::npos) throw std::logic_error("gallery.html has no piece " + name);
    begin += mark.size();
  }
  return html.substr(begin, html.find("<!-- piece ", begin) - begin);
}

}  // namespace

std::string escaped(const std::string& text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string fill(const std::string& piece, const Fields& fields) {
  const std::string_view source = pieceNamed(piece);
  std::string result;
  size_t done = 0;
  for (size_t begin; (begin = source.find("{{", done)) != std::string_view::npos;) {
    const size_t end = source.find("}}", begin);
    const bool isHtml = source[begin + 2] == '&';
    const std::string name(source.substr(begin + (isHtml ? 3 : 2), end - begin - (isHtml ? 3 : 2)));
    const auto field = fields.find(name);
    if (field == fields.end()) throw std::logic_error("piece " + piece + " lacks " + name);
    result += source.substr(done, begin - done);
    result += isHtml ? field->second : escaped(field->second);
    done = end + 2;
  }
  return result += source.substr(done);
}

}  // namespace zvr::gallery
