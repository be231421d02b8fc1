// Moves bytes and fetches others into the cache meanwhile.

#include "kernels/families/maps.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// The bytes moved while one line of each place is fetched.
constexpr size_t kTurn = kPlaces * kCacheLine;

void fetch(Soon& soon) {
  for (uintptr_t& place : soon.places) {
    prefetch(reinterpret_cast<const void*>(place), 0);
    place += kCacheLine;
  }
}

// Loads the line before it stores any of it, since both may overlap.
__attribute__((always_inline)) inline void moveLine(uint8_t* to, const uint8_t* from) {
  constexpr size_t kVectors = kCacheLine / sizeof(Vector);
  Pixels line[kVectors];
  unroll<kVectors>([&](size_t i) { line[i] = load(from + i * sizeof(Vector)); });
  unroll<kVectors>([&](size_t i) { store(to + i * sizeof(Vector), line[i]); });
}

}  // namespace

void move(uint8_t* to, const uint8_t* from, size_t size, Soon& soon) {
  if (size < kTurn + kCacheLine) {
    __builtin_memmove(to, from, size);
    return;
  }
  const auto address = reinterpret_cast<uintptr_t>(to);
  // Whole lines of `to` are stored, from the end that may overwrite the rest of `from` last.
  if (address - reinterpret_cast<uintptr_t>(from) >= size) {
    const size_t head = -address % kCacheLine;
    __builtin_memmove(to, from, head);
    for (to += head, from += head, size -= head; size >= kTurn; size -= kTurn) {
      fetch(soon);
      unroll<kPlaces>([&](size_t) {
        moveLine(to, from);
        to += kCacheLine, from += kCacheLine;
      });
    }
    __builtin_memmove(to, from, size);
  } else {
    const size_t tail = (address + size) % kCacheLine;
    size -= tail;
    __builtin_memmove(to + size, from + size, tail);
    while (size >= kTurn) {
      fetch(soon);
      unroll<kPlaces>([&](size_t) {
        size -= kCacheLine;
        moveLine(to + size, from + size);
      });
    }
    __builtin_memmove(to, from, size);
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
