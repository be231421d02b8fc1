#include "bench/allocations.h"

#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <iterator>

// The C library's own functions, under the names that it reserves for replacements.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* pointer, size_t size);
void __libc_free(void* pointer);
}

namespace bench {
namespace {

bool counts = false, pauses = false;
HeapUse use;

// Freed large blocks, most recent first. Nothing here may allocate.
struct Spare {
  void* block;
  bool isUsed;  // since it was last cleared
};
constexpr size_t kSmallestSpare = size_t{1} << 16;
constexpr size_t kMostSpareBytes = size_t{1} << 29;
Spare spares[8];

void* removeSpare(Spare& spare) {
  void* block = spare.block;
  std::copy(&spare + 1, std::end(spares), &spare);
  *(std::end(spares) - 1) = {};
  return block;
}

// Removes and returns a spare block of about that size, or null.
void* takeSpare(size_t size, bool mustBeClear) {
  constexpr size_t kSlack = 8192;
  if (size < kSmallestSpare) return nullptr;
  for (Spare& spare : spares) {
    if (!spare.block || (mustBeClear && spare.isUsed)) continue;
    const size_t room = malloc_usable_size(spare.block);
    if (room >= size && room - size < kSlack) return removeSpare(spare);
  }
  return nullptr;
}

void leaveSpare(void* block) {
  __libc_free((std::end(spares) - 1)->block);
  std::copy_backward(spares, std::end(spares) - 1, std::end(spares));
  spares[0] = {block, true};
  size_t sum = 0;
  for (Spare& spare : spares) {
    if (spare.block) sum += malloc_usable_size(spare.block);
    if (sum <= kMostSpareBytes) continue;
    __libc_free(spare.block);
    spare = {};
  }
}

void* taken(void* pointer) {
  if (!counts || pauses || !pointer) return pointer;
  use.now += malloc_usable_size(pointer);
  use.peak = std::max(use.peak, use.now);
  ++use.blocks;
  return pointer;
}

void given(void* pointer) {
  if (counts && !pauses && pointer) use.now -= malloc_usable_size(pointer);
}

}  // namespace

void startCounting() {
  use = {};
  counts = true;
}

HeapUse stopCounting() {
  counts = false;
  return use;
}

void pauseCounting(bool pause) { pauses = pause; }

void clearSpareBlocks() {
  for (Spare& spare : spares) {
    if (!spare.isUsed) continue;
    std::memset(spare.block, 0, malloc_usable_size(spare.block));
    spare.isUsed = false;
  }
}

}  // namespace bench

extern "C" {

void* malloc(size_t size) noexcept {
  void* spare = bench::takeSpare(size, false);
  return bench::taken(spare ? spare : __libc_malloc(size));
}

void* calloc(size_t count, size_t size) noexcept {
  size_t bytes = 0;
  void* spare = __builtin_mul_overflow(count, size, &bytes) ? nullptr : bench::takeSpare(bytes, true);
  return bench::taken(spare ? spare : __libc_calloc(count, size));
}

void* realloc(void* pointer, size_t size) noexcept {
  bench::given(pointer);
  return bench::taken(__libc_realloc(pointer, size));
}

void free(void* pointer) noexcept {
  bench::given(pointer);
  if (pointer && malloc_usable_size(pointer) >= bench::kSmallestSpare) {
    bench::leaveSpare(pointer);
  } else {
    __libc_free(pointer);
  }
}
}
