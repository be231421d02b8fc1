// Output for people: colour where wanted, progress on terminals.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace zvr::terminal {

enum class Style { plain, heading, name, type, good, faint, error };

// "always", "never", or "auto": colour on a terminal unless NO_COLOR is set.
void setColor(const std::string& when);
// The text with colour codes for standard output, where it is coloured.
std::string styled(Style style, const std::string& text);

// Text that has file names or words of others in it: control characters, and bytes that are no UTF-8, become
// \x1B and the like, so that they do nothing to a terminal.
std::string escaped(const std::string& text);

// "; did you mean photo.png or phone.png?": the names that are near a mistyped one; empty when none is.
std::string didYouMean(const std::string& typed, const std::vector<std::string>& names);

// Columns of standard output: COLUMNS where that is a number, else the terminal's, else 80; at least 40.
size_t width();
// Text without its colour codes, and the characters of UTF-8 text that are seen of it.
std::string withoutStyles(const std::string& text);
size_t widthOf(const std::string& text);
std::vector<std::string> split(const std::string& text, char separator);
// Styled text in lines of at most `width` characters, those after the first with the indent; broken at
// spaces, and where it has kHardSpace, a space that isn't.
constexpr char kHardSpace = '\x1F';
std::vector<std::string> filled(const std::string& text, size_t width, const std::string& indent = "");

// From now on notes, what was written and progress are left unsaid.
void setQuiet();
// One line to standard output, as it is. A progress bar makes room.
void print(const std::string& line);
void printLines(const std::vector<std::string>& lines);
// The same to standard error.
void printAside(const std::string& line);
// "wrote PATH" to standard error; nothing for -, standard output.
void printWritten(const std::string& path);
// A line to standard error with "zvr: " before it, and further lines; escaped, and folded on a terminal.
void complain(const std::string& problem, const std::vector<std::string>& further = {});

// The same for something to know that stops nothing, after "note: "; each text once.
void note(const std::string& text);

// A bar on standard error with count, rate and time left; silent when that is no terminal or when there
// is no more than one thing to do.
class Progress {
 public:
  explicit Progress(size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  // One more thing is done.
  void advance();

 private:
  void draw() const;

  size_t total_, done_ = 0;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace zvr::terminal
