// Words of a command line turned into values of the dialect. Nothing here depends on the locale.

#include <charconv>
#include <cmath>
#include <stdexcept>

#include "host/calls.h"
#include "host/named_colors.h"

namespace host {
namespace {

constexpr int64_t kSmallest = -0x80000000LL, kLargest = 0x7FFFFFFF, kLargestUnsigned = 0xFFFFFFFFLL;

bool startsWith(std::string_view word, std::string_view prefix) {
  return equalNames(word.substr(0, prefix.size()), prefix);
}

// The whole word as a number of a base, or nothing.
std::optional<int64_t> wholeNumber(std::string_view word, int base) {
  int64_t number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number, base);
  if (word.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

std::string_view withoutPlus(std::string_view word) {
  const bool signedTwice = word.size() > 1 && (word[1] == '-' || word[1] == '+');
  return !word.empty() && word[0] == '+' && !signedTwice ? word.substr(1) : word;
}

std::optional<int64_t> integer(std::string_view word, int64_t lowest, int64_t highest) {
  if (startsWith(word, "&h")) {
    // Hexadecimal numbers give the 32 bits: &hFFFFFFFF is -1 as an integer.
    const auto bits = word.size() > 2 && word[2] != '-' ? wholeNumber(word.substr(2), 16) : std::nullopt;
    if (!bits || *bits > kLargestUnsigned) return std::nullopt;
    return *bits > highest ? static_cast<int32_t>(*bits) : *bits;
  }
  const auto number = wholeNumber(withoutPlus(word), 10);
  if (!number || *number < lowest || *number > highest) return std::nullopt;
  return number;
}

std::optional<double> real(std::string_view word) {
  word = withoutPlus(word);
  double number = 0;
  const char* end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  if (word.empty() || error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

std::optional<bool> boolean(std::string_view word) {
  for (const char* yes : {"true", "yes", "1"}) {
    if (equalNames(word, yes)) return true;
  }
  for (const char* no : {"false", "no", "0"}) {
    if (equalNames(word, no)) return false;
  }
  return std::nullopt;
}

std::optional<Color> color(std::string_view word) {
  const size_t prefix = startsWith(word, "&c") ? 2 : startsWith(word, "#") ? 1 : 0;
  if (prefix == 0) {
    const auto named = namedColor(word);
    return named ? std::optional(Color{*named}) : std::nullopt;
  }
  std::string digits(word.substr(prefix));
  if (digits.size() == 3 && prefix == 1) {  // #rgb
    digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
  }
  if (digits.size() != 6 || digits[0] == '-') return std::nullopt;
  const auto rgb = wholeNumber(digits, 16);
  if (!rgb) return std::nullopt;
  return Color{static_cast<RBColor>(*rgb)};
}

template <typename T>
Value valueOr(const std::optional<T>& value, const Parameter& parameter, const std::string& word,
              const char* expected) {
  if (value) return *value;
  throw std::invalid_argument(parameter.name + ": '" + word + "' is not " + expected);
}

}  // namespace

Value parseValue(const Parameter& parameter, const std::string& word) {
  switch (parameter.type) {
    case Type::integer:
      return valueOr(integer(word, kSmallest, kLargest), parameter, word,
                     "an Integer (a whole number from -2147483648 to 2147483647, or &hFF)");
    case Type::uint32:
      return valueOr(integer(word, 0, kLargestUnsigned), parameter, word,
                     "a UInt32 (a whole number from 0 to 4294967295, or &hFF)");
    case Type::real:
      return valueOr(real(word), parameter, word, "a Double (a number such as 0.2, inf or nan)");
    case Type::boolean:
      return valueOr(boolean(word), parameter, word, "a Boolean (true or false)");
    case Type::color:
      return valueOr(
          color(word), parameter, word,
          "a Color ('&cRRGGBB', '#rrggbb', '#rgb' or a CSS name such as teal; quote & and # in a shell)");
    case Type::string:
      return newString(word);
    case Type::picture:
    case Type::memoryBlock:
    case Type::object:
    case Type::none:
      break;
  }
  if (equalNames(word, "nil")) return std::monostate{};
  throw std::invalid_argument(parameter.name + ": '" + word + "' is not nil, the only word for a " +
                              typeName(parameter.type));
}

}  // namespace host
