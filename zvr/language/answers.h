// The answers of methods, for people and for programs.
#pragma once

#include <string>
#include <vector>

#include "host/calls.h"

namespace zvr {

// An answer of a method, or an argument by reference.
struct Answer {
  std::string method;
  std::string name;  // of the argument; of the method for its result
  host::Value value;
  std::string output;  // the file that a block went to; empty: none
};

// The outcome of one input.
struct Report {
  std::string input;
  std::vector<Answer> answers;
  std::string output;   // empty: none
  std::string problem;  // empty: none
};

// "x = 12", for the answers that went to no file.
std::vector<std::string> answerLines(const Report& report);
// A JSON object in one line. Blocks of 1,024 bytes are histograms, arrays of 256 counts; other blocks, and
// strings that are no text, have their size and bytes in hexadecimal digits.
std::string jsonLine(const Report& report);

}  // namespace zvr
