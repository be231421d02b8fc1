// The kernels as the tests call them: the operands and the parameters of each.
#pragma once

#include <sys/mman.h>

#include <deque>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "kernels/kernels.h"
#include "tests/support.h"

// Memory between two pages that can't be touched.
class GuardedMemory {
 public:
  explicit GuardedMemory(size_t bytes) : size_((bytes + kPage - 1) / kPage * kPage) {
    void* all = mmap(nullptr, size_ + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) throw std::bad_alloc();
    begin_ = static_cast<uint8_t*>(all) + kPage;
    if (mprotect(begin_, size_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
  }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  ~GuardedMemory() { munmap(begin_ - kPage, size_ + 2 * kPage); }

  uint8_t* begin() const { return begin_; }
  size_t size() const { return size_; }
  uint8_t* last(size_t bytes) const { return begin_ + size_ - bytes; }

 private:
  static constexpr size_t kPage = 4096;
  size_t size_;
  uint8_t* begin_;
};

struct Parameters {
  uint32_t top = 0, words[3] = {};
  int32_t number = 0;
  kernels::Tint tint = {};
  kernels::Sepia sepia = {};
  // Each in guarded memory.
  const kernels::ChannelTables* tables = nullptr;
  kernels::LinearMaps lines = {};
  const double* cube = nullptr;
  const kernels::Pixel* wholeCube = nullptr;
};

struct Operands {
  uint8_t* out;
  const uint8_t* in[3];
  size_t count;

  kernels::Pixel* pixelsOut() const { return reinterpret_cast<kernels::Pixel*>(out); }
  const kernels::Pixel* pixels(int k) const { return reinterpret_cast<const kernels::Pixel*>(in[k]); }
  const int32_t* numbers(int k) const { return reinterpret_cast<const int32_t*>(in[k]); }
};

// Sizes are in bytes an element; 0: there is no such operand.
struct Shape {
  size_t in[3] = {}, out = 0;
  bool outIsWhole = false;   // `out` is a number of bytes however many elements there are
  bool outMayBeIn = false;   // and the inputs one another
  bool inIsNumbers = false;  // 32-bit numbers, aligned as such
};

// Parameters are drawn by these: the largest difference between channels of grayish contents, a word of the
// contents.
struct Hint {
  int spread;
  uint32_t word;
};

struct Case {
  std::string name;
  size_t slot;  // in Table, in pointers
  Shape shape;
  // Calls the table's kernel; answers its result, 0 when it has none.
  std::function<uint64_t(const kernels::Table&, const Operands&, Parameters&)> run;
  int32_t (*number)(Random&, const Hint&);
};

// Every kernel.
const std::deque<Case>& allCases();

// Parameters of all kinds; `variant` chooses among lookup tables, the first of which are the tamest.
Parameters drawParameters(Random& random, const Case& c, const Hint& hint, uint32_t variant);

// Contents of an operand, whatever its elements are.
using Bytes = std::vector<uint8_t>;
// Runs, few words, nearly gray words whose channels differ by up to `spread`.
Bytes drawContents(Random& random, size_t size, int spread);
// Small 32-bit numbers, with extremes among them.
Bytes drawNumbers(Random& random, size_t size);
