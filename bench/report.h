// Showing what was measured: a line each, tables at the end.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

// What was measured by name ("operation/InvertZVR/words/3840x2160"), in the order of measuring.
struct Measured {
  std::string name;
  std::map<std::string, double> values;
};

// Lines on the standard output, or (`quiet`) only the tables; errors on the standard error stream.
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

// "AMD EPYC", "GCC 12.2.0", "2026-11-22": where, with what and when this was measured.
std::string machineName();
std::string compilerName();
std::string today();

}  // namespace bench
