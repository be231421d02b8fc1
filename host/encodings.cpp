#include "host/encodings.h"

#include <algorithm>
#include <iterator>

#include "frame/host_interface.h"

namespace host {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Characters of the bytes from 0x80 on.
constexpr char16_t kMacRoman[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};
// Characters of the bytes 0x80 to 0x9F of code page 1252; its five unassigned bytes keep their values.
constexpr char16_t kWindows[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char32_t fromWindows(uint8_t byte) { return byte >= 0x80 && byte < 0xA0 ? kWindows[byte - 0x80] : byte; }
char32_t fromMacRoman(uint8_t byte) { return byte < 0x80 ? byte : kMacRoman[byte - 0x80]; }
char32_t fromAscii(uint8_t byte) { return byte < 0x80 ? byte : kReplacement; }

using FromByte = char32_t (*)(uint8_t);

std::u32string decodeBytes(const std::string& bytes, FromByte fromByte) {
  std::u32string text;
  for (const char byte : bytes) text += fromByte(static_cast<uint8_t>(byte));
  return text;
}

std::string encodeBytes(const std::u32string& text, FromByte fromByte) {
  std::string bytes;
  for (const char32_t character : text) {
    int byte = 0;
    while (byte < 256 && fromByte(static_cast<uint8_t>(byte)) != character) ++byte;
    bytes += byte < 256 && character != kReplacement ? static_cast<char>(byte) : '?';
  }
  return bytes;
}

// Bytes that follow a lead byte of UTF-8; -1 for a byte that leads nothing.
int utf8Followers(uint8_t lead) {
  if (lead < 0x80) return 0;
  if (lead >= 0xC2 && lead < 0xE0) return 1;
  if (lead >= 0xE0 && lead < 0xF0) return 2;
  return lead >= 0xF0 && lead < 0xF5 ? 3 : -1;
}

std::u32string decodeUtf8(const std::string& bytes) {
  constexpr char32_t kLeast[4] = {0, 0x80, 0x800, 0x10000};
  std::u32string text;
  for (size_t at = 0; at < bytes.size();) {
    const auto lead = static_cast<uint8_t>(bytes[at++]);
    const int followers = utf8Followers(lead);
    char32_t character = followers <= 0 ? lead : lead & (0x3Fu >> followers);
    int got = 0;
    while (got < followers && at < bytes.size() && (static_cast<uint8_t>(bytes[at]) & 0xC0) == 0x80) {
      character = character << 6 | (static_cast<uint8_t>(bytes[at++]) & 0x3Fu);
      ++got;
    }
    const bool whole = got == followers && character >= kLeast[got] && character < 0x110000 &&
                       (character < 0xD800 || character > 0xDFFF);
    text += whole ? character : kReplacement;
  }
  return text;
}

std::string encodeUtf8(const std::u32string& text) {
  std::string bytes;
  for (const char32_t character : text) {
    const int followers = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    const uint32_t lead = followers == 0 ? 0 : 0xFF00u >> (followers + 1) & 0xFFu;
    bytes += static_cast<char>(lead | character >> (6 * followers));
    for (int i = followers - 1; i >= 0; --i)
      bytes += static_cast<char>(0x80u | (character >> (6 * i) & 0x3Fu));
  }
  return bytes;
}

// Little-endian units of 2 or 4 bytes; bytes of an unfinished unit at the end are dropped.
std::u32string decodeUnits(const std::string& bytes, size_t width) {
  std::u32string units;
  for (size_t at = 0; at + width <= bytes.size(); at += width) {
    char32_t unit = 0;
    for (size_t i = 0; i < width; ++i) unit |= char32_t{static_cast<uint8_t>(bytes[at + i])} << (8 * i);
    units += unit;
  }
  return units;
}

std::string encodeUnits(const std::u32string& units, size_t width) {
  std::string bytes;
  for (const char32_t unit : units) {
    for (size_t i = 0; i < width; ++i) bytes += static_cast<char>(unit >> (8 * i) & 0xFFu);
  }
  return bytes;
}

std::u32string joinSurrogates(const std::u32string& units) {
  std::u32string text;
  for (size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    const bool pair = unit >> 10 == 0x36 && i + 1 < units.size() && units[i + 1] >> 10 == 0x37;
    text += pair                 ? 0x10000 + ((unit & 0x3FF) << 10) + (units[++i] & 0x3FF)
            : unit >> 11 == 0x1B ? kReplacement
                                 : unit;
  }
  return text;
}

std::u32string splitSurrogates(const std::u32string& text) {
  std::u32string units;
  for (const char32_t character : text) {
    if (character < 0x10000) {
      units += character;
    } else {
      units += 0xD800 + ((character - 0x10000) >> 10);
      units += 0xDC00 + (character & 0x3FF);
    }
  }
  return units;
}

std::optional<std::u32string> decode(const std::string& bytes, uint32_t encoding) {
  switch (encoding) {
    case kEncodingMacRoman:
      return decodeBytes(bytes, fromMacRoman);
    case kEncodingWindows:
      return decodeBytes(bytes, fromWindows);
    case kEncodingASCII:
      return decodeBytes(bytes, fromAscii);
    case kEncodingUTF8:
      return decodeUtf8(bytes);
    case kEncodingUTF16:
      return joinSurrogates(decodeUnits(bytes, 2));
    case kEncodingUTF32:
      return decodeUnits(bytes, 4);
    default:
      return std::nullopt;
  }
}

std::optional<std::string> encode(const std::u32string& text, uint32_t encoding) {
  switch (encoding) {
    case kEncodingMacRoman:
      return encodeBytes(text, fromMacRoman);
    case kEncodingWindows:
      return encodeBytes(text, fromWindows);
    case kEncodingASCII:
      return encodeBytes(text, fromAscii);
    case kEncodingUTF8:
      return encodeUtf8(text);
    case kEncodingUTF16:
      return encodeUnits(splitSurrogates(text), 2);
    case kEncodingUTF32:
      return encodeUnits(text, 4);
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> convertText(const std::string& bytes, uint32_t from, uint32_t to) {
  if (from == to || from == kEncodingNone || to == kEncodingNone) return bytes;
  const auto text = decode(bytes, from);
  return text ? encode(*text, to) : std::nullopt;
}

}  // namespace host
