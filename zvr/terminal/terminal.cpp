#include "zvr/terminal/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>

#include "host/declarations.h"

namespace zvr::terminal {
namespace {

bool isColorOn = false, isErrorColorOn = false, isBarShown = false, isQuiet = false;

constexpr const char* kPlain = "\x1b[0m";
// By Style.
constexpr const char* kCodes[] = {"", "\x1b[1;4m", "\x1b[1m", "\x1b[36m", "\x1b[32m", "\x1b[2m", "\x1b[31m"};

std::string paint(bool isOn, Style style, const std::string& text) {
  return isOn && style != Style::plain && !text.empty() ? kCodes[static_cast<size_t>(style)] + text + kPlain
                                                        : text;
}

void clearBar() {
  if (isBarShown) std::fputs("\r\x1b[K", stderr);
  isBarShown = false;
}

void printTo(std::FILE* stream, const std::string& line) {
  clearBar();
  std::fwrite(line.data(), 1, line.size(), stream);
  std::fputc('\n', stream);
}

// Bytes of the UTF-8 character that begins at a place; 0 for a control character and for what is no UTF-8.
size_t printableLength(const std::string& text, size_t at) {
  const auto byte = [&](size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const unsigned lead = byte(at);
  if (lead < 0x80) return lead < 0x20 || lead == 0x7F ? 0 : 1;
  const size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  return lead == 0xC2 && byte(at + 1) < 0xA0 ? 0 : length;  // U+0080 to U+009F
}

size_t columnsOf(int file) {
  constexpr size_t kUsual = 80, kLeast = 40, kMost = 1000;
  const char* told = std::getenv("COLUMNS");
  size_t columns = told ? std::strtoul(told, nullptr, 10) : 0;
  winsize size{};
  if (columns > kMost) columns = 0;
  if (columns == 0 && ioctl(file, TIOCGWINSZ, &size) == 0) columns = size.ws_col;
  return std::max(columns == 0 ? kUsual : columns, kLeast);
}

// Messages in a file stay whole, so that one can search for them.
void printError(const std::string& line, const std::string& indent) {
  const size_t width = isatty(STDERR_FILENO) ? columnsOf(STDERR_FILENO) : std::string::npos;
  for (const std::string& part : filled(line, width, indent)) std::fprintf(stderr, "%s\n", part.c_str());
}

std::string duration(double seconds) {
  const auto whole = static_cast<long>(seconds + 0.5);
  if (whole < 60) return std::to_string(whole) + " s";
  return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

}  // namespace

void setColor(const std::string& when) {
  const char* refused = std::getenv("NO_COLOR");
  const bool isWanted = when == "auto" && !(refused && *refused);
  isColorOn = when == "always" || (isWanted && isatty(STDOUT_FILENO) != 0);
  isErrorColorOn = when == "always" || (isWanted && isatty(STDERR_FILENO) != 0);
}

std::string styled(Style style, const std::string& text) { return paint(isColorOn, style, text); }

std::string escaped(const std::string& text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string shown;
  for (size_t i = 0; i < text.size();) {
    const size_t length = printableLength(text, i);
    if (length == 0) {
      const auto byte = static_cast<unsigned char>(text[i++]);
      shown += std::string("\\x") + kDigits[byte >> 4] + kDigits[byte & 15];
    }
    shown += text.substr(i, length);
    i += length;
  }
  return shown;
}

std::string didYouMean(const std::string& typed, const std::vector<std::string>& names) {
  std::string text;
  const std::vector<std::string> near = host::nearestNames(typed, names);
  for (size_t i = 0; i < near.size(); ++i) {
    text += i == 0 ? "; did you mean " : i + 1 < near.size() ? ", " : " or ";
    text += near[i];
  }
  return text.empty() ? text : text + "?";
}

size_t width() { return columnsOf(STDOUT_FILENO); }

std::string withoutStyles(const std::string& text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\x1b') {
      i = std::min(text.find('m', i), text.size());
    } else {
      plain += text[i];
    }
  }
  return plain;
}

size_t widthOf(const std::string& text) {
  const std::string seen = withoutStyles(text);
  return static_cast<size_t>(
      std::count_if(seen.begin(), seen.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

std::vector<std::string> filled(const std::string& text, size_t width, const std::string& indent) {
  std::vector<std::string> lines;
  size_t used = 0;
  std::string style;  // that a line leaves to the next
  for (const std::string& word : split(text, ' ')) {
    const size_t needed = widthOf(word), code = word.rfind('\x1b');
    if (!lines.empty() && used + 1 + needed <= width) {
      lines.back() += ' ' + word;
      used += 1 + needed;
    } else {
      if (!style.empty()) lines.back() += kPlain;
      lines.push_back((lines.empty() ? "" : indent) + style + word);
      used = widthOf(lines.back());
    }
    if (code != std::string::npos) style = word.substr(code, word.find('m', code) + 1 - code);
    if (style == kPlain) style.clear();
  }
  for (std::string& line : lines) {
    line.erase(line.find_last_not_of(' ') + 1);
    std::replace(line.begin(), line.end(), kHardSpace, ' ');
  }
  return lines;
}

void setQuiet() { isQuiet = true; }

void print(const std::string& line) { printTo(stdout, line); }

void printLines(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) print(line);
}

void printAside(const std::string& line) { printTo(stderr, line); }

void printWritten(const std::string& path) {
  if (!isQuiet && path != "-") printAside("wrote " + escaped(path));
}

void complain(const std::string& problem, const std::vector<std::string>& further) {
  std::fflush(stdout);
  clearBar();
  printError(paint(isErrorColorOn, Style::error, "zvr:") + ' ' + escaped(problem), "     ");
  for (const std::string& line : further) printError(escaped(line), "    ");
}

void note(const std::string& text) {
  static std::set<std::string> told;
  if (!isQuiet && told.insert(text).second) complain("note: " + text);
}

Progress::Progress(size_t total) : total_(total) { draw(); }

Progress::~Progress() { clearBar(); }

void Progress::advance() {
  ++done_;
  draw();
}

void Progress::draw() const {
  if (isQuiet || total_ < 2 || !isatty(STDERR_FILENO)) return;
  std::fflush(stdout);
  constexpr size_t kWidth = 30;
  const size_t filled = kWidth * done_ / total_;
  const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
  std::fprintf(stderr, "\r\x1b[K[%s] %zu/%zu", bar.c_str(), done_, total_);
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
  if (done_ > 0 && elapsed.count() > 0) {
    const double rate = static_cast<double>(done_) / elapsed.count();
    const double left = static_cast<double>(total_ - done_) / rate;
    std::fprintf(stderr, "  %.1f/s  %s left", rate, duration(left).c_str());
  }
  std::fflush(stderr);
  isBarShown = true;
}

}  // namespace zvr::terminal
