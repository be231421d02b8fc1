// The parser of declarations: a cursor over the text, one function per construct.

#include "host/declarations.h"

#include <algorithm>
#include <array>
#include <set>
#include <stdexcept>

namespace host {
namespace {

struct NamedType {
  const char* name;
  Type type;
};
// The first name of a type is the one that is shown.
constexpr std::array<NamedType, 10> kTypes{{{"Integer", Type::integer},
                                            {"UInt32", Type::uint32},
                                            {"Double", Type::real},
                                            {"Boolean", Type::boolean},
                                            {"Color", Type::color},
                                            {"String", Type::string},
                                            {"Picture", Type::picture},
                                            {"MemoryBlock", Type::memoryBlock},
                                            {"Object", Type::object},
                                            {"Int32", Type::integer}}};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isNameCharacter(char c) { return (lower(c) >= 'a' && lower(c) <= 'z') || isDigit(c) || c == '_'; }
bool isSpace(char c) { return c == ' ' || c == '\t'; }

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Declaration declaration() {
    Declaration result;
    result.name = name("a name");
    if (takes('(') && !takes(')')) {
      do {
        result.parameters.push_back(parameter());
      } while (takes(','));
      if (!takes(')')) fail("',' or ')'");
    }
    if (takesWord("as")) result.result = type();
    if (!atEnd()) fail(result.result == Type::none ? "'(', 'as' or the end" : "the end");
    return result;
  }

 private:
  Parameter parameter() {
    Parameter result;
    result.byRef = takesWord("byref");
    if (!result.byRef) takesWord("byval");
    result.name = name("the name of a parameter");
    if (!takesWord("as")) fail("'as'");
    result.type = type();
    if (takes('=')) {
      result.hasDefault = true;
      result.defaultText = defaultText();
    }
    return result;
  }

  Type type() {
    skipSpaces();
    const size_t start = position_;
    const std::string word = name("a type");
    for (const NamedType& known : kTypes) {
      if (equalNames(word, known.name)) return known.type;
    }
    position_ = start;
    fail("a type (Integer, UInt32, Double, Boolean, Color, String, Picture, MemoryBlock or Object)");
  }

  // Everything up to the next comma or closing parenthesis.
  std::string defaultText() {
    skipSpaces();
    const size_t start = position_;
    position_ = std::min(text_.find_first_of(",)", position_), text_.size());
    std::string_view result = text_.substr(start, position_ - start);
    while (!result.empty() && isSpace(result.back())) result.remove_suffix(1);
    if (result.empty()) fail("a default value");
    return std::string(result);
  }

  std::string name(const char* expected) {
    skipSpaces();
    if (atEnd() || !isNameCharacter(text_[position_]) || isDigit(text_[position_])) fail(expected);
    const std::string_view found = wordHere();
    position_ += found.size();
    return std::string(found);
  }

  std::string_view wordHere() const {
    size_t end = position_;
    while (end < text_.size() && isNameCharacter(text_[end])) ++end;
    return text_.substr(position_, end - position_);
  }

  bool takesWord(std::string_view word) {
    skipSpaces();
    if (!equalNames(wordHere(), word)) return false;
    position_ += word.size();
    return true;
  }

  bool takes(char c) {
    skipSpaces();
    if (position_ == text_.size() || text_[position_] != c) return false;
    ++position_;
    return true;
  }

  bool atEnd() {
    skipSpaces();
    return position_ == text_.size();
  }

  void skipSpaces() {
    while (position_ < text_.size() && isSpace(text_[position_])) ++position_;
  }

  [[noreturn]] void fail(const char* expected) {
    skipSpaces();
    std::string found = "the end";
    if (position_ < text_.size()) {
      std::string_view word = wordHere();
      if (word.empty()) word = text_.substr(position_, 1);
      found = "'" + std::string(word) + "'";
    }
    throw std::invalid_argument("declaration \"" + std::string(text_) + "\": expected " + expected +
                                " at position " + std::to_string(position_ + 1) + ", found " + found);
  }

  std::string_view text_;
  size_t position_ = 0;
};

// Levenshtein's distance, one row at a time.
size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t replaced = diagonal + (lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
    }
  }
  return row[b.size()];
}

}  // namespace

bool equalNames(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char left, char right) { return lower(left) == lower(right); });
}

std::string typeName(Type type) {
  for (const NamedType& known : kTypes) {
    if (known.type == type) return known.name;
  }
  return "nothing";
}

size_t Declaration::required() const {
  const auto first =
      std::find_if(parameters.begin(), parameters.end(), [](const Parameter& p) { return p.hasDefault; });
  return static_cast<size_t>(first - parameters.begin());
}

Declaration parseDeclaration(std::string_view text) { return Parser(text).declaration(); }

size_t nameDistance(std::string_view typed, std::string_view name) {
  constexpr size_t kPart = 4, kSuffix = 3;
  const auto sameLetter = [](char a, char b) { return lower(a) == lower(b); };
  const auto part = std::search(name.begin(), name.end(), typed.begin(), typed.end(), sameLetter);
  const bool isPart = typed.size() >= kPart && part != name.end();
  const bool hasSuffix = name.size() > kSuffix && name.back() != lower(name.back());
  const std::string_view base = name.substr(0, name.size() - (hasSuffix ? kSuffix : 0));
  return isPart ? 1 : std::min(editDistance(typed, name), editDistance(typed, base));
}

std::vector<std::string> nearestNames(const std::string& typed, const std::vector<std::string>& names) {
  constexpr size_t kMost = 3;
  std::set<std::string> told;
  std::vector<std::pair<size_t, std::string>> near;
  for (const std::string& name : names) {
    const size_t distance = nameDistance(typed, name);
    const bool isNear = distance < typed.size() && distance <= std::max<size_t>(2, typed.size() / 3);
    if (isNear && told.insert(name).second) near.emplace_back(distance, name);
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> nearest;
  for (size_t i = 0; i < std::min(kMost, near.size()); ++i) nearest.push_back(near[i].second);
  return nearest;
}

}  // namespace host
