#include "host/zvr/cube.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <new>
#include <optional>

#include "host/zvr/files.h"
#include "host/zvr/program.h"

namespace zvr {
namespace {

constexpr double kLargestValue = 65536;  // of entries and inputs, beyond what any look needs

// A word of the file, made fit for a message.
std::string quoted(std::string_view word) {
  constexpr size_t kLongest = 24;
  std::string text(word.substr(0, kLongest));
  for (char& c : text) {
    if (c < ' ' || c > '~') c = '?';
  }
  return "'" + text + (word.size() > kLongest ? "...'" : "'");
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view nextWord(std::string_view& line) {
  while (!line.empty() && isBlank(line.front())) line.remove_prefix(1);
  const auto end = std::find_if(line.begin(), line.end(), isBlank);
  const std::string_view word = line.substr(0, static_cast<size_t>(end - line.begin()));
  line.remove_prefix(word.size());
  return word;
}

bool looksLikeNumber(std::string_view word) {
  constexpr std::string_view kStarts = "+-.0123456789";
  return kStarts.find(word.front()) != std::string_view::npos;
}

// The lines of one file, read one after another.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text_.substr(0, kByteOrderMark.size()) == kByteOrderMark) text_.remove_prefix(kByteOrderMark.size());
  }

  Cube read() {
    while (!text_.empty()) takeLine();
    if (cube_.size == 0) fail("the file ends without LUT_3D_SIZE");
    if (cube_.entries.size() < count()) {
      fail("the file ends after " + std::to_string(cube_.entries.size()) + " of " + describeTable());
    }
    return std::move(cube_);
  }

 private:
  [[noreturn]] void fail(const std::string& problem) const {
    throw Failure("line " + std::to_string(number_) + ": " + problem);
  }

  size_t count() const {
    const auto size = static_cast<size_t>(cube_.size);
    return size * size * size;
  }
  std::string describeTable() const {
    const std::string size = std::to_string(cube_.size);
    return "the " + std::to_string(count()) + " entries of a " + size + " x " + size + " x " + size +
           " table";
  }

  void takeLine() {
    ++number_;
    const size_t length = std::min(text_.find('\n'), text_.size());
    line_ = text_.substr(0, length);
    text_.remove_prefix(std::min(length + 1, text_.size()));
    std::string_view rest = line_;
    const std::string_view word = nextWord(rest);
    if (word.empty() || word.front() == '#') return;
    if (looksLikeNumber(word)) return takeEntry();
    line_ = rest;
    if (!cube_.entries.empty()) fail("expected an entry of three numbers, found " + quoted(word));
    takeKeyword(word);
  }

  void takeKeyword(std::string_view word) {
    if (word == "TITLE") return;
    if (word == "LUT_3D_SIZE") return takeSize();
    if (word == "LUT_1D_SIZE")
      fail("LUT_1D_SIZE: a one-dimensional table; three dimensions (LUT_3D_SIZE) are needed");
    if (word == "DOMAIN_MIN") return takeDomain(word, cube_.low);
    if (word == "DOMAIN_MAX") return takeDomain(word, cube_.high);
    if (word == "LUT_3D_INPUT_RANGE") return takeRange(word);
    fail("unknown keyword " + quoted(word) +
         "; known are TITLE, LUT_3D_SIZE, DOMAIN_MIN, DOMAIN_MAX, LUT_3D_INPUT_RANGE and # for comments");
  }

  void takeSize() {
    if (cube_.size != 0) fail("LUT_3D_SIZE is given a second time");
    const std::string_view word = nextWord(line_);
    int size = 0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, size);
    if (error != std::errc{} || stop != end || size < kSmallestCube || size > kLargestCube) {
      fail("LUT_3D_SIZE: " + quoted(word) + " is not a whole number from " + std::to_string(kSmallestCube) +
           " to " + std::to_string(kLargestCube));
    }
    expectEnd();
    cube_.size = size;
    constexpr size_t kShortestLine = 6;  // a file that promises more than it holds is not given room for it
    cube_.entries.reserve(std::min(count(), text_.size() / kShortestLine + 1));
  }

  void takeDomain(std::string_view keyword, std::array<double, 3>& ends) {
    ends = takeNumbers(keyword);
    (keyword == "DOMAIN_MIN" ? lowLine_ : highLine_) = number_;
  }

  // The domain in the words of some editing programs: one pair for all channels.
  void takeRange(std::string_view keyword) {
    cube_.low.fill(takeNumber(keyword));
    cube_.high.fill(takeNumber(keyword));
    expectEnd();
    highLine_ = number_;
  }

  void takeEntry() {
    if (cube_.size == 0) fail("an entry comes before LUT_3D_SIZE");
    if (cube_.entries.empty()) checkDomain();
    if (cube_.entries.size() == count()) fail("more than " + describeTable());
    cube_.entries.push_back(takeNumbers("an entry"));
  }

  void checkDomain() {
    for (size_t i = 0; i < 3; ++i) {
      if (cube_.low[i] < cube_.high[i]) continue;
      number_ = std::max({lowLine_, highLine_, size_t{1}});
      fail("the domain's lower end is not below its upper end in each of red, green and blue");
    }
  }

  std::array<double, 3> takeNumbers(std::string_view of) {
    std::array<double, 3> numbers{};
    for (double& number : numbers) number = takeNumber(of);
    expectEnd();
    return numbers;
  }

  double takeNumber(std::string_view of) {
    std::string_view word = nextWord(line_);
    if (word.empty()) fail(std::string(of) + " has too few numbers");
    const std::string_view given = word;
    const bool hasPlus = word.size() > 1 && word[0] == '+' && word[1] != '-';
    if (hasPlus) word.remove_prefix(1);
    double number = 0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error == std::errc::invalid_argument || stop != end) fail(quoted(given) + " is not a number");
    if (error == std::errc::result_out_of_range) {
      const bool isTiny = word.find("e-") != word.npos || word.find("E-") != word.npos;
      number = isTiny ? 0 : kLargestValue * 2;
    }
    // Written so that NaN fails too.
    if (!(std::fabs(number) <= kLargestValue)) {
      fail(quoted(given) + " is not the value of a colour (at most " +
           std::to_string(static_cast<int>(kLargestValue)) + " either way)");
    }
    return number;
  }

  void expectEnd() {
    const std::string_view word = nextWord(line_);
    if (!word.empty()) fail("more than is expected here: " + quoted(word));
  }

  std::string_view text_, line_;
  size_t number_ = 0, lowLine_ = 0, highLine_ = 0;
  Cube cube_;
};

}  // namespace

std::array<double, 3> Cube::at(const std::array<double, 3>& input) const {
  const auto side = static_cast<size_t>(size);
  const std::array<size_t, 3> strides{1, side, side * side};
  struct Axis {
    double fraction;
    size_t stride;
  };
  std::array<Axis, 3> axes{};
  size_t place = 0;
  for (size_t i = 0; i < 3; ++i) {
    const double last = size - 1;
    const double position = std::clamp((input[i] - low[i]) / (high[i] - low[i]) * last, 0.0, last);
    const double cell = std::min(std::floor(position), last - 1);
    axes[i] = {position - cell, strides[i]};
    place += strides[i] * static_cast<size_t>(cell);
  }
  std::sort(axes.begin(), axes.end(), [](const Axis& a, const Axis& b) { return a.fraction > b.fraction; });

  std::array<double, 3> color{};
  double before = 1;
  const auto add = [&](double weight) {
    for (size_t x = 0; x < 3; ++x) color[x] += weight * entries[place][x];
  };
  for (const Axis& axis : axes) {
    add(before - axis.fraction);
    before = axis.fraction;
    place += axis.stride;
  }
  add(before);
  return color;
}

Cube parseCube(std::string_view text) { return Reader(text).read(); }

Cube loadCube(const std::string& path) {
  const std::vector<uint8_t> file = readFile(path);
  try {
    return parseCube({reinterpret_cast<const char*>(file.data()), file.size()});
  } catch (const Failure& failure) {
    throw Failure(path + ": " + failure.what());
  } catch (const std::bad_alloc&) {
    throw Failure(path + ": not enough memory for the table");
  }
}

}  // namespace zvr
