#include "bench/report.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "bench/machine.h"
#include "bench/names.h"

namespace bench {
namespace {

std::string fixed(double value, int decimals) {
  std::ostringstream text;
  text.setf(std::ios::fixed);
  text.precision(decimals);
  text << value;
  return text.str();
}

// Rounds to the digits that matter in a comparison.
std::string shown(double value) {
  return value == 0 ? "0" : fixed(value, value < 0.1 ? 4 : value < 10 ? 2 : value < 100 ? 1 : 0);
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, '/');) parts.push_back(part);
  return parts;
}

// A table with a row for each second part of the names and a column for each listed measurement.
class Table {
 public:
  explicit Table(std::vector<std::string> titles) : titles_(std::move(titles)) {}

  void set(const std::string& row, size_t column, const std::string& cell) {
    auto found = std::find_if(rows_.begin(), rows_.end(), [&](const auto& r) { return r[0] == row; });
    if (found == rows_.end()) {
      rows_.emplace_back(titles_.size());
      found = rows_.end() - 1;
      (*found)[0] = row;
    }
    (*found)[column] = cell;
  }
  bool isEmpty() const { return rows_.empty(); }
  // As Markdown, without columns that have no cells.
  void print() const {
    std::vector<std::string> rule(titles_.size(), "--:");
    rule[0] = "---";
    printRow(titles_);
    printRow(rule);
    for (const auto& row : rows_) printRow(row);
    std::cout << '\n';
  }

 private:
  void printRow(const std::vector<std::string>& cells) const {
    std::cout << '|';
    for (size_t i = 0; i < cells.size(); ++i) {
      if (std::any_of(rows_.begin(), rows_.end(), [i](const auto& row) { return !row[i].empty(); }))
        std::cout << ' ' << cells[i] << " |";
    }
    std::cout << '\n';
  }
  std::vector<std::string> titles_;
  std::vector<std::vector<std::string>> rows_;
};

// A column: its title, and the measurements and value that fill it.
struct Column {
  const char* title;
  const char* group;
  const char* where;
  const char* value;
};
constexpr Column kOperationColumns[] = {
    {"MP/s", kOperations, "words/large", kMegapixels},
    {"limit", kOperations, "words/large", kLimit},
    {"copies", kOperations, "words/large", kCopies},
    {"AVX2 only", kOperations, "words/large/avx2", kCopies},
    {"SSE2 only", kOperations, "words/large/sse2", kCopies},
    {"console", kOperations, "rows/large", kCopies},
    {"1000 × 1000", kOperations, "words/middle", kCopies},
    {"RGB24 limit", kOperations, "rgb24/large", kLimit},
    {"RGB24", kOperations, "rgb24/large", kCopies},
    {"extra KiB", kOperations, "words/large", kPeak},
    {"16 × 16: ns", kFixed, "words/tiny", kNanoseconds},
};

// The place of a measurement, for example "words/large/sse2", from the parts of its name. Some operations
// have their own large sizes.
std::string placeOf(const std::vector<std::string>& parts) {
  std::string place = parts[2] + "/" +
                      (parts[3] == "1000x1000" ? "middle"
                       : parts[3] == "16x16"   ? "tiny"
                                               : "large");
  for (size_t i = 4; i < parts.size(); ++i) place += "/" + parts[i];
  return place;
}

Table operationTable(const std::vector<Measured>& all) {
  std::vector<std::string> titles{"operation"};
  for (const Column& column : kOperationColumns) titles.push_back(column.title);
  Table table(titles);
  for (const Measured& one : all) {
    const auto parts = split(one.name);
    for (size_t i = 0; i < std::size(kOperationColumns); ++i) {
      const Column& column = kOperationColumns[i];
      if (parts[0] != column.group || placeOf(parts) != column.where) continue;
      const auto value = one.values.find(column.value);
      if (value != one.values.end()) table.set(parts[1], i + 1, shown(value->second));
    }
  }
  return table;
}

Table growthTable(const std::vector<Measured>& all) {
  std::vector<std::string> sizes;
  const auto sizeOf = [](const Measured& one) { return split(one.name).back(); };
  for (const Measured& one : all) {
    if (one.name.rfind(kGrowth, 0) == 0 &&
        std::find(sizes.begin(), sizes.end(), sizeOf(one)) == sizes.end()) {
      sizes.push_back(sizeOf(one));
    }
  }
  std::vector<std::string> titles{"nanoseconds a pixel"};
  titles.insert(titles.end(), sizes.begin(), sizes.end());
  Table table(titles);
  for (const Measured& one : all) {
    if (one.name.rfind(kGrowth, 0) != 0) continue;
    const auto column = std::find(sizes.begin(), sizes.end(), sizeOf(one)) - sizes.begin() + 1;
    table.set(split(one.name)[1], static_cast<size_t>(column), shown(one.values.at(kNanosecondsAPixel)));
  }
  return table;
}

}  // namespace

bool Report::ReportContext(const Context&) {
  std::cout << "Measured on " << machineName() << ", compiled with " << compilerName() << ", on " << today()
            << ".\n\n"
            << std::flush;
  return true;
}

void Report::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    // The name as registered: the library appends how often it was run.
    Measured one{run.run_name.function_name, {}};
    if (run.error_occurred) {
      std::cerr << one.name << ": " << run.error_message << std::endl;
      continue;
    }
    for (const auto& [name, counter] : run.counters) one.values[name] = counter.value;
    if (style_ == Style::lines) {
      std::printf("%-64s", one.name.c_str());
      for (const auto& [name, value] : one.values) std::printf("  %s %s", name.c_str(), shown(value).c_str());
      std::printf("\n");
      std::fflush(stdout);
    } else {
      std::cerr << '.' << std::flush;
    }
    measured_.push_back(std::move(one));
  }
}

void Report::Finalize() {
  const Table operations = operationTable(measured_), growth = growthTable(measured_);
  (style_ == Style::lines ? std::cout : std::cerr) << '\n';
  if (!operations.isEmpty()) operations.print();
  if (!growth.isEmpty()) growth.print();
  const auto disturbed = std::count_if(measured_.begin(), measured_.end(),
                                       [](const Measured& one) { return one.values.count(kBusy) > 0; });
  if (disturbed > 0)
    std::cout << "During " << disturbed << " of " << measured_.size()
              << " measurements other processors were busy.\n";
}

}  // namespace bench
