// Prints the measurements: a line each, tables at the end.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

// A measurement by name, for example "operation/InvertZVR/words/3840x2160".
struct Measured {
  std::string name;
  std::map<std::string, double> values;
};

// Prints lines to stdout, or (`quiet`) only the tables; errors to stderr.
class Report : public benchmark::BenchmarkReporter {
 public:
  enum class Style { lines, tablesOnly };
  explicit Report(Style style) : style_(style) {}
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  Style style_;
  std::vector<Measured> measured_;
};

}  // namespace bench
