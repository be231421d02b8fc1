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
  size_t bytes = 0;             // the size of a plain copy
};

struct Operation {
  std::string name;  // the method's, plus a label for the variant
  std::function<Prepared(Stage& stage, const Size& size)> prepare;
  // The least time that memory allows, in plain copies of words: half of one for reading as many bytes, and
  // for writing them. 0 if arithmetic decides.
  double limit = 0, rgb24Limit = 0;
  bool grows = false;  // represents its family in the table over sizes
  bool wordsOnly = false;
  Size only{0, 0};  // the only size to measure, if set
};

const std::vector<Operation>& operations();

}  // namespace bench
