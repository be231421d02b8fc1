#include "tests/values.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace {

const std::map<char, Rgb> kLetters = {{'k', 0x000000}, {'w', 0xFFFFFF}, {'.', 0x808080},
                                      {'r', 0xFF0000}, {'g', 0x00FF00}, {'b', 0x0000FF}};

[[noreturn]] void refuse(const std::string& word, const char* expected) {
  throw std::invalid_argument("'" + word + "' is not " + expected);
}

bool isHex(const std::string& word) {
  return !word.empty() && word.find_first_not_of("0123456789ABCDEF") == std::string::npos;
}

uint32_t hexOf(const std::string& word) {
  if (!isHex(word)) refuse(word, "hexadecimal in capitals");
  return static_cast<uint32_t>(std::stoul(word, nullptr, 16));
}

std::string hexOf(uint32_t value, int digits) {
  std::ostringstream text;
  text << std::hex << std::uppercase << std::setfill('0') << std::setw(digits) << value;
  return text.str();
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

std::vector<uint32_t> rowOf(const std::string& text) {
  std::vector<uint32_t> row;
  if (isHex(text) || text.find(',') != std::string::npos) {
    for (const std::string& word : split(text, ',')) row.push_back(hexOf(word));
    return row;
  }
  if (text.find_first_not_of("kw.rgb") != std::string::npos) refuse(text, "a row of pixels");
  for (const char letter : text) row.push_back(kLetters.at(letter));
  return row;
}

Pixels parsedPixels(const std::string& text) {
  if (text.size() == 6 && isHex(text)) return {1, 2, hexOf(text)};
  const size_t x = text.find('x'), colon = text.find(':');
  if (x != std::string::npos) {
    const int width = std::stoi(text), height = std::stoi(text.substr(x + 1));
    if (colon != std::string::npos) return {width, height, hexOf(text.substr(colon + 1))};
    return Random(static_cast<uint32_t>(width * 100 + height)).words(width, height);
  }
  Pixels pixels;
  for (const std::string& rowText : split(text, '/')) {
    const std::vector<uint32_t> row = rowOf(rowText);
    pixels.width = static_cast<int>(row.size());
    pixels.colors.insert(pixels.colors.end(), row.begin(), row.end());
    ++pixels.height;
  }
  if (pixels.colors.size() != static_cast<size_t>(pixels.width * pixels.height)) refuse(text, "a rectangle");
  return pixels;
}

Pixels enlarged(const Pixels& pixels, int times) {
  Pixels large{pixels.width * times, pixels.height * times, 0};
  for (int y = 0; y < large.height; ++y) {
    for (int x = 0; x < large.width; ++x) large.at(x, y) = pixels.at(x / times, y / times);
  }
  return large;
}

// PICTURE[*TIMES][+alpha][+mask]
Pixels parsedPicture(const std::string& word) {
  Pixels pixels = parsedPixels(word.substr(0, word.find_first_of("*+")));
  if (const size_t star = word.find('*'); star != std::string::npos)
    pixels = enlarged(pixels, std::stoi(word.substr(star + 1)));
  pixels.alpha = word.find("+alpha") != std::string::npos;
  if (word.find("+mask") != std::string::npos)
    pixels.mask = std::make_shared<Pixels>(Random(1).words(pixels.width, pixels.height));
  return pixels;
}

// xHEX, or COUNT+FIRST for bytes that count up
Bytes parsedBytes(const std::string& word) {
  Bytes bytes;
  if (word[0] == 'x') {
    for (size_t i = 1; i < word.size(); i += 2)
      bytes.push_back(static_cast<uint8_t>(hexOf(word.substr(i, 2))));
    return bytes;
  }
  const size_t plus = word.find('+');
  if (plus == std::string::npos) refuse(word, "bytes: xHEX or COUNT+FIRST");
  for (int i = 0; i < std::stoi(word); ++i)
    bytes.push_back(static_cast<uint8_t>(i + std::stoi(word.substr(plus + 1))));
  return bytes;
}

std::string writtenPixels(const Pixels& pixels) {
  constexpr size_t kMost = 12;
  std::string text = std::to_string(pixels.width) + "x" + std::to_string(pixels.height);
  if (pixels.alpha) text += "+alpha";
  for (size_t i = 0; i < std::min(pixels.colors.size(), kMost); ++i)
    text += (i == 0 ? ": " : i % static_cast<size_t>(pixels.width) ? "," : "/") + hexOf(pixels.colors[i], 6);
  if (pixels.mask) text += "+mask " + writtenPixels(*pixels.mask);
  return text;
}

template <typename Byte>
std::string writtenBytes(const Byte* bytes, size_t count) {
  constexpr size_t kMost = 64;
  std::string text = "x";
  for (size_t i = 0; i < std::min(count, kMost); ++i) text += hexOf(static_cast<uint8_t>(bytes[i]), 2);
  return count <= kMost ? text : text + "... (" + std::to_string(count) + " bytes)";
}

}  // namespace

bool operator==(const Pixels& a, const Pixels& b) {
  return a.width == b.width && a.height == b.height && a.alpha == b.alpha && a.colors == b.colors &&
         (a.mask && b.mask ? *a.mask == *b.mask : !a.mask && !b.mask);
}

bool areSame(const Value& a, const Value& b) {
  const auto *x = std::get_if<double>(&a), *y = std::get_if<double>(&b);
  return a == b || (x && y && std::isnan(*x) && std::isnan(*y));
}

void PrintTo(const Pixels& pixels, std::ostream* out) { *out << writtenPixels(pixels); }

std::string written(const Value& value) {
  if (const auto* number = std::get_if<int64_t>(&value)) return std::to_string(*number);
  if (const auto* number = std::get_if<double>(&value)) return std::to_string(*number);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  if (const auto* color = std::get_if<host::Color>(&value)) return "&c" + hexOf(color->rgb, 6);
  if (const auto* text = std::get_if<std::string>(&value)) return writtenBytes(text->data(), text->size());
  if (const auto* bytes = std::get_if<Bytes>(&value)) return writtenBytes(bytes->data(), bytes->size());
  if (const auto* pixels = std::get_if<Pixels>(&value)) return writtenPixels(*pixels);
  return "nil";
}

bool mayBeNil(host::Type type) {
  return type == host::Type::picture || type == host::Type::memoryBlock || type == host::Type::string;
}

Value parsed(const host::Parameter& parameter, const std::string& word) {
  if (mayBeNil(parameter.type) && word == "nil") return {};
  if (parameter.type == host::Type::picture) return parsedPicture(word);
  if (parameter.type == host::Type::memoryBlock) return parsedBytes(word);
  if (parameter.type == host::Type::string) {
    const Bytes bytes = parsedBytes(word);
    return std::string(bytes.begin(), bytes.end());
  }
  return scalarOf<Value>(host::parseValue(parameter, word));
}

std::string encoded(const Pixels& pixels) {
  std::string bytes = "PPIC";
  const auto append = [&](size_t value, int count) {
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
  };
  append(40 + pixels.colors.size() * 3, 4);
  append(static_cast<size_t>(pixels.width), 4);
  append(static_cast<size_t>(pixels.height), 4);
  append(32, 4);
  append(40, 4);
  bytes.resize(40);
  for (const Rgb color : pixels.colors) append(color, 3);
  return bytes;
}

Rgb Random::color() {
  const int kind = between(0, 5);
  if (kind == 0) return chance(50) ? 0 : 0xFFFFFF;
  if (kind == 1) return static_cast<Rgb>(between(0, 255)) * 0x10101;                           // gray
  if (kind == 2) return static_cast<Rgb>(between(0, 255)) * 0x10101 ^ (1u << between(0, 23));  // nearly gray
  if (kind == 3) return rgb(chance(50) * 255, chance(50) * 255, chance(50) * 255);  // a corner of the cube
  return word() & 0xFFFFFF;
}

Pixels Random::pixels(int width, int height) {
  Pixels result(width, height, Rgb{0});
  const int longestRun = chance(50) ? 1 : 40;
  // Few colours, one of them often: many near misses for searches.
  Rgb palette[4];
  for (Rgb& color : palette) color = this->color();
  const int colors = chance(30) ? between(0, 3) : -1, rarity = between(2, 200);
  Rgb current = 0;
  int left = 0;
  for (uint32_t& pixel : result.colors) {
    if (left-- <= 0) {
      left = colors < 0 ? between(0, longestRun - 1) : 0;
      current = colors < 0 ? color() : palette[between(1, rarity) > 1 ? 0 : between(0, colors)];
    }
    pixel = current;
  }
  return result;
}

Pixels Random::words(int width, int height) {
  Pixels result = pixels(width, height);
  for (uint32_t& pixel : result.colors) pixel |= word() << 24;
  return result;
}

int Random::side() {
  const int kind = between(0, 3);
  if (kind == 0) return 1;
  if (kind == 1) return between(1, 20);
  if (kind == 2) return between(60, 70);
  return chance(80) ? between(1, 200) : between(500, 530);
}

Bytes Random::bytes(int count) {
  Bytes bytes(static_cast<size_t>(count));
  const int kind = between(0, 4);
  const double pitch = between(1, 400) / 1000.0;
  constexpr uint8_t kExtremes[] = {0, 255, 128, 127};
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto noise = static_cast<uint8_t>(word());
    const auto tone = static_cast<uint8_t>(128 + 120 * std::sin(static_cast<double>(i) * pitch));
    const uint8_t kinds[] = {noise, tone, kExtremes[noise & 3], kExtremes[i / 100 & 3],
                             noise < 20 ? noise : uint8_t{128}};
    bytes[i] = kinds[kind];
  }
  return bytes;
}
