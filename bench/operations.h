// The measured operations: how each is called, and on which input.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/stage.h"

namespace bench {

// An operation ready for repeated calls.
struct Prepared {
  std::function<void()> call;   // practically only the registered function
  std::function<void()> after;  // not measured: releases the result; throws if it is wrong
  size_t items = 0;             // pixels or samples per call
  const void* bytes = nullptr;  // the input of the plain copy
  size_t byteCount = 0;
};

struct Operation {
  std::string name;  // the method's, plus a label for the variant
  std::function<Prepared(Stage& stage, const Size& size)> prepare;
  bool grows = false;  // represents its family in the table over sizes
  bool wordsOnly = false;
  Size only{0, 0};  // the only size to measure, if set
};

const std::vector<Operation>& operations();

}  // namespace bench
