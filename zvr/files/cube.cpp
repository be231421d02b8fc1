#include "zvr/files/cube.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <new>

#include "zvr/files/files.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

constexpr double kLargestValue = 65536;  // of entries and inputs, beyond what any look needs
constexpr const char* kSizes = "LUT_1D_SIZE or LUT_3D_SIZE";

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

bool isOfKeywords(char c) {
  return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
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
    if (count() == 0) fail(std::string("the file ends without ") + kSizes);
    if (taken_ < count()) {
      fail("the file ends after " + std::to_string(taken_) + " of " + std::to_string(count()) + " entries");
    }
    return std::move(cube_);
  }

 private:
  [[noreturn]] void fail(const std::string& problem) const {
    throw Failure("line " + std::to_string(number_) + ": " + problem);
  }

  size_t count() const { return curvesCount() + spaceCount(); }
  size_t curvesCount() const { return static_cast<size_t>(cube_.curves.size); }
  size_t spaceCount() const {
    const auto size = static_cast<size_t>(cube_.space.size);
    return size * size * size;
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
    if (taken_ > 0) fail("expected an entry of three numbers, found " + quoted(word));
    takeKeyword(word);
  }

  void takeKeyword(std::string_view word) {
    if (word == "TITLE") return;
    if (word == "LUT_1D_SIZE") return takeSize(word, cube_.curves, kLargestCurves);
    if (word == "LUT_3D_SIZE") return takeSize(word, cube_.space, kLargestCube);
    if (word == "LUT_1D_INPUT_RANGE") return takeRange(word, cube_.curves);
    if (word == "LUT_3D_INPUT_RANGE") return takeRange(word, cube_.space);
    if (word == "DOMAIN_MIN") return takeDomain(word, low_);
    if (word == "DOMAIN_MAX") return takeDomain(word, high_);
    if (!std::all_of(word.begin(), word.end(), isOfKeywords)) {
      fail("expected a keyword or an entry, found " + quoted(word));
    }
    cube_.ignored.try_emplace(quoted(word), number_);
  }

  void takeSize(std::string_view keyword, Cube::Table& table, int largest) {
    const std::string name(keyword);
    if (table.size != 0) fail(name + " is given a second time");
    const std::string_view word = nextWord(line_);
    int size = 0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, size);
    if (error != std::errc{} || stop != end || size < kSmallestTable || size > largest) {
      fail(name + ": " + quoted(word) + " is not a whole number from " + std::to_string(kSmallestTable) +
           " to " + std::to_string(largest));
    }
    expectEnd();
    table.size = size;
  }

  // The inputs of the file's first table.
  void takeDomain(std::string_view keyword, Cube::Color& ends) {
    ends = takeNumbers(keyword);
    domainLine_ = number_;
  }

  // A domain in the words of some editing programs: one pair for all channels.
  void takeRange(std::string_view keyword, Cube::Table& table) {
    Cube::Color low, high;
    low.fill(takeNumber(keyword));
    high.fill(takeNumber(keyword));
    expectEnd();
    setDomain(table, low, high);
  }

  void takeEntry() {
    if (count() == 0) fail(std::string("an entry comes before ") + kSizes);
    if (taken_ == 0) begin();
    if (taken_ == count()) fail("more than " + std::to_string(count()) + " entries");
    (taken_ < curvesCount() ? cube_.curves : cube_.space).entries.push_back(takeNumbers("an entry"));
    ++taken_;
  }

  void begin() {
    if (domainLine_ != 0) {
      std::swap(number_, domainLine_);  // for the message
      setDomain(cube_.curves.size != 0 ? cube_.curves : cube_.space, low_, high_);
      std::swap(number_, domainLine_);
    }
    constexpr size_t kShortestLine = 6;  // a file that promises more than it holds is not given room for it
    cube_.space.entries.reserve(std::min(spaceCount(), text_.size() / kShortestLine + 1));
  }

  void setDomain(Cube::Table& table, const Cube::Color& low, const Cube::Color& high) {
    for (size_t i = 0; i < 3; ++i) {
      if (low[i] >= high[i]) {
        fail("the domain's lower end is not below its upper end in each of red, green and blue");
      }
    }
    table.low = low;
    table.high = high;
  }

  Cube::Color takeNumbers(std::string_view of) {
    Cube::Color numbers{};
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
  size_t number_ = 0, taken_ = 0, domainLine_ = 0;
  Cube::Color low_{0, 0, 0}, high_{1, 1, 1};
  Cube cube_;
};

// Where a value lies on an axis: between an entry, not the last, and the next.
struct Place {
  size_t entry;
  double fraction;
};

Place placeOn(const Cube::Table& table, size_t axis, double value) {
  const double last = table.size - 1, low = table.low[axis], span = table.high[axis] - low;
  const double position = std::clamp((value - low) / span * last, 0.0, last);
  const double entry = std::min(std::floor(position), last - 1);
  return {static_cast<size_t>(entry), position - entry};
}

Cube::Color throughCurves(const Cube::Table& curves, const Cube::Color& input) {
  Cube::Color color{};
  for (size_t i = 0; i < 3; ++i) {
    const Place place = placeOn(curves, i, input[i]);
    color[i] = (1 - place.fraction) * curves.entries[place.entry][i] +
               place.fraction * curves.entries[place.entry + 1][i];
  }
  return color;
}

Cube::Color throughSpace(const Cube::Table& space, const Cube::Color& input) {
  const auto side = static_cast<size_t>(space.size);
  const std::array<size_t, 3> strides{1, side, side * side};
  struct Axis {
    double fraction;
    size_t stride;
  };
  std::array<Axis, 3> axes{};
  size_t entry = 0;
  for (size_t i = 0; i < 3; ++i) {
    const Place place = placeOn(space, i, input[i]);
    axes[i] = {place.fraction, strides[i]};
    entry += strides[i] * place.entry;
  }
  std::sort(axes.begin(), axes.end(), [](const Axis& a, const Axis& b) { return a.fraction > b.fraction; });

  Cube::Color color{};
  double before = 1;
  const auto add = [&](double weight) {
    for (size_t x = 0; x < 3; ++x) color[x] += weight * space.entries[entry][x];
  };
  for (const Axis& axis : axes) {
    add(before - axis.fraction);
    before = axis.fraction;
    entry += axis.stride;
  }
  add(before);
  return color;
}

}  // namespace

Cube::Color Cube::at(const Color& input) const {
  const Color color = curves.size != 0 ? throughCurves(curves, input) : input;
  return space.size != 0 ? throughSpace(space, color) : color;
}

Cube parseCube(std::string_view text) { return Reader(text).read(); }

Cube loadCube(const std::string& path) {
  const std::vector<uint8_t> file = readFile(path);
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  try {
    Cube cube = parseCube(text);
    for (const auto& [keyword, line] : cube.ignored) {
      terminal::note(path + ": line " + std::to_string(line) + ": the unknown keyword " + keyword +
                     " is ignored");
    }
    return cube;
  } catch (const Failure& failure) {
    throw Failure(path + ": " + failure.what());
  } catch (const std::bad_alloc&) {
    throw Failure(path + ": not enough memory for the table");
  }
}

}  // namespace zvr
