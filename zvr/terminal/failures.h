// How zvr fails: exceptions, and the exit statuses that they end in.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zvr {

// Exit statuses.
constexpr int kDone = 0, kFailed = 1, kUsage = 2;

// The command line makes no sense: exit status 2.
struct UsageError : std::runtime_error {
  explicit UsageError(const std::string& problem, std::vector<std::string> more = {})
      : std::runtime_error(problem), further(std::move(more)) {}
  std::vector<std::string> further;  // lines that follow
};
// The request failed: exit status 1.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace zvr
