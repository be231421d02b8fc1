// The operations that are measured: how each is called, on what.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/stage.h"

namespace bench {

// An operation ready to be called again and again.
struct Prepared {
  std::function<void()> call;  // the registered function, and nothing else to speak of
  std::function<void()>
      after;         // not measured: gives back what the call made; throws if it was not what it should be
  size_t items = 0;  // pixels or samples that a call works through
  const void* bytes = nullptr;  // what a plain copy copies
  size_t byteCount = 0;
};

struct Operation {
  std::string name;  // the method's, and what is special about the call
  std::function<Prepared(Stage& stage, const Size& size)> prepare;
  bool grows = false;  // stands for its family in the table over sizes
  bool wordsOnly = false;
  Size only{0, 0};  // the one size that it is measured at, if there is one
};

const std::vector<Operation>& operations();

}  // namespace bench
