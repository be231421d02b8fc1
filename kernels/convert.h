// Floating point to integer, shared by all operations.
#pragma once

#include <stdint.h>

// Truncates toward zero. Values out of range, NaN and infinities give INT32_MIN.
static inline int32_t toInt32(double value) {
  return value > -2147483649.0 && value < 2147483648.0 ? static_cast<int32_t>(value) : INT32_MIN;
}

static inline int32_t toInt32(long double value) {
  // The x87 is slow to truncate. Rounding to double takes a value at most to the next integer, not past it,
  // so a double that is no integer has the same integer part.
  const auto rounded = static_cast<double>(value);
  if (const int32_t whole = toInt32(rounded); whole != INT32_MIN && whole != rounded) return whole;
  return value > -2147483649.0L && value < 2147483648.0L ? static_cast<int32_t>(value) : INT32_MIN;
}
