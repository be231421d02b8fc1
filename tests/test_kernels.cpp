// Every kernel of every instruction set that this processor has, against its plain definition: all short
// lengths, all alignments, memory that ends where the spans end, adversarial contents and parameters.

#include <signal.h>
#include <unistd.h>

#include <iomanip>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>

#include "tests/kernel_cases.h"
#include "tests/plain_kernels.h"

namespace {

using kernels::Pixel;
using kernels::Table;

std::vector<const Table*> supportedTables() {
  const kernels::Tables tables = kernels::supported();
  return {tables.table, tables.table + tables.count};
}

// Words to take spans from: the colours of Random, with top bytes.
const std::vector<uint32_t>& pool() {
  static const std::vector<uint32_t> words = [] {
    std::vector<uint32_t> all;
    Random random(3);
    for (int part = 0; part < 16; ++part) {
      for (const Rgb color : random.pixels(64, 64).colors) {
        all.push_back(color | (part % 4 == 0 ? 0 : part % 4 == 1 ? 0xFF000000 : random.word() << 24));
      }
    }
    return all;
  }();
  return words;
}

// Contents of an operand, whatever its elements are.
using Bytes = std::vector<uint8_t>;

Bytes bytesOf(const std::vector<uint32_t>& words, size_t size) {
  Bytes bytes(size);
  if (size > 0) memcpy(bytes.data(), words.data(), size);
  return bytes;
}

Bytes drawContents(Random& random, size_t size, int spread) {
  std::vector<uint32_t> words((size + 3) / 4);
  const size_t start = random.word() % (pool().size() - words.size());
  std::copy_n(pool().begin() + static_cast<ptrdiff_t>(start), words.size(), words.begin());
  const int kind = random.between(0, 5);
  if (kind == 0) {  // nearly gray
    for (uint32_t& word : words) {
      const auto gray = static_cast<int>(word % (256 - static_cast<uint32_t>(spread)));
      word = rgb(gray + random.between(0, spread), gray + random.between(0, 1) * spread, gray) | word << 24;
    }
  } else if (kind <= 2) {  // one word, with any top bytes, and not at all places
    static const uint32_t kPatterns[] = {0x80808080, 0x7F7F7F7F, 0x80008000, 0x7FFF7FFF,
                                         0x00000000, 0xFFFFFFFF, 0xFF000000, 0x00FFFFFF};
    const uint32_t one = random.chance(50) ? kPatterns[random.word() % std::size(kPatterns)] : words[0];
    const uint32_t differing = kind == 1 ? 0 : 0xFF000000;
    for (uint32_t& word : words) word = one ^ (word & differing);
    for (int odd = random.between(0, 2); odd > 0; --odd) words[random.word() % words.size()] ^= 1U << random.between(0, 31);
  }
  return bytesOf(words, size);
}

// Small numbers, with extremes among them.
Bytes drawNumbers(Random& random, size_t size) {
  std::vector<uint32_t> words(size / 4);
  for (uint32_t& word : words) {
    word = static_cast<uint32_t>(random.between(-10, 26));
    if (random.chance(10)) word = random.chance(50) ? 0x80000000 : 0x7FFFFFFF;
  }
  return bytesOf(words, size);
}

// The same as an earlier operand but for top bytes and, perhaps, one bit.
Bytes nearly(Random& random, Bytes bytes) {
  for (size_t i = 3; i < bytes.size(); i += 4) bytes[i] = static_cast<uint8_t>(i * 37);
  if (random.chance(50)) bytes[random.word() % bytes.size()] ^= static_cast<uint8_t>(1 << random.between(0, 7));
  return bytes;
}

// Where operands lie: at addresses of this remainder modulo 64, else at the very edge; near the no-access page
// behind, or before.
struct Place {
  std::optional<size_t> remainder;
  bool atEnd;
};

// One operand twice: in guarded memory for the kernel, and in an image of that memory for the definition.
class Operand {
 public:
  void lay(const Place& place, const Bytes& contents, bool aligned) {
    size_ = contents.size();
    const size_t remainder = place.remainder.value_or(0) & (aligned ? ~size_t{3} : ~size_t{0});
    at_ = place.atEnd ? memory_.size() - size_ : 0;
    if (place.remainder) at_ = place.atEnd ? at_ - ((at_ - remainder) & 63) : remainder;
    from_ = at_ < kMargin ? 0 : at_ - kMargin;
    end_ = std::min(at_ + size_ + kMargin, memory_.size());
    memset(image_.data() + from_, 0xA5, end_ - from_);
    if (size_ > 0) memcpy(image_.data() + at_, contents.data(), size_);
    memcpy(memory_.begin() + from_, image_.data() + from_, end_ - from_);
  }
  uint8_t* kernels() { return memory_.begin() + at_; }
  uint8_t* definitions() { return image_.data() + at_; }
  // The offset from the operand's start of the first byte that differs.
  std::optional<ptrdiff_t> difference() const {
    if (memcmp(memory_.begin() + from_, image_.data() + from_, end_ - from_) == 0) return std::nullopt;
    size_t i = from_;
    while (memory_.begin()[i] == image_[i]) ++i;
    return static_cast<ptrdiff_t>(i) - static_cast<ptrdiff_t>(at_);
  }

 private:
  static constexpr size_t kMargin = 128;
  GuardedMemory memory_{8192};
  Bytes image_ = Bytes(8192);
  size_t size_ = 0, at_ = 0, from_ = 0, end_ = 0;
};

// What is being run, for the message when a kernel touches what it must not.
struct Running {
  const char *table, *name;
  unsigned count, in, out;
} running;

void reportFault(int signal) {
  char text[200];
  const int length = snprintf(text, sizeof text, "signal %d in %s %s: length %u, in at %u, out at %u (modulo 64)\n",
                              signal, running.table, running.name, running.count, running.in, running.out);
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, static_cast<size_t>(length));
}

// A kernel against its definition.
class Duel {
 public:
  Duel(const Table& table, const Case& c, uint32_t seed) : table_(table), case_(c), random_(seed) {}

  // One call with drawn contents and parameters, or one for each part of spans that are cut at random. False
  // after a failure.
  bool run(size_t count, const Place& in, const Place& out, bool cut = false) {
    count_ = count;
    layOperands(in, out);
    Parameters expected = drawParameters(random_, case_, hint_, random_.word()), got = expected;
    const uint64_t right = case_.run(plain::kTable, definitions_, expected);
    running = {table_.name, case_.name.c_str(), count, remainder(kernels_.in[0]), remainder(kernels_.out)};
    const uint64_t result = cut ? runCut(got) : case_.run(table_, kernels_, got);
    return (cut || isSame(result, right, got)) && areSame(got);
  }

 private:
  static unsigned remainder(const uint8_t* at) { return reinterpret_cast<uintptr_t>(at) % 64; }

  void layOperands(const Place& in, const Place& out) {
    const Shape& shape = case_.shape;
    static const int kSpreads[] = {0, 1, 2, 5, 29, 30, 127, 254, 255};
    hint_ = {kSpreads[random_.word() % std::size(kSpreads)], 0};
    kernels_ = definitions_ = {nullptr, {}, count_};
    size_t source[3] = {0, 1, 2};  // may be one another
    if (shape.outMayBeIn && random_.chance(20)) source[1] = source[random_.word() % 3];
    if (shape.outMayBeIn && random_.chance(20)) source[2] = source[random_.word() % 2];
    for (size_t k = 0; k < 3 && shape.in[k] > 0; ++k) layInput(k, source[k], in);
    if (shape.out == 0) return;
    if (shape.outMayBeIn && random_.chance(30)) {
      const size_t k = random_.word() % (shape.in[2] ? 3 : shape.in[1] ? 2 : 1);
      kernels_.out = const_cast<uint8_t*>(kernels_.in[k]);
      definitions_.out = const_cast<uint8_t*>(definitions_.in[k]);
      return;
    }
    operands_[3].lay(out, drawContents(random_, shape.out * (shape.outIsWhole ? 1 : count_), hint_.spread),
                     false);
    kernels_.out = operands_[3].kernels();
    definitions_.out = operands_[3].definitions();
  }
};

}  // namespace
