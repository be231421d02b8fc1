// Floating values to integers, the one way that all operations do it.
#pragma once

#include <stdint.h>

// Truncated toward zero. What no 32-bit integer can hold (not-a-number and infinities included) gives the
// most negative one.
static inline int32_t toInt32(double value) {
  return value > -2147483649.0 && value < 2147483648.0 ? static_cast<int32_t>(value) : INT32_MIN;
}

static inline int32_t toInt32(long double value) {
  return value > -2147483649.0L && value < 2147483648.0L ? static_cast<int32_t>(value) : INT32_MIN;
}
