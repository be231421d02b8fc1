#include "host/zvr/terminal.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace zvr::terminal {
namespace {

bool isColorOn = false, isErrorColorOn = false, isBarShown = false;

const char* codeOf(Style style) {
  switch (style) {
    case Style::plain:
      return "";
    case Style::heading:
      return "\x1b[1;4m";
    case Style::name:
      return "\x1b[1m";
    case Style::type:
      return "\x1b[36m";
    case Style::good:
      return "\x1b[32m";
    case Style::faint:
      return "\x1b[2m";
    case Style::error:
      return "\x1b[31m";
  }
  return "";
}

std::string paint(bool isOn, Style style, const std::string& text) {
  return isOn && style != Style::plain && !text.empty() ? codeOf(style) + text + "\x1b[0m" : text;
}

void clearBar() {
  if (isBarShown) std::fputs("\r\x1b[K", stderr);
  isBarShown = false;
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

void print(const std::string& line) {
  clearBar();
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

void complain(const std::string& problem) {
  std::fflush(stdout);
  clearBar();
  std::fprintf(stderr, "%s %s\n", paint(isErrorColorOn, Style::error, "zvr:").c_str(), problem.c_str());
}

Progress::Progress(size_t total) : total_(total) { draw(); }

Progress::~Progress() { clearBar(); }

void Progress::advance() {
  ++done_;
  draw();
}

void Progress::draw() const {
  if (total_ < 2 || !isatty(STDERR_FILENO)) return;
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
