// Moves bytes and fetches others into the cache meanwhile.

#include "kernels/families/vectors.h"

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

// Wider loads would all cross cache lines.
constexpr size_t kSize = sizeof(Vector) < 32 ? sizeof(Vector) : 32;
constexpr size_t kVectors = kCacheLine / kSize;

struct Line {
  typedef uint32_t Part __attribute__((vector_size(kSize)));
  Part vectors[kVectors];
};

__attribute__((always_inline)) inline Line loadLine(const uint8_t* from) {
  Line line;
  unroll<kVectors>([&](size_t i) {
    __builtin_memcpy(&line.vectors[i], from + i * kSize, kSize);
    __asm__("" : "+x"(line.vectors[i]));  // as load()
  });
  return line;
}

__attribute__((always_inline)) inline void storeLine(uint8_t* to, const Line& line) {
  unroll<kVectors>([&](size_t i) { __builtin_memcpy(to + i * kSize, &line.vectors[i], kSize); });
}

// The bytes moved while a line of each place is fetched.
constexpr size_t kTurn = kPlaces * kCacheLine;

__attribute__((always_inline)) inline void fetch(Soon* soon) {
  if (!soon) return;
  for (uintptr_t& place : soon->places) {
    prefetch(reinterpret_cast<const void*>(place), 0);
    place += kCacheLine;
  }
}

// A line or more.
[[gnu::noinline]] void moveLines(uint8_t* to, const uint8_t* from, size_t size, Soon* soon) {
  const auto address = reinterpret_cast<uintptr_t>(to);
  // The ends, loaded before and stored after all others, complete the whole lines of `to` between them.
  const size_t lastAt = size - kCacheLine;
  const Line first = loadLine(from), last = loadLine(from + lastAt);
  const auto moveLine = [=](size_t at) __attribute__((always_inline)) {
    storeLine(to + at, loadLine(from + at));
  };
  // In the order in which no line is overwritten before it was loaded.
  if (address - reinterpret_cast<uintptr_t>(from) >= size) {
    size_t at = -address % kCacheLine;
    for (; at + kTurn <= size; at += kTurn) {
      fetch(soon);
      unroll<kPlaces>([&](size_t i) { moveLine(at + i * kCacheLine); });
    }
    for (; at < lastAt; at += kCacheLine) moveLine(at);
  } else {
    size_t end = size - (address + size) % kCacheLine;
    for (; end >= kTurn; end -= kTurn) {
      fetch(soon);
      unroll<kPlaces>([&](size_t i) { moveLine(end - (i + 1) * kCacheLine); });
    }
    for (; end >= kCacheLine; end -= kCacheLine) moveLine(end - kCacheLine);
  }
  storeLine(to, first);
  storeLine(to + lastAt, last);
}

}  // namespace

void move(uint8_t* to, const uint8_t* from, size_t size, Soon* soon) {
  if (size < kCacheLine) {
    __builtin_memmove(to, from, size);
  } else {
    moveLines(to, from, size, soon);
  }
}

}  // namespace kernels::ZVR_INSTRUCTION_SET
